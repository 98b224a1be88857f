#include <cstring>

#include "IbisParser/base/textbuf.h"
#include "IbisParser/cmn.h"

static const char s_Module[] = "IbisParser/textbuf";

int TEXTBUF_Append(char** text, TextSize* size, const char* more, std::size_t length)
{
    CMN_ASSERT(text != nullptr && size != nullptr && more != nullptr);
    const std::size_t needed = size->length + length + 1;
    if (needed > size->capacity) {
        const std::size_t capacity = needed < 2 * size->capacity ? 2 * size->capacity : needed;
        void* block = *text;
        if (!CMN_realloc(&block, capacity)) return 0;
        *text = static_cast<char*>(block);
        size->capacity = capacity;
    }
    std::memcpy(*text + size->length, more, length);
    size->length += length;
    (*text)[size->length] = '\0';
    return 1;
}
