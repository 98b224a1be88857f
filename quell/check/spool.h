// Text that waits for its turn.
#ifndef QUELL_CHECK_SPOOL_H
#define QUELL_CHECK_SPOOL_H

#include <functional>
#include <string>
#include <string_view>

#include "quell/base/file_pointer.h"

namespace quell {

// In memory while it is short, then in a temporary file without a name.
class Spool {
public:
    // Throws InputError when there is no room for it.
    void Append(std::string_view text);
    bool Empty() const { return m_Text.empty() && m_File == nullptr; }
    void Clear();
    // Gives everything, in pieces, and is empty then.
    void Pour(const std::function<void(std::string_view)>& take);

private:
    void MoveToFile();

    std::string m_Text;  // behind what is in the file
    FilePointer m_File;
};

}  // namespace quell

#endif
