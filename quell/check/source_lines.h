// Lines of a file that findings name.
#ifndef QUELL_CHECK_SOURCE_LINES_H
#define QUELL_CHECK_SOURCE_LINES_H

#include <map>
#include <set>
#include <string>
#include <string_view>

namespace quell {

// The lines with these numbers as the reader counts them (LF and CR LF end a line, CR alone does
// not), without their ends and cut after 2048 bytes. Reads no further than the last of them. What
// is not there is not in the result.
std::map<unsigned long, std::string> ReadLines(const std::string& path,
                                               const std::set<unsigned long>& numbers);

// Where in a line a message points: the first of its quoted texts that stands there, else what
// follows its last colon.
struct Span {
    size_t begin = 0;  // bytes
    size_t size = 0;   // 0: nowhere
};
Span FindQuoted(std::string_view message, std::string_view line);

}  // namespace quell

#endif
