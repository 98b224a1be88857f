// Text of others on a terminal.
#include "quell/base/printable.h"

#include <cstdint>

namespace quell {

namespace {

constexpr struct {
    uint32_t first;
    uint32_t last;
} Unsafe[] = {
    {0x0000, 0x001F},    // control
    {0x007F, 0x009F},    // control
    {0x200B, 0x200F},    // without width, marks of direction
    {0x2028, 0x202E},    // line ends, direction
    {0x2060, 0x206F},    // without width, direction
    {0xD800, 0xDFFF},    // halves of pairs
    {0xFEFF, 0xFEFF},    // byte order mark
    {0xFFF0, 0xFFFB},    // specials
    {0xE0000, 0xE0FFF},  // tags
};

bool Safe(uint32_t character)
{
    for (const auto& range : Unsafe)
        if (range.first <= character && character <= range.last) return false;
    return true;
}

// Number of bytes of the UTF-8 character at the start of text, 0 when there is none.
size_t DecodeUtf8(std::string_view text, uint32_t& character)
{
    static constexpr struct {
        unsigned mask;
        unsigned mark;
        size_t size;
        uint32_t least;  // a smaller one is written too long
    } forms[] = {{0x80, 0x00, 1, 0},
                 {0xE0, 0xC0, 2, 0x80},
                 {0xF0, 0xE0, 3, 0x800},
                 {0xF8, 0xF0, 4, 0x10000}};
    const unsigned lead = static_cast<unsigned char>(text.front());
    for (const auto& form : forms) {
        if ((lead & form.mask) != form.mark) continue;
        if (text.size() < form.size) return 0;
        character = lead & ~form.mask & 0xFFU;
        for (size_t k = 1; k < form.size; ++k) {
            const unsigned next = static_cast<unsigned char>(text[k]);
            if ((next & 0xC0U) != 0x80) return 0;
            character = character << 6U | (next & 0x3FU);
        }
        return character >= form.least && character <= 0x10FFFF ? form.size : 0;
    }
    return 0;
}

}  // namespace

std::string Printable(std::string_view text)
{
    std::string printable;
    printable.reserve(text.size());
    while (!text.empty()) {
        uint32_t character = 0;
        const size_t size = DecodeUtf8(text, character);
        if (text.front() == '\t') {
            printable += ' ';
        } else if (size == 0 || !Safe(character)) {
            printable += '?';
        } else {
            printable += text.substr(0, size);
        }
        text.remove_prefix(size == 0 ? 1 : size);
    }
    return printable;
}

size_t PrintedWidth(std::string_view printable)
{
    size_t width = 0;
    for (const char c : printable)
        if ((static_cast<unsigned char>(c) & 0xC0U) != 0x80) ++width;
    return width;
}

}  // namespace quell
