// Text that waits for its turn.
#ifndef QUELL_CHECK_SPOOL_H
#define QUELL_CHECK_SPOOL_H

#include <cstdio>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

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
    struct Closing {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };
    void MoveToFile();

    std::string m_Text;  // behind what is in the file
    std::unique_ptr<std::FILE, Closing> m_File;
};

}  // namespace quell

#endif
