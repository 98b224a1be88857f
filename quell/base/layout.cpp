// Text set in columns.
#include "quell/base/layout.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>

namespace quell {

std::string Format(const char* format, ...)
{
    std::va_list arguments;
    va_start(arguments, format);
    const int size = std::vsnprintf(nullptr, 0, format, arguments);
    va_end(arguments);
    std::string text(static_cast<size_t>(std::max(size, 0)), '\0');
    va_start(arguments, format);
    std::vsnprintf(text.data(), text.size() + 1, format, arguments);
    va_end(arguments);
    return text;
}

std::string Left(std::string text, size_t width)
{
    text.resize(std::max(text.size(), width), ' ');
    return text;
}

std::string Right(const std::string& text, size_t width)
{
    return std::string(width - std::min(text.size(), width), ' ') + text;
}

}  // namespace quell
