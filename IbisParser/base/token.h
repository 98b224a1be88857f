// Blanks of a line, and its splitting in place, for data lines whose number makes copies of every
// token too dear. Unlike the scanners of cmn these take lines of any length.
#ifndef IBISPARSER_BASE_TOKEN_H
#define IBISPARSER_BASE_TOKEN_H

// As CMN_IsWhitespace, for every character of a line.
inline bool TOKEN_IsBlank(char c)
{
    return c == ' ' || (c >= '\t' && c <= '\r');
}

// The next blank-free token of the text, terminated in place, or null at its end.
inline char* TOKEN_Next(char** text)
{
    char* begin = *text;
    while (TOKEN_IsBlank(*begin))
        ++begin;
    char* end = begin;
    while (*end != '\0' && !TOKEN_IsBlank(*end))
        ++end;
    *text = end;
    if (*end != '\0') {
        *end = '\0';
        *text = end + 1;
    }
    return begin == end ? nullptr : begin;
}

// What follows the blanks at the beginning of the text.
inline const char* TOKEN_SkipBlanks(const char* text)
{
    while (TOKEN_IsBlank(*text))
        ++text;
    return text;
}
inline char* TOKEN_SkipBlanks(char* text)
{
    return const_cast<char*>(TOKEN_SkipBlanks(const_cast<const char*>(text)));
}

// Tokens of the text, which stays as it is.
inline int TOKEN_Count(const char* text)
{
    int count = 0;
    bool inside = false;
    for (; *text != '\0'; ++text) {
        const bool blank = TOKEN_IsBlank(*text);
        if (!blank && !inside) ++count;
        inside = !blank;
    }
    return count;
}

#endif
