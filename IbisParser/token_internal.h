// Splitting of a line in place, for data lines whose number makes copies of every token too dear.
#ifndef IBISPARSER_TOKEN_INTERNAL_H
#define IBISPARSER_TOKEN_INTERNAL_H

#include "IbisParser/cmn.h"

// The next blank-free token of the text, terminated in place, or null at its end.
inline char* TOKEN_Next(char** text)
{
    char* begin = *text;
    while (*begin != '\0' && CMN_IsWhitespace(static_cast<unsigned char>(*begin)))
        ++begin;
    char* end = begin;
    while (*end != '\0' && !CMN_IsWhitespace(static_cast<unsigned char>(*end)))
        ++end;
    *text = end;
    if (*end != '\0') {
        *end = '\0';
        *text = end + 1;
    }
    return begin == end ? nullptr : begin;
}

// What follows the blanks at the beginning of the text.
inline char* TOKEN_SkipBlanks(char* text)
{
    while (*text != '\0' && CMN_IsWhitespace(static_cast<unsigned char>(*text)))
        ++text;
    return text;
}

// Tokens of the text, which stays as it is.
inline int TOKEN_Count(const char* text)
{
    int count = 0;
    bool inside = false;
    for (; *text != '\0'; ++text) {
        const bool blank = CMN_IsWhitespace(static_cast<unsigned char>(*text)) != 0;
        if (!blank && !inside) ++count;
        inside = !blank;
    }
    return count;
}

#endif
