// Text set in columns.
#ifndef QUELL_BASE_LAYOUT_H
#define QUELL_BASE_LAYOUT_H

#include <string>

namespace quell {

// As printf.
[[gnu::format(printf, 1, 2)]] std::string Format(const char* format, ...);

// Blanks added behind or before the text, up to a width.
std::string Left(std::string text, size_t width);
std::string Right(const std::string& text, size_t width);

}  // namespace quell

#endif
