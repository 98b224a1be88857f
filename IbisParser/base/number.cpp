// Numbers of the common helpers: values with scale letters, table cells, R/L/C tokens.
#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <cstring>

#include "IbisParser/base/clocale.h"
#include "IbisParser/base/raise.h"
#include "IbisParser/cmn.h"

static const char s_Module[] = "IbisParser/cmn";

const ScaleRow Scales[9] = {{'T', 1e12}, {'G', 1e9},  {'M', 1e6},   {'k', 1e3},  {'m', 1e-3},
                            {'u', 1e-6}, {'n', 1e-9}, {'p', 1e-12}, {'f', 1e-15}};

static bool s_isDigit(char c)
{
    return c >= '0' && c <= '9';
}

static bool s_isLetter(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

// from_chars gives the value and end of strtod for a plain decimal number that fits a double. What
// strtod takes beyond that (blanks, "+", hexadecimal, "inf", "nan", overflow) is left to it.
double StrtodC(const char* text, const char** end)
{
    const char* digits = text[0] == '-' ? text + 1 : text;
    if (digits[0] == '.') ++digits;
    const bool hexadecimal = digits[0] == '0' && (digits[1] == 'x' || digits[1] == 'X');
    if (s_isDigit(digits[0]) && !hexadecimal) {
        double value = 0.0;
        const auto [stop, error] = std::from_chars(text, text + std::strlen(text), value);
        if (error == std::errc()) {
            *end = stop;
            return value;
        }
    }
    char* stop = nullptr;
    const double value = strtod_l(text, &stop, CLocale());
    *end = stop;
    return value;
}

// The factor of the character after a number: that of a scale letter, 1 for any other letter (a
// unit), 0 when no letter follows.
static double s_scaleFactor(char c)
{
    for (const ScaleRow& row : Scales)
        if (row.letter == c) return row.factor;
    return s_isLetter(c) ? 1.0 : 0.0;
}

int CMN_Get_Value(const char* text, double* value)
{
    CMN_ASSERT(text != nullptr && value != nullptr);
    const char* rest = nullptr;
    const double number = StrtodC(text, &rest);
    if (rest == text) return 0;
    if (*rest == '\0') {
        *value = number;
        return 1;
    }
    const double factor = s_scaleFactor(*rest);
    if (factor == 0.0) return 0;
    *value = number * factor;
    for (; *rest != '\0'; ++rest)
        if (s_isDigit(*rest)) return 2;
    return 1;
}

int CMN_Get_ValueOrNA(const char* text, double* value, int* isNA)
{
    CMN_ASSERT(text != nullptr && value != nullptr && isNA != nullptr);
    *isNA = CMN_StrSameIC(text, "NA");
    if (!*isNA) return CMN_Get_Value(text, value);
    *value = 0.0;
    return 1;
}

int CMN_GetColValue(const char* text, const char* column, const char* keyword, double* value,
                    int* state)
{
    CMN_ASSERT(column != nullptr && keyword != nullptr && value != nullptr && state != nullptr);
    *state = CELL_ABSENT;
    if (text == nullptr) return 1;
    int isNA = 0;
    switch (CMN_Get_ValueOrNA(text, value, &isNA)) {
        case 0:
            ERRLOG_LineErrorNew(1909, keyword, text);
            return 0;
        case 2:
            ERRLOG_LineWarnNew(1910, keyword, column, text);
            break;
        default:
            break;
    }
    *state = isNA ? CELL_NA : CELL_NUMBER;
    return 1;
}

int CMN_StrToUI(const char* text, unsigned* value)
{
    CMN_ASSERT(text != nullptr && value != nullptr);
    if (*text == '-') return 0;
    char* rest = nullptr;
    const unsigned long number = std::strtoul(text, &rest, 10);
    if (rest == text) return 0;
    *value = static_cast<unsigned>(number);
    return *rest == '\0' ? 1 : 2;
}

int CMN_StrToDbl(const char* text, double* value)
{
    CMN_ASSERT(text != nullptr && value != nullptr);
    const char* rest = nullptr;
    *value = StrtodC(text, &rest);
    if (rest == text) return 0;
    return *rest == '\0' ? 1 : 2;
}

// R/L/C tokens.

enum { RLC_ERROR = 0, RLC_SLASH = 5, RLC_END = 6, RLC_TOKEN_MAX = 1000 };

static const struct {
    const char* name;
    int code;
} s_rlcNames[] = {{"Len", 1}, {"R", 2}, {"C", 3}, {"L", 4}};

static char* s_skipBlanks(char* s)
{
    return s + std::strspn(s, " \t");
}

// Copies the text up to one of the stop characters, cut to the buffer, and gives its end.
static char* s_rlcToken(char* s, const char* stops, char (&token)[RLC_TOKEN_MAX + 1])
{
    const size_t length = std::strcspn(s, stops);
    const size_t kept = std::min<size_t>(length, RLC_TOKEN_MAX);
    std::memcpy(token, s, kept);
    token[kept] = '\0';
    return s + length;
}

static int s_rlcCode(const char* name)
{
    for (const auto& row : s_rlcNames)
        if (std::strcmp(row.name, name) == 0) return row.code;
    return RLC_ERROR;
}

int CMN_gettok(char* text, double* value, char** next)
{
    CMN_ASSERT(text != nullptr && value != nullptr && next != nullptr);
    char token[RLC_TOKEN_MAX + 1];
    char* s = s_skipBlanks(text);
    if (*s == '\0') return RLC_END;
    if (*s == '/') {
        *next = s_skipBlanks(s + 1);
        return RLC_SLASH;
    }
    if (*s == '=') {
        ERRLOG_LineErrorNew(1918);
        return RLC_ERROR;
    }
    s = s_rlcToken(s, " \t=/", token);
    const int code = s_rlcCode(token);
    if (code == RLC_ERROR) {
        ERRLOG_LineErrorNew(1919, token);
        *next = s;
        return RLC_ERROR;
    }

    s = s_skipBlanks(s);
    if (*s == '\0') {
        ERRLOG_LineErrorNew(1920);
        return RLC_END;
    }
    if (*s != '=') {
        ERRLOG_LineErrorNew(1921);
        s += std::strcspn(s, "/");
        *next = *s == '/' ? s + 1 : s;
        return RLC_ERROR;
    }

    s = s_skipBlanks(s + 1);
    if (*s == '\0') {
        ERRLOG_LineErrorNew(1920);
        return RLC_END;
    }
    s = s_rlcToken(s, " \t/", token);
    *value = 0.0;
    if (token[0] == '\0')
        ERRLOG_LineErrorNew(1923);
    else if (CMN_Get_Value(token, value) != 1)
        ERRLOG_LineErrorNew(1922, token);
    *next = s_skipBlanks(s);
    return code;
}
