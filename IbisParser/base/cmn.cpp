// Common helpers: memory, strings, splitting and keyword values.
#include "IbisParser/cmn.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "IbisParser/base/raise.h"
#include "IbisParser/base/token.h"
#include "IbisParser/parse.h"

static const char s_Module[] = "IbisParser/cmn";

const char* const ReservedWords[] = {"GND", "NC", "POWER", "CIRCUITCALL", "NA", ""};
int gbAllowAnyLineLength = 0;

void CMN_AssertFailed(const char* module, int line)
{
    std::printf("%s:%d:assertion failed.\n", module, line);
    // The log may be another stream; what it says about the cause must not be lost.
    std::fflush(nullptr);
    std::abort();
}

// Memory.

int CMN_malloc(void** p, size_t n)
{
    CMN_ASSERT(p != nullptr && n != 0);
    *p = std::calloc(n, 1);
    if (*p != nullptr) return 1;
    ERRLOG_ErrorNew(1906, static_cast<unsigned>(n));
    return 0;
}

int CMN_realloc(void** p, size_t n)
{
    CMN_ASSERT(p != nullptr && n != 0);
    void* block = std::realloc(*p, n);
    if (block == nullptr) {
        ERRLOG_ErrorNew(1907, static_cast<unsigned>(n));
        return 0;
    }
    *p = block;
    return 1;
}

void CMN_free(void* p)
{
    CMN_ASSERT(p != nullptr);
    std::free(p);
}

void CMN_freeSetNull(void** p)
{
    CMN_ASSERT(p != nullptr && *p != nullptr);
    std::free(*p);
    *p = nullptr;
}

char* CMN_StrMake(const char* s)
{
    if (s == nullptr) return nullptr;
    const size_t size = std::strlen(s) + 1;
    char* copy = static_cast<char*>(std::malloc(size));
    if (copy == nullptr) {
        ERRLOG_BugNew(1908, s_Module, __LINE__);
        return nullptr;
    }
    std::memcpy(copy, s, size);
    return copy;
}

char* CMN_StrMakeN(const char* s, int n)
{
    if (s == nullptr || n < 0) return nullptr;
    const size_t room = static_cast<size_t>(n);
    const size_t length = strnlen(s, room);
    char* copy = static_cast<char*>(std::malloc(room + 1));
    if (copy == nullptr) return nullptr;
    std::memcpy(copy, s, length);
    std::memset(copy + length, 0, room + 1 - length);
    return copy;
}

// Strings. Character classes are those of the C locale, written out.

static char s_toUpper(char c)
{
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

static char s_toLower(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

void CMN_strncpy(char* d, const char* s, size_t n)
{
    std::strncpy(d, s, n);
    d[n] = '\0';
}

char* CMN_ultoa(unsigned long v)
{
    static char digits[24];
    std::snprintf(digits, sizeof digits, "%lu", v);
    return digits;
}

int CMN_StrSameIC(const char* a, const char* b)
{
    CMN_ASSERT(a != nullptr && b != nullptr);
    for (; s_toUpper(*a) == s_toUpper(*b); ++a, ++b)
        if (*a == '\0') return 1;
    return 0;
}

int CMN_StrSameICn(const char* a, const char* b, size_t n)
{
    CMN_ASSERT(a != nullptr && b != nullptr && n != 0);
    for (size_t i = 0; i < n; ++i) {
        if (s_toUpper(a[i]) != s_toUpper(b[i])) return 0;
        if (a[i] == '\0') break;
    }
    return 1;
}

int CMN_MatchKeyword(const char* a, char* b)
{
    CMN_ASSERT(a != nullptr && b != nullptr);
    for (char* c = b; *c != '\0'; ++c)
        if (*c == ' ') *c = '_';
    return CMN_StrSameIC(a, b);
}

int CMN_IsWhitespace(int c)
{
    return c >= 0 && c < 128 && TOKEN_IsBlank(static_cast<char>(c));
}

// The end of a scan from s over the characters that pass. Lines are short: a scan that goes on and
// on runs through something that is no line.
template <typename Passes>
static char* s_scan(char* s, Passes passes)
{
    const char* start = s;
    for (; passes(*s); ++s)
        CMN_ASSERT(gbAllowAnyLineLength || s - start < CMN_SCAN_MAX);
    return s;
}

void CMN_EatWhitespace(char** p)
{
    CMN_ASSERT(p != nullptr && *p != nullptr);
    *p = s_scan(*p, TOKEN_IsBlank);
}

void CMN_EatNonWhitespace(char** p)
{
    CMN_ASSERT(p != nullptr && *p != nullptr);
    *p = s_scan(*p, [](char c) { return c != '\0' && !TOKEN_IsBlank(c); });
}

int CMN_EatKeyword(char** p)
{
    CMN_ASSERT(p != nullptr && *p != nullptr);
    *p = s_scan(*p, [](char c) { return c != '\0' && c != ']'; });
    if (**p == '\0') return 0;
    ++*p;
    CMN_EatWhitespace(p);
    return 1;
}

void CMN_TerminateEnd(char* s)
{
    CMN_ASSERT(s != nullptr);
    char* end = s + std::strlen(s);
    while (end > s && TOKEN_IsBlank(end[-1]))
        --end;
    // Every trailing blank, not only the first: the buffer holds no rest of the line.
    while (*end != '\0')
        *end++ = '\0';
}

void CMN_ConvertToLower(char* s)
{
    CMN_ASSERT(s != nullptr);
    for (; *s != '\0'; ++s)
        *s = s_toLower(*s);
}

void CMN_ConvertToUpper(char* s)
{
    CMN_ASSERT(s != nullptr);
    for (; *s != '\0'; ++s)
        *s = s_toUpper(*s);
}

int CMN_AnyUpper(const char* s)
{
    CMN_ASSERT(s != nullptr);
    for (; *s != '\0'; ++s)
        if (*s >= 'A' && *s <= 'Z') return 1;
    return 0;
}

char* CMN_getBasename(char* path)
{
    CMN_ASSERT(path != nullptr);
    char* slash = std::strrchr(path, '/');
    return slash == nullptr ? path : slash + 1;
}

int CMN_ReservedWord(const char* w)
{
    CMN_ASSERT(w != nullptr);
    for (const char* const* word = ReservedWords; **word != '\0'; ++word)
        if (CMN_StrSameIC(w, *word)) return 0;
    return 1;
}

int CMN_ReservedWordErr(const char* w)
{
    if (CMN_ReservedWord(w)) return 1;
    ERRLOG_LineErrorNew(1916, w);
    return 0;
}

void CMN_TestRequiredKeyword(const char* keyword, int found)
{
    CMN_ASSERT(keyword != nullptr);
    if (found) return;
    char file[CMN_PATH_MAX + 1];
    ERRLOG_ErrorNew(1915, keyword, PARSE_GetFileName(file));
}

// Splitting.

int CMN_ArgParse(const char* line, int maxArgs, CmnArgs* args)
{
    return CMN_ArgParsePlus(line, maxArgs, '\0', args);
}

// The end of the token that begins at s.
static const char* s_tokenEnd(const char* s, char sep)
{
    if (*s == sep) return s + 1;
    while (*s != '\0' && *s != ' ' && *s != '\t' && *s != sep)
        ++s;
    return s;
}

static void s_releaseArgs(CmnArgs* args)
{
    for (int i = 0; i < args->nStored; ++i)
        std::free(args->argv[i]);
    std::free(args->argv);
    args->argv = nullptr;
    args->nStored = 0;
}

int CMN_ArgParsePlus(const char* line, int maxArgs, char sep, CmnArgs* args)
{
    CMN_ASSERT(line != nullptr && args != nullptr);
    *args = {maxArgs, 0, 0, nullptr};
    if (maxArgs > 0) {
        args->argv = static_cast<char**>(std::calloc(static_cast<size_t>(maxArgs), sizeof(char*)));
        if (args->argv == nullptr) {
            ERRLOG_BugNew(1908, s_Module, __LINE__);
            return 0;
        }
    }
    for (const char* s = line;;) {
        s = TOKEN_SkipBlanks(s);
        if (*s == '\0') return 1;
        const char* end = s_tokenEnd(s, sep);
        if (args->nStored < maxArgs) {
            const size_t length = static_cast<size_t>(end - s);
            char* token = static_cast<char*>(std::malloc(length + 1));
            if (token == nullptr) {
                s_releaseArgs(args);
                ERRLOG_BugNew(1908, s_Module, __LINE__);
                return 0;
            }
            std::memcpy(token, s, length);
            token[length] = '\0';
            args->argv[args->nStored++] = token;
        }
        ++args->argc;
        s = end;
    }
}

void CMN_ArgFree(CmnArgs* args)
{
    CMN_ASSERT(args != nullptr && args->argv != nullptr);
    s_releaseArgs(args);
}

// Keyword values.

// Text as it may stand in a message: at most CMN_QUOTE_MAX characters of it.
struct Quoted {
    char text[CMN_QUOTE_MAX + 1];

    explicit Quoted(const char* s)
    {
        const size_t length = strnlen(s, CMN_QUOTE_MAX);
        std::memcpy(text, s, length);
        text[length] = '\0';
    }
};

void CMN_SetStr(char* dest, const char* src, unsigned maxLen, const char* keyword)
{
    CMN_ASSERT(dest != nullptr && src != nullptr && keyword != nullptr && maxLen != 0);
    unsigned limit = maxLen;
    if (std::strlen(src) > maxLen) {
        if (limit > CMN_QUOTE_MAX) limit = CMN_QUOTE_MAX;
        ERRLOG_LineErrorNew(1912, keyword, Quoted(src).text, limit);
    }
    if (*src == '\0') ERRLOG_LineErrorNew(1913, keyword);
    CMN_strncpy(dest, src, limit);
}

int CMN_SetKeywordStr(char* dest, const char* src, unsigned maxLen, const char* keyword)
{
    CMN_ASSERT(dest != nullptr && keyword != nullptr);
    if (*dest != '\0') {
        ERRLOG_LineErrorNew(1911, keyword);
        return 0;
    }
    CMN_SetStr(dest, src, maxLen, keyword);
    return 1;
}

int CMN_SetFilenameStr(char* dest, const char* src, unsigned maxLen, const char* keyword)
{
    CMN_ASSERT(dest != nullptr && src != nullptr && keyword != nullptr && maxLen != 0);
    if (*dest != '\0') {
        ERRLOG_LineErrorNew(1911, keyword);
        return 0;
    }
    if (std::strlen(src) > maxLen) ERRLOG_LineErrorNew(1914, keyword, Quoted(src).text, maxLen);
    if (*src == '\0') ERRLOG_LineErrorNew(1913, keyword);
    // An over-long file name is reported but kept: it is still the name of the file.
    CMN_strncpy(dest, src, CMN_PATH_MAX);
    return 1;
}
