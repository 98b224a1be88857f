// The messages of the parser library, taken where they are told.
#ifndef QUELL_READER_MESSAGE_SINK_H
#define QUELL_READER_MESSAGE_SINK_H

#include <functional>

#include "IbisParser/errlog.h"
#include "quell/base/file_pointer.h"

namespace quell {

// Takes them while it lives, in place of the library's log; banners are not printed any more.
class MessageSink {
public:
    using Take = std::function<void(const ErrRecord&)>;

    // Without a function they are dropped.
    explicit MessageSink(Take take = nullptr);
    ~MessageSink();
    MessageSink(const MessageSink&) = delete;
    MessageSink& operator=(const MessageSink&) = delete;

private:
    static void Receive(const ErrRecord* record, void* user);

    Take m_Take;
    FilePointer m_Nowhere;
};

}  // namespace quell

#endif
