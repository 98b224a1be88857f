// Reading and checking of the file header.
#include "IbisParser/hdr.h"

#include <cstring>

#include "IbisParser/base/keyword.h"
#include "IbisParser/base/textbuf.h"
#include "IbisParser/base/version.h"
#include "IbisParser/errlog.h"
#include "IbisParser/parse.h"

static const char s_Module[] = "IbisParser/hdr";

// Letters and digits apart, the characters of a DOS file name.
static const char s_dosCharacters[] = "!#$%&'()-@^_`{}~";

// The keywords whose data lines are text, with the message for a second one; 0 for none:
// a disclaimer may come in several pieces.
struct TextKeyword {
    KeywordCode code;
    unsigned duplicate;
    char* Hdr::*text;
};
static const TextKeyword s_textKeywords[] = {
    {KEY_SOURCE, 1017, &Hdr::source},
    {KEY_NOTES, 1018, &Hdr::notes},
    {KEY_DISCLAIMER, 0, &Hdr::disclaimer},
    {KEY_COPYRIGHT, 1019, &Hdr::copyright},
};
enum { TEXT_KEYWORDS = 4 };

static bool s_allowAnyFileName = false;
static bool s_allow1xVersions = false;
static bool s_allowAnyVersion = false;

// The header being read.
static Hdr* s_open = nullptr;
static int s_currentKeyword = NOT_KEY;
static bool s_found[KEY_COPYRIGHT + 1];
static TextSize s_textSizes[TEXT_KEYWORDS];

static bool s_anyFound()
{
    for (bool found : s_found)
        if (found) return true;
    return false;
}

// 1 when the keyword came before in this header.
static bool s_checkDuplicate(int code, unsigned message)
{
    if (!s_found[code]) return false;
    if (message != 0) ERRLOG_LineErrorNew(message);
    return true;
}

// The version class of a legal version, else 0.
static int s_versionClass(const char* version)
{
    if (s_allowAnyVersion) return VERSION_Latest()->versionClass;
    if (s_allow1xVersions && std::strncmp(version, "1.", 2) == 0) return 1;
    const VersionRow* row = VERSION_Find(version);
    return row != nullptr ? row->versionClass : 0;
}

static void s_receiveVersion(char* text)
{
    if (s_checkDuplicate(KEY_IBIS_VER, 1005)) return;
    if (s_anyFound()) ERRLOG_LineErrorNew(1007);
    CMN_SetKeywordStr(s_open->ibisVer, text, HDR_VERSION_MAX, "IBIS_Version");
    const int versionClass = s_versionClass(s_open->ibisVer);
    if (versionClass == 0)
        ERRLOG_LineErrorNew(1008, s_open->ibisVer);
    else
        geFileVersion = versionClass;
}

static bool s_isUpper(char c)
{
    return c >= 'A' && c <= 'Z';
}

static bool s_isDosCharacter(char c)
{
    return (c >= 'a' && c <= 'z') || s_isUpper(c) || (c >= '0' && c <= '9') || c == '.' ||
           std::strchr(s_dosCharacters, c) != nullptr;
}

static void s_checkFileName(const char* name)
{
    int periods = 0;
    for (const char* c = name; *c != '\0'; ++c) {
        if (s_isUpper(*c)) ERRLOG_LineErrorNew(1010, name, *c);
        if (!s_isDosCharacter(*c)) ERRLOG_LineErrorNew(1011, name, *c);
        if (*c == '.' && ++periods > 1) ERRLOG_LineErrorNew(1012, name);
    }
    if (periods == 0) ERRLOG_LineErrorNew(1013, name);
    if (!CMN_StrSameIC(name, gsFileName)) ERRLOG_LineErrorNew(1014, gsFileName, name);
}

static void s_receiveFileName(char* text)
{
    if (s_checkDuplicate(KEY_FILE_NAME, 1009)) return;
    const unsigned limit = VERSION_Current()->limits[LIMIT_FILE_NAME];
    CMN_SetFilenameStr(s_open->fileName, text, limit, "File_name");
    if (!s_allowAnyFileName) s_checkFileName(s_open->fileName);
    CMN_ReservedWordErr(s_open->fileName);
}

static void s_receiveShortText(int code, unsigned duplicate, char* field, unsigned maxLen,
                               const char* name, char* text)
{
    if (s_checkDuplicate(code, duplicate)) return;
    CMN_SetKeywordStr(field, text, maxLen, name);
    CMN_ReservedWordErr(field);
}

static void s_appendText(int row, const char* line)
{
    char** text = &(s_open->*s_textKeywords[row].text);
    TextSize* size = &s_textSizes[row];
    if ((*text != nullptr && !TEXTBUF_Append(text, size, "\n", 1)) ||
        !TEXTBUF_Append(text, size, line, std::strlen(line)))
        ERRLOG_LineErrorNew(1020);
}

// The row of a keyword whose data lines are text, or -1.
static int s_textRow(int code)
{
    for (int row = 0; row < TEXT_KEYWORDS; ++row)
        if (s_textKeywords[row].code == code) return row;
    return -1;
}

static int s_receiveKeyword(int code, char* line)
{
    const int row = s_textRow(code);
    s_currentKeyword = code;
    CMN_EatKeyword(&line);
    if (row >= 0) {
        s_checkDuplicate(code, s_textKeywords[row].duplicate);
        if (*line != '\0') s_appendText(row, line);
    } else if (code == KEY_IBIS_VER) {
        s_receiveVersion(line);
    } else if (code == KEY_FILE_NAME) {
        s_receiveFileName(line);
    } else if (code == KEY_FILE_REV) {
        s_receiveShortText(code, 1015, s_open->fileRev, HDR_FILE_REV_MAX, "File_Rev", line);
    } else if (code == KEY_DATE) {
        s_receiveShortText(code, 1016, s_open->date, HDR_DATE_MAX, "Date", line);
    } else {
        ERRLOG_BugNew(1003);
        return 0;
    }
    s_found[code] = true;
    return 1;
}

static int s_receiveData(const char* line)
{
    const int row = s_textRow(s_currentKeyword);
    if (row < 0) {
        ERRLOG_LineErrorNew(1002);
        return 0;
    }
    s_appendText(row, line);
    return 1;
}

static int s_getText(char* text, char** out)
{
    *out = text;
    return text != nullptr;
}

static int s_getField(char* field, char** out)
{
    return s_getText(field[0] != '\0' ? field : nullptr, out);
}

int HDR_Init()
{
    IbisRoot* root = nullptr;
    s_open = nullptr;
    if (!IBIS_GetIBIS(&root)) {
        ERRLOG_BugNew(1000);
        return 0;
    }
    void* block = nullptr;
    if (!CMN_malloc(&block, sizeof(Hdr))) {
        ERRLOG_LineErrorNew(1006);
        return 0;
    }
    s_open = static_cast<Hdr*>(block);
    s_currentKeyword = NOT_KEY;
    std::memset(s_found, 0, sizeof s_found);
    std::memset(s_textSizes, 0, sizeof s_textSizes);
    return IBIS_AddHdr(root, s_open);
}

int HDR_ReceiveLine(int kind, int code, char* line)
{
    CMN_ASSERT(line != nullptr);
    if (kind != LINE_KEYWORD && kind != LINE_DATA) {
        ERRLOG_BugNew(1004);
        return 0;
    }
    if (s_open == nullptr) {
        ERRLOG_LineErrorNew(kind == LINE_KEYWORD ? 1001 : 1002);
        return 0;
    }
    return kind == LINE_KEYWORD ? s_receiveKeyword(code, line) : s_receiveData(line);
}

int HDR_Fini(int nextCode)
{
    if (s_open == nullptr) return 1;
    if (nextCode == KEY_IBIS_VER) {
        ERRLOG_LineErrorNew(1005);
        return 1;
    }
    if (KEYWORD_Section(nextCode) == SECTION_HEADER) return 1;
    CMN_TestRequiredKeyword("IBIS_Version", s_found[KEY_IBIS_VER]);
    CMN_TestRequiredKeyword("File_name", s_found[KEY_FILE_NAME]);
    CMN_TestRequiredKeyword("File_Rev", s_found[KEY_FILE_REV]);
    s_open = nullptr;
    return 1;
}

int HDR_AddLink(Hdr** head, Hdr* item)
{
    CMN_ASSERT(head != nullptr && item != nullptr);
    item->next = *head;
    *head = item;
    return 1;
}

void HDR_FreeList(Hdr* head)
{
    while (head != nullptr) {
        if (head == s_open) s_open = nullptr;
        for (const TextKeyword& keyword : s_textKeywords) {
            void* text = head->*keyword.text;
            if (text != nullptr) CMN_freeSetNull(&text);
        }
        void* record = head;
        head = head->next;
        CMN_freeSetNull(&record);
    }
}

// clang-format off
#define GETTER(function, get, field)                                  \
    int function(Hdr* hdr, char** out)                                \
    {                                                                 \
        CMN_ASSERT(hdr != nullptr && out != nullptr);                 \
        return get(hdr->field, out);                                  \
    }
GETTER(HDR_GetIBIS_Ver,   s_getField, ibisVer)
GETTER(HDR_GetFile_name,  s_getField, fileName)
GETTER(HDR_GetFile_Rev,   s_getField, fileRev)
GETTER(HDR_GetDate,       s_getField, date)
GETTER(HDR_GetSource,     s_getText,  source)
GETTER(HDR_GetNotes,      s_getText,  notes)
GETTER(HDR_GetDisclaimer, s_getText,  disclaimer)
GETTER(HDR_GetCopyright,  s_getText,  copyright)
#undef GETTER
// clang-format on

void HDR_AllowAnyFile_name(int on)
{
    s_allowAnyFileName = on != 0;
}

void HDR_Allow1xVersions(int on)
{
    s_allow1xVersions = on != 0;
}

void HDR_AllowAnyVersion(int on)
{
    s_allowAnyVersion = on != 0;
}
