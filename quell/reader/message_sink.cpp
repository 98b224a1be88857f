// The messages of the parser library.
#include "quell/reader/message_sink.h"

#include "IbisParser/parse.h"

namespace quell {

MessageSink::MessageSink(Take take)
    : m_Take(std::move(take)), m_Nowhere(OpenFile("/dev/null", "we"))
{
    ERRLOG_SetOutputFile(m_Nowhere.get());
    if (m_Take) ERRLOG_SetSink(Receive, this);
    PARSE_SuppressBanners(1);
}

MessageSink::~MessageSink()
{
    ERRLOG_SetSink(nullptr, nullptr);
    ERRLOG_SetOutputFile(nullptr);
}

void MessageSink::Receive(const ErrRecord* record, void* user)
{
    static_cast<MessageSink*>(user)->m_Take(*record);
}

}  // namespace quell
