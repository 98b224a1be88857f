// The reader of IBIS-family files: lines, keywords and where they go.
#include "IbisParser/parse.h"

#include <algorithm>
#include <climits>
#include <cstring>

#include "IbisParser/algmod.h"
#include "IbisParser/errlog.h"
#include "IbisParser/ibis.h"
#include "IbisParser/parse_internal.h"
#include "IbisParser/sections_internal.h"
#include "IbisParser/textbuf_internal.h"

static const char s_Module[] = "IbisParser/parse";

enum {
    LINE_MAX_READ = 1024,      // characters read of a line; the rest is dropped
    KEYWORD_MAX = 117,         // characters between the brackets
    COMMENT_KEYWORD_LEN = 14,  // of "[Comment Char]"
    DESCRIPTION_MAX = 120      // characters of a description line in a parameter file
};

static const char s_NoCommentChars[] =
    "0123456789abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ[]._/=+-";

// What a version class means to the reader.
struct VersionRow {
    const KeywordEntry* keywords;
    int lineMax;
    const char* name;
};
static const VersionRow s_Versions[] = {
    {keywords, 80, "2.1"},  // classes below 2 are read as class 2
    {keywords_Ver3, 80, "3.2"},
    {keywords_Ver4, 120, "4.2"},
    {keywords_Ver5, 120, "5.0"},
};
enum { VERSION_FIRST = 2, VERSION_LAST = 5 };

// Keywords that mean another one in their context.
struct ContextRow {
    KeywordCode read;
    bool (*holds)(void);
    KeywordCode meant;
};

unsigned long gulLineNum = 0;
char gsFileName[CMN_PATH_MAX + 1] = "";
char gpcComment = '|';
KeywordCode geCurrentKeyword = NOT_KEY;
FileType geCurrFileType = FILE_IBS;
int geFileVersion = 0;
int gbIBIS_VerFound = 0;
int gbEndFound = 0;
int gbInSubModel = 0;
int gbContinue = 0;
char* gsBuffer = nullptr;

static int bTabFound = 0;

static const VersionRow* s_version(void)
{
    const int versionClass = geFileVersion < VERSION_FIRST  ? VERSION_FIRST
                             : geFileVersion > VERSION_LAST ? VERSION_LAST
                                                            : geFileVersion;
    return &s_Versions[versionClass - VERSION_FIRST];
}

static void s_banner(const char* name, const char* version)
{
    if (!gbSuppressBanners)
        std::printf("\nChecking %s for IBIS %s Compatibility...\n\n", name, version);
}

static void s_reset(FileType fileType)
{
    gbInSubModel = 0;
    bTabFound = 0;
    gulLineNum = 0;
    gpcComment = '|';
    geCurrentKeyword = NOT_KEY;
    gbIBIS_VerFound = 0;
    gbEndFound = 0;
    geCurrFileType = fileType;
}

static bool s_isBlank(char c)
{
    return CMN_IsWhitespace(static_cast<unsigned char>(c)) != 0;
}

// Unlike the common scanners without a limit: lines of any length are skipped over.
static char* s_skipBlanks(char* text)
{
    while (s_isBlank(*text))
        ++text;
    return text;
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
    const int lineMax = s_version()->lineMax;
    if (!gbAllowAnyLineLength && length > static_cast<std::size_t>(lineMax))
        ERRLOG_LineErrorNew(905, lineMax);
    if (!bTabFound && std::memchr(line, '\t', length) != nullptr) {
        bTabFound = 1;
        ERRLOG_LineWarnNew(921);
    }
}

// clang-format off
static bool s_inPackageModel(void) { return KEY_DEFINE_PACKAGE_MODEL <= geCurrentKeyword && geCurrentKeyword <= KEY_DESCRIPTION; }
static bool s_inBoard(void)        { return geCurrentKeyword == KEY_BEGIN_BOARD_DESCRIPTION || geCurrentKeyword == KEY_EBDMDL_MANUFACTURER; }
static bool s_inBoardFile(void)    { return geCurrFileType == FILE_EBD; }
static bool s_inSubModel(void)     { return gbInSubModel != 0; }

static const ContextRow s_Contexts[] = {
    { KEY_MANUFACTURER,     s_inPackageModel, KEY_PKGMDL_MANUFACTURER },
    { KEY_MANUFACTURER,     s_inBoard,        KEY_EBDMDL_MANUFACTURER },
    { KEY_NUMBER_OF_PINS,   s_inBoardFile,    KEY_EBDMDL_NUMBER_OF_PINS },
    { KEY_PULLDOWN,         s_inSubModel,     KEY_SUBMDL_PULLDOWN },
    { KEY_PULLUP,           s_inSubModel,     KEY_SUBMDL_PULLUP },
    { KEY_GND_CLAMP,        s_inSubModel,     KEY_SUBMDL_GND_CLAMP },
    { KEY_POWER_CLAMP,      s_inSubModel,     KEY_SUBMDL_POWER_CLAMP },
    { KEY_RAMP,             s_inSubModel,     KEY_SUBMDL_RAMP },
    { KEY_RISING_WAVEFORM,  s_inSubModel,     KEY_SUBMDL_RISING_WAVEFORM },
    { KEY_FALLING_WAVEFORM, s_inSubModel,     KEY_SUBMDL_FALLING_WAVEFORM },
};
// clang-format on

static KeywordCode s_inContext(KeywordCode code)
{
    for (const ContextRow& row : s_Contexts)
        if (row.read == code && row.holds()) return row.meant;
    return code;
}

// The entry of the version's table that has the name, else its last one. Blanks of the name become
// "_".
static const KeywordEntry* s_findKeyword(char* name)
{
    std::replace(name, name + std::strlen(name), ' ', '_');
    const char first =
        name[0] >= 'a' && name[0] <= 'z' ? static_cast<char>(name[0] - 'a' + 'A') : name[0];
    const KeywordEntry* entry = s_version()->keywords;
    // Most entries differ in their first letter.
    while (entry->code != NOT_KEY &&
           (entry->name[0] != first || !CMN_MatchKeyword(entry->name, name)))
        ++entry;
    return entry;
}

static KeywordCode s_getKeyword(const char* line)
{
    CMN_ASSERT(line != nullptr);
    const char* end = std::strchr(line, ']');
    if (end == nullptr) {
        ERRLOG_LineErrorNew(914);
        return NOT_KEY;
    }
    const std::size_t length = static_cast<std::size_t>(end - line) - 1;
    if (length == 0 || length > KEYWORD_MAX) {
        ERRLOG_LineErrorNew(915);
        return NOT_KEY;
    }
    char name[KEYWORD_MAX + 1];
    CMN_strncpy(name, line + 1, length);
    const KeywordEntry* entry = s_findKeyword(name);
    if (entry->code == NOT_KEY) ERRLOG_LineErrorNew(916, name);
    return s_inContext(entry->code);
}

// The number of the message that refuses the section in this file, or 0.
static int s_refusal(const Section* section)
{
    return section->refusal[geCurrFileType - FILE_IBS];
}

// Begins a record of the section whose opening keyword was read.
static void s_openSection(const Section* section, KeywordCode code)
{
    if (code == KEY_IBIS_VER && gbIBIS_VerFound) {
        ERRLOG_LineErrorNew(910);
        return;
    }
    int refusal = s_refusal(section);
    // Version 2 has no board files, so it knows two kinds of file only. A package model, which
    // both may hold, keeps its own message.
    if (refusal != 0 && geFileVersion <= 2 && (code == KEY_COMPONENT || code == KEY_MODEL))
        refusal = 911;
    if (refusal != 0) {
        ERRLOG_LineErrorNew(static_cast<unsigned>(refusal));
        return;
    }
    if (code == KEY_IBIS_VER) gbIBIS_VerFound = 1;
    if (code == KEY_SUBMODEL) gbInSubModel = 1;
    section->init();
}

static void s_beginKeyword(const char* line)
{
    if (gbContinue) {
        ERRLOG_LineErrorNew(909);
        gbContinue = 0;
    }
    const Section* previous = SECTIONS_Find(geCurrentKeyword);
    const KeywordCode code = s_getKeyword(line);
    const Section* section = SECTIONS_Find(code);
    geCurrentKeyword = code;
    if (previous != nullptr && previous->fini != nullptr) previous->fini(code);
    // An unknown keyword may be one of a later version, in the middle of the submodel.
    if (code != NOT_KEY && (code < KEY_SUBMODEL || code > KEY_SUBMDL_FALLING_WAVEFORM))
        gbInSubModel = 0;
    if (section != nullptr && section->opener == code) s_openSection(section, code);
}

static void s_endKeyword(char* line)
{
    CMN_EatKeyword(&line);
    if (*line != '\0') ERRLOG_LineErrorNew(920);
    gbEndFound = 1;
}

static void s_deliver(int kind, char* line)
{
    if (geCurrentKeyword == NOT_KEY) {
        if (kind == LINE_DATA) ERRLOG_LineErrorNew(907, line);
        return;
    }
    if (geCurrentKeyword == KEY_END) {
        s_endKeyword(line);
        return;
    }
    const Section* section = SECTIONS_Find(geCurrentKeyword);
    if (section == nullptr) {
        ERRLOG_BugNew(908, s_Module, __LINE__);
        return;
    }
    if (s_refusal(section) == 0) section->receiveLine(kind, geCurrentKeyword, line);
}

// The length of the line was judged before. What is left of a line that is too long must not stop
// the scanners of the sections.
static void s_send(int kind, char* line)
{
    const int saved = gbAllowAnyLineLength;
    gbAllowAnyLineLength = 1;
    if (kind == LINE_KEYWORD) s_beginKeyword(line);
    s_deliver(kind, line);
    gbAllowAnyLineLength = saved;
}

static bool s_isCommentKeyword(const char* line)
{
    return CMN_StrSameICn(line, "[COMMENT_CHAR]", COMMENT_KEYWORD_LEN) ||
           CMN_StrSameICn(line, "[COMMENT CHAR]", COMMENT_KEYWORD_LEN);
}

static void s_setComment(char* line)
{
    static const char suffix[] = "_char";
    const char* text = s_skipBlanks(line + COMMENT_KEYWORD_LEN);
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
    if (!s_isBlank(*rest) && !startsComment(*rest)) {
        ERRLOG_LineErrorNew(917);
        return;
    }
    if (std::strchr(s_NoCommentChars, character) != nullptr) {
        ERRLOG_LineErrorNew(918, character);
        return;
    }
    if (!startsComment(*s_skipBlanks(rest))) ERRLOG_LineErrorNew(919);
    gpcComment = character;
}

// Under these keywords an indented bracket is text.
static bool s_inHeaderText(void)
{
    return KEY_SOURCE <= geCurrentKeyword && geCurrentKeyword <= KEY_COPYRIGHT;
}

static void s_readLine(char* line)
{
    s_testLine(line);
    char* text = s_skipBlanks(line);
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
    s_send(kind, text);
}

static int s_readDocument(const char* name, FileType fileType)
{
    unsigned long lines = 0;
    const int version = CMN_getIbisVer(name, &lines, fileType);
    if (version < VERSION_FIRST || version > VERSION_LAST) {
        ERRLOG_ErrorNew(900, name);
        return 0;
    }
    geFileVersion = version;
    s_banner(name, s_version()->name);
    s_reset(fileType);
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
        s_send(LINE_KEYWORD, end);
    }
    std::fclose(file);
    return 1;
}

static bool s_beginsDescription(char* line)
{
    static const char word[] = "Description";
    return line[0] == '(' && std::strncmp(s_skipBlanks(line + 1), word, sizeof word - 1) == 0;
}

// Appends a line of a parameter file to gsBuffer: 1 done, 0 when memory ran out.
static int s_appendParameterLine(char* line, TextSize* size)
{
    s_testLine(line);
    s_cutComment(line);
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
    s_banner(name, s_Versions[VERSION_LAST - VERSION_FIRST].name);
    s_reset(FILE_AMI);
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

int INIT(void)
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

void TEST(int fileType, int deep)
{
    IbisRoot* root = nullptr;
    if (fileType == FILE_AMI)
        AMI_Test();
    else if (!IBIS_GetIBIS(&root))
        return;
    else if (fileType == FILE_IBS)
        IBIS_Test(root);
    else
        EBD_Test(root, deep);
}

int FINI(void)
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

unsigned long PARSE_GetLineNum(void)
{
    return gulLineNum;
}

char* PARSE_GetFileName(char* buf)
{
    return std::strcpy(buf, gsFileName);
}

char* PARSE_GetKeywordStr(int code, char* buf)
{
    CMN_ASSERT(buf != nullptr);
    const KeywordEntry* entry = keywords;
    while (entry->code != code && entry->code != NOT_KEY)
        ++entry;
    if (entry->code == code) {
        CMN_strncpy(buf, entry->name, KEYWORD_MAX);
    } else {
        ERRLOG_BugNew(904);
        CMN_strncpy(buf, "Unknown enumerated keyword code", KEYWORD_MAX);
    }
    return buf;
}

void PARSE_SaveState(ParseState* state)
{
    CMN_ASSERT(state != nullptr);
    state->lineNum = gulLineNum;
    std::strcpy(state->fileName, gsFileName);
    std::strcpy(state->filePath, gsFilePath_ibs);
    state->comment = gpcComment;
    state->currentKeyword = geCurrentKeyword;
    state->fileType = geCurrFileType;
    state->fileVersion = geFileVersion;
    state->ibisVerFound = gbIBIS_VerFound;
    state->endFound = gbEndFound;
    state->inSubModel = gbInSubModel;
    state->tabFound = bTabFound;
    state->continued = gbContinue;
}

void PARSE_RestoreState(const ParseState* state)
{
    CMN_ASSERT(state != nullptr);
    gulLineNum = state->lineNum;
    std::strcpy(gsFileName, state->fileName);
    std::strcpy(gsFilePath_ibs, state->filePath);
    gpcComment = state->comment;
    geCurrentKeyword = state->currentKeyword;
    geCurrFileType = state->fileType;
    geFileVersion = state->fileVersion;
    gbIBIS_VerFound = state->ibisVerFound;
    gbEndFound = state->endFound;
    gbInSubModel = state->inSubModel;
    bTabFound = state->tabFound;
    gbContinue = state->continued;
}

int PARSE_ReadParameters(const char* name, std::FILE* file)
{
    s_beginParameters(name);
    CMN_strncpy(gsFileName, name, CMN_PATH_MAX);
    return s_readParameters(file);
}
