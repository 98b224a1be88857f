// The reader of IBIS-family files: files and lines. What a line is for, the sender finds out.
#include "IbisParser/parse.h"

#include <climits>
#include <cstring>

#include "IbisParser/base/keyword.h"
#include "IbisParser/base/place.h"
#include "IbisParser/base/position.h"
#include "IbisParser/base/raise.h"
#include "IbisParser/base/textbuf.h"
#include "IbisParser/base/token.h"
#include "IbisParser/base/version.h"
#include "IbisParser/ibis.h"
#include "IbisParser/read/parse.h"
#include "IbisParser/read/sender.h"

static const char s_Module[] = "IbisParser/parse";

enum {
    LINE_MAX_READ = 1024,      // characters read of a line; the rest is dropped
    COMMENT_KEYWORD_LEN = 14,  // of "[Comment Char]"
    DESCRIPTION_MAX = 120      // characters of a description line in a parameter file
};

static const char s_noCommentChars[] =
    "0123456789abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ[]._/=+-";

static void s_banner(const char* name, const char* version)
{
    if (!gbSuppressBanners)
        std::printf("\nChecking %s for IBIS %s Compatibility...\n\n", name, version);
}

// Cuts at the comment character and trims the end.
static void s_cutComment(char* line)
{
    char* comment = std::strchr(line, gpcComment);
    if (comment != nullptr) *comment = '\0';
    CMN_TerminateEnd(line);
}

static void s_testLine(char* line)
{
    CMN_ASSERT(line != nullptr);
    std::size_t length = std::strlen(line);
    if (length > 0 && line[length - 1] == '\n') line[--length] = '\0';
    const int lineMax = VERSION_Current()->lineMax;
    if (!gbAllowAnyLineLength && length > static_cast<std::size_t>(lineMax))
        ERRLOG_LineErrorNew(905, lineMax);
    if (!gbTabFound && std::strchr(line, '\t') != nullptr) {
        gbTabFound = true;
        ERRLOG_LineWarnNew(921);
    }
}

static bool s_isCommentKeyword(const char* line)
{
    return CMN_StrSameICn(line, "[COMMENT_CHAR]", COMMENT_KEYWORD_LEN) ||
           CMN_StrSameICn(line, "[COMMENT CHAR]", COMMENT_KEYWORD_LEN);
}

static void s_setComment(char* line)
{
    static const char suffix[] = "_char";
    const char* text = TOKEN_SkipBlanks(line + COMMENT_KEYWORD_LEN);
    const char character = text[0];
    if (character == '\0' || std::strncmp(text + 1, suffix, sizeof suffix - 1) != 0) {
        ERRLOG_LineErrorNew(917);
        return;
    }
    char* rest = line + (text - line) + sizeof suffix;
    // A comment may follow, begun by the old character or the new one.
    const auto startsComment = [character](char c) {
        return c == '\0' || c == gpcComment || c == character;
    };
    if (!TOKEN_IsBlank(*rest) && !startsComment(*rest)) {
        ERRLOG_LineErrorNew(917);
        return;
    }
    if (std::strchr(s_noCommentChars, character) != nullptr) {
        ERRLOG_LineErrorNew(918, character);
        return;
    }
    if (!startsComment(*TOKEN_SkipBlanks(rest))) ERRLOG_LineErrorNew(919);
    gpcComment = character;
}

// Under these keywords an indented bracket is text.
static bool s_inHeaderText()
{
    return KEYWORD_HasRule(geCurrentKeyword, RULE_TEXT);
}

static void s_readLine(char* line)
{
    const PlaceLine here(line);
    s_testLine(line);
    char* text = TOKEN_SkipBlanks(line);
    if (*text == '\0' || *text == gpcComment) return;
    int kind = LINE_DATA;
    if (*text == '[' && (text == line || !s_inHeaderText())) {
        kind = LINE_KEYWORD;
        if (text != line) ERRLOG_LineErrorNew(906);
    }
    if (gbEndFound) {
        ERRLOG_LineErrorNew(902);
        return;
    }
    if (kind == LINE_KEYWORD && s_isCommentKeyword(text)) {
        s_setComment(text);
        return;
    }
    s_cutComment(text);
    SENDER_Send(kind, text);
}

static int s_readDocument(const char* name, FileType fileType)
{
    unsigned long lines = 0;
    const int version = CMN_getIbisVer(name, &lines, fileType);
    if (!VERSION_IsRead(version)) {
        ERRLOG_ErrorNew(900, name);
        return 0;
    }
    geFileVersion = version;
    s_banner(name, VERSION_Current()->text);
    POSITION_Reset(fileType);
    std::FILE* file = nullptr;
    if (!CMN_OpenFile(name, fileType, &file, gsFileName)) return 0;
    if (CMN_AnyUpper(gsFileName)) ERRLOG_WarnNew(901, gsFileName);
    // The line counts before it is read: what is wrong with its characters is reported then.
    char line[LINE_MAX_READ + 1];
    for (++gulLineNum; CMN_GetLine(line, sizeof line, file) != nullptr; ++gulLineNum)
        s_readLine(line);
    --gulLineNum;
    if (!gbEndFound) {
        char end[] = "[END]";
        ERRLOG_LineErrorNew(903);
        SENDER_Send(LINE_KEYWORD, end);
    }
    std::fclose(file);
    return 1;
}

static bool s_beginsDescription(char* line)
{
    static const char word[] = "Description";
    return line[0] == '(' && std::strncmp(TOKEN_SkipBlanks(line + 1), word, sizeof word - 1) == 0;
}

// Appends a line of a parameter file to gsBuffer: 1 done, 0 when memory ran out.
static int s_appendParameterLine(char* line, TextSize* size)
{
    s_testLine(line);
    s_cutComment(line);
    if (line[0] != '\0') PLACE_AddToText(size->length);
    if (line[0] == '\0' || TEXTBUF_Append(&gsBuffer, size, line, std::strlen(line))) return 1;
    ERRLOG_BugNew(922, s_Module, __LINE__);
    return 0;
}

static int s_readParameterLines(std::FILE* file)
{
    TextSize size = {};
    bool inDescription = false;
    int ok = 1;
    while (ok) {
        ++gulLineNum;
        unsigned lineSize = 0;
        char* line = CMN_GetInfiniteLine(&lineSize, file);
        if (line == nullptr) {
            // Neither end nor error of the stream: there was no memory for the line.
            ok = std::feof(file) || std::ferror(file);
            --gulLineNum;
            break;
        }
        const PlaceLine here(line);
        if (line[0] == '(') inDescription = s_beginsDescription(line);
        if (inDescription && lineSize > DESCRIPTION_MAX + 1)
            ERRLOG_ErrorNew(923, static_cast<int>(gulLineNum), DESCRIPTION_MAX);
        ok = s_appendParameterLine(line, &size);
        void* block = line;
        CMN_freeSetNull(&block);
    }
    return ok;
}

static void s_beginParameters(const char* name)
{
    s_banner(name, VERSION_Latest()->text);
    POSITION_Reset(FILE_AMI);
    geFileVersion = VERSION_Latest()->versionClass;
    if (gsBuffer != nullptr) {
        void* block = gsBuffer;
        CMN_freeSetNull(&block);
        gsBuffer = nullptr;
    }
}

static int s_readParameters(std::FILE* file)
{
    const int saved = gbAllowAnyLineLength;
    gbAllowAnyLineLength = 1;
    const int ok = s_readParameterLines(file);
    gbAllowAnyLineLength = saved;
    std::fclose(file);
    return ok;
}

int INIT()
{
    if (IBIS_New()) return 1;
    ERRLOG_ErrorNew(3900, "IBIS", s_Module, __LINE__);
    return 0;
}

int PARSE(const char* name, int fileType)
{
    CMN_ASSERT(name != nullptr);
    if (fileType != FILE_AMI) return s_readDocument(name, static_cast<FileType>(fileType));
    s_beginParameters(name);
    std::FILE* file = nullptr;
    return CMN_OpenFile(name, FILE_AMI, &file, gsFileName) && s_readParameters(file);
}

int FINI()
{
    IbisRoot* root = nullptr;
    if (IBIS_GetIBIS(&root)) IBIS_Free(root);
    ERRLOG_Totals();
    return gulError_cnt > INT_MAX ? INT_MAX : static_cast<int>(gulError_cnt);
}

void PARSE_AllowAnyLineLength(int on)
{
    gbAllowAnyLineLength = on != 0;
}

void PARSE_SuppressBanners(int on)
{
    gbSuppressBanners = on != 0;
}

int PARSE_ReadParameters(const char* name, std::FILE* file)
{
    s_beginParameters(name);
    CMN_strncpy(gsFileName, name, CMN_PATH_MAX);
    return s_readParameters(file);
}
