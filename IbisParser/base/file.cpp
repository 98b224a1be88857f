// Files and lines of the common helpers.
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "IbisParser/base/raise.h"
#include "IbisParser/base/token.h"
#include "IbisParser/base/version.h"
#include "IbisParser/cmn.h"

static const char s_Module[] = "IbisParser/cmn";

int gbAllowAnyCharacter = 0;

// The file kinds, 1 to 4, and the message for a wrong extension.
static const struct {
    const char* extension;
    ErrNumber<> wrongExtension;
} s_kinds[] = {{".ibs", 1900}, {".pkg", 1903}, {".ebd", 1902}, {".ami", 1924}};

enum {
    KIND_FIRST = 1,
    KIND_LAST = 4,
    VERSION_LINE_MAX = 120,
    CTRL_Z = 26,
    FIRST_BLOCK = 128  // of an unbounded line
};

FILE* CMN_fopen(const char* name, const char* mode)
{
    return std::fopen(name, mode);
}

// The caller has seen to the room.
static char* s_append(char* s, const char* tail)
{
    std::memcpy(s + std::strlen(s), tail, std::strlen(tail) + 1);
    return s;
}

char* CMN_GetIbsPath(char* buf)
{
    CMN_ASSERT(buf != nullptr);
    buf[0] = '\0';
    return s_append(buf, gsFilePath_ibs);
}

int CMN_AllowAnyCharacter(int on)
{
    gbAllowAnyCharacter = on != 0;
    return gbAllowAnyCharacter;
}

// Splits name at its last "/" into directory (kept from the file before when there is none) and
// file name. 0 when the directory does not fit.
static int s_splitPath(const char* name, char* fileName)
{
    const char* slash = std::strrchr(name, '/');
    const char* base = slash == nullptr ? name : slash + 1;
    CMN_strncpy(fileName, base, CMN_PATH_MAX);
    const size_t length = static_cast<size_t>(base - name);
    if (length > CMN_PATH_MAX) return 0;
    if (length != 0) CMN_strncpy(gsFilePath_ibs, name, length);
    return 1;
}

// Gives fileName the kind's extension or checks the one it has.
static int s_fitExtension(char* fileName, int kind)
{
    const char* extension = s_kinds[kind - KIND_FIRST].extension;
    const char* period = std::strrchr(fileName, '.');
    if (period == nullptr) {
        if (std::strlen(fileName) + std::strlen(extension) > CMN_PATH_MAX) {
            ERRLOG_ErrorNew(1901);
            return 0;
        }
        s_append(fileName, extension);
        return 1;
    }
    if (CMN_StrSameIC(period, extension)) return 1;
    ERRLOG_ErrorNew(s_kinds[kind - KIND_FIRST].wrongExtension);
    return 0;
}

// Opens directory and file name as they are, in lower case, in upper case. The directory takes the
// case that was found.
static FILE* s_openAnyCase(const char* fileName)
{
    static void (*const conversions[])(char*) = {nullptr, CMN_ConvertToLower, CMN_ConvertToUpper};
    for (const auto convert : conversions) {
        char path[CMN_PATH_MAX + 1];
        s_append(CMN_GetIbsPath(path), fileName);
        if (convert != nullptr) convert(path);
        FILE* file = CMN_fopen(path, "r");
        if (file == nullptr) continue;
        if (convert != nullptr) convert(gsFilePath_ibs);
        return file;
    }
    return nullptr;
}

int CMN_OpenFile(const char* name, int kind, FILE** file, char* fileName)
{
    CMN_ASSERT(name != nullptr && file != nullptr);
    CMN_ASSERT(kind >= KIND_FIRST && kind <= KIND_LAST);
    // Kinds 2 and 4 are named inside a file that was read: the caller has already cut the name.
    CMN_ASSERT((kind != 2 && kind != 4) || std::strlen(name) < CMN_PATH_MAX);
    char ownName[CMN_PATH_MAX + 1] = "";
    if (fileName == nullptr) fileName = ownName;

    const int fits = s_splitPath(name, fileName);
    if (!s_fitExtension(fileName, kind)) return 0;
    if (!fits || std::strlen(gsFilePath_ibs) + std::strlen(fileName) > CMN_PATH_MAX) {
        ERRLOG_ErrorNew(1904);
        return 0;
    }
    *file = s_openAnyCase(fileName);
    if (*file != nullptr) return 1;
    ERRLOG_ErrorNew(1905, gsFilePath_ibs, fileName);
    return 0;
}

// Lines. Both readers share the rules; a bounded line drops what does not fit, an unbounded one
// grows.

struct LineBuffer {
    char* text;
    size_t length;
    size_t room;  // characters that fit beside the terminator
    bool grows;
};

// 1 when one more character fits or may be dropped, 0 when memory ran out.
static int s_makeRoom(LineBuffer* line)
{
    if (line->length < line->room || !line->grows) return 1;
    const size_t size = line->text == nullptr ? size_t{FIRST_BLOCK} : 2 * (line->room + 1);
    void* block = line->text;
    if (size > UINT_MAX || !CMN_realloc(&block, size)) return 0;
    line->text = static_cast<char*>(block);
    line->room = size - 1;
    return 1;
}

static int s_store(LineBuffer* line, int c)
{
    if (line->length >= line->room) {
        if (!s_makeRoom(line)) return 0;
        if (line->length >= line->room) return 1;
    }
    line->text[line->length++] = static_cast<char>(c);
    return 1;
}

// What to call a character that a line must not hold; null for a legal one.
static const char* s_illegalKind(int c)
{
    if (c >= 128) return "non-7-bit ASCII";
    if (c >= 32 || c == '\t') return nullptr;
    return c == 0 ? "NUL" : "control";
}

// Whether the character just read and the one after it are this pair; the pair is consumed.
static bool s_followedBy(int wanted, FILE* stream)
{
    const int next = getc_unlocked(stream);
    if (next == wanted) return true;
    if (next != EOF) ungetc(next, stream);
    return false;
}

static bool s_isPlain(int c)
{
    return c >= 32 && c < 128;
}

// Stores c and the plain characters after it that fit; gives the first one that is neither.
static int s_storePlain(LineBuffer* line, int c, FILE* stream)
{
    char* text = line->text + line->length;
    const char* end = line->text + line->room;
    for (; s_isPlain(c) && text < end; c = getc_unlocked(stream))
        *text++ = static_cast<char>(c);
    line->length = static_cast<size_t>(text - line->text);
    return c;
}

enum LineEnd { LINE_NONE, LINE_DONE, LINE_NO_MEMORY };

// Reads one physical line, up to and with its end.
static LineEnd s_readLine(LineBuffer* line, FILE* stream)
{
    int c = getc_unlocked(stream);
    if (c == EOF) return LINE_NONE;
    // The terminator needs room even when the line turns out empty.
    if (!s_makeRoom(line)) return LINE_NO_MEMORY;
    while ((c = s_storePlain(line, c, stream)) != EOF) {
        if (!s_isPlain(c)) {
            if (c == '\n' || (c == '\r' && s_followedBy('\n', stream)))
                return s_store(line, '\n') ? LINE_DONE : LINE_NO_MEMORY;
            if (c == CTRL_Z && s_followedBy(EOF, stream)) break;
            const char* kind = gbAllowAnyCharacter ? nullptr : s_illegalKind(c);
            if (kind != nullptr) {
                const bool kept = line->grows || line->length < line->room;
                ERRLOG_LineErrorNew(1917, kind, static_cast<unsigned>(c),
                                    kept ? "  Converting to space." : "");
                c = ' ';
            }
        }
        if (!s_store(line, c)) return LINE_NO_MEMORY;
        c = getc_unlocked(stream);
    }
    return LINE_DONE;
}

char* CMN_GetLine(char* buf, int size, FILE* stream)
{
    if (buf == nullptr || stream == nullptr || size <= 0) return nullptr;
    buf[0] = '\0';
    if (size == 1) return buf;
    LineBuffer line = {buf, 0, static_cast<size_t>(size) - 1, false};
    if (s_readLine(&line, stream) == LINE_NONE) return nullptr;
    buf[line.length] = '\0';
    return buf;
}

char* CMN_GetInfiniteLine(unsigned* size, FILE* stream)
{
    if (size == nullptr || stream == nullptr) return nullptr;
    LineBuffer line = {nullptr, 0, 0, true};
    const LineEnd end = s_readLine(&line, stream);
    if (end == LINE_NONE || line.text == nullptr) return nullptr;
    if (end == LINE_NO_MEMORY) {
        std::free(line.text);
        return nullptr;
    }
    line.text[line.length] = '\0';
    *size = static_cast<unsigned>(line.length + 1);
    return line.text;
}

// The version class in the first keyword line, 0 when it is none.
static int s_versionOf(const char* line)
{
    if (!CMN_StrSameICn(line, "[IBIS Ver]", 10) && !CMN_StrSameICn(line, "[IBIS_Ver]", 10))
        return 0;
    return VERSION_Probe(TOKEN_SkipBlanks(line + 10));
}

int CMN_getIbisVer(const char* name, unsigned long* lines, int kind)
{
    CMN_ASSERT(lines != nullptr);
    FILE* file = nullptr;
    if (!CMN_OpenFile(name, kind, &file, nullptr)) return 0;
    std::rewind(file);

    // The reading proper reports odd characters; the probe stays silent about them.
    const int anyCharacter = gbAllowAnyCharacter;
    gbAllowAnyCharacter = 1;
    int version = 0;
    char buf[VERSION_LINE_MAX + 1] = "";
    while (CMN_GetLine(buf, sizeof buf, file) != nullptr) {
        ++*lines;
        const char* start = TOKEN_SkipBlanks(buf);
        if (*start != '[') continue;
        version = s_versionOf(start);
        break;
    }
    gbAllowAnyCharacter = anyCharacter;
    std::fclose(file);
    return version;
}
