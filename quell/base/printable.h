// Text of others on a terminal.
#ifndef QUELL_BASE_PRINTABLE_H
#define QUELL_BASE_PRINTABLE_H

#include <string>
#include <string_view>

namespace quell {

// The text with a "?" for every byte or character that could do more than show itself: control
// characters (line ends among them, tabs become blanks), bytes that are no UTF-8, characters that
// turn the direction of writing. One character stands for each.
std::string Printable(std::string_view text);

// Columns that a text of Printable takes.
size_t PrintedWidth(std::string_view printable);

}  // namespace quell

#endif
