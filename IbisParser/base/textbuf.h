// A text that grows by doubling, so that appending line after line stays linear.
#ifndef IBISPARSER_BASE_TEXTBUF_H
#define IBISPARSER_BASE_TEXTBUF_H

#include <cstddef>

// Sizes of a text whose pointer lives with its owner. All zero goes with a null pointer.
struct TextSize {
    std::size_t length;    // terminator excluded
    std::size_t capacity;  // bytes allocated
};

// Appends the first length characters of more. 1 done, 0 when memory ran out (reported by the
// allocator); the text is then as before.
int TEXTBUF_Append(char** text, TextSize* size, const char* more, std::size_t length);

#endif
