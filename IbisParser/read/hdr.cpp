// Reading and checking of the file header.
#include "IbisParser/hdr.h"

#include <cstring>

#include "IbisParser/base/textbuf.h"
#include "IbisParser/errlog.h"
#include "IbisParser/parse.h"

static const char s_Module[] = "IbisParser/hdr";

static const char* const s_LegalVersions[] = {"2.0", "2.1", "3.0", "3.1", "3.2",
                                              "4.0", "4.1", "4.2", "5.0"};

// The longest [File Name] by version class.
static const unsigned s_FileNameMax[] = {12, 12, 12, 24, 44, 44};

// Letters and digits apart, the characters of a DOS file name.
static const char s_DosCharacters[] = "!#$%&'()-@^_`{}~";

// The keywords whose data lines are text, with the message for a second one; 0 for none:
// a disclaimer may come in several pieces.
struct TextKeyword {
    KeywordCode code;
    unsigned duplicate;
    char* Hdr::*text;
};
static const TextKeyword s_TextKeywords[] = {
    {KEY_SOURCE, 1017, &Hdr::source},
    {KEY_NOTES, 1018, &Hdr::notes},
    {KEY_DISCLAIMER, 0, &Hdr::disclaimer},
    {KEY_COPYRIGHT, 1019, &Hdr::copyright},
};
enum { TEXT_KEYWORDS = 4 };

static bool s_AllowAnyFileName = false;
static bool s_Allow1xVersions = false;
static bool s_AllowAnyVersion = false;

// The header being read.
static Hdr* s_Open = nullptr;
static int s_CurrentKeyword = NOT_KEY;
static bool s_Found[KEY_COPYRIGHT + 1];
static TextSize s_TextSizes[TEXT_KEYWORDS];

static bool s_anyFound(void)
{
    for (bool found : s_Found)
        if (found) return true;
    return false;
}

// 1 when the keyword came before in this header.
static bool s_checkDuplicate(int code, unsigned message)
{
    if (!s_Found[code]) return false;
    if (message != 0) ERRLOG_LineErrorNew(message);
    return true;
}

// The version class of a legal version, else 0.
static int s_versionClass(const char* version)
{
    if (s_AllowAnyVersion) return 5;
    bool legal = s_Allow1xVersions && std::strncmp(version, "1.", 2) == 0;
    for (const char* known : s_LegalVersions)
        legal = legal || std::strcmp(version, known) == 0;
    return legal ? version[0] - '0' : 0;
}

static void s_receiveVersion(char* text)
{
    if (s_checkDuplicate(KEY_IBIS_VER, 1005)) return;
    if (s_anyFound()) ERRLOG_LineErrorNew(1007);
    CMN_SetKeywordStr(s_Open->ibisVer, text, HDR_VERSION_MAX, "IBIS_Version");
    const int versionClass = s_versionClass(s_Open->ibisVer);
    if (versionClass == 0)
        ERRLOG_LineErrorNew(1008, s_Open->ibisVer);
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
           std::strchr(s_DosCharacters, c) != nullptr;
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
    const int limits = static_cast<int>(sizeof s_FileNameMax / sizeof s_FileNameMax[0]);
    const int row = geFileVersion < 0 ? 0 : geFileVersion < limits ? geFileVersion : limits - 1;
    CMN_SetFilenameStr(s_Open->fileName, text, s_FileNameMax[row], "File_name");
    if (!s_AllowAnyFileName) s_checkFileName(s_Open->fileName);
    CMN_ReservedWordErr(s_Open->fileName);
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
    char** text = &(s_Open->*s_TextKeywords[row].text);
    TextSize* size = &s_TextSizes[row];
    if ((*text != nullptr && !TEXTBUF_Append(text, size, "\n", 1)) ||
        !TEXTBUF_Append(text, size, line, std::strlen(line)))
        ERRLOG_LineErrorNew(1020);
}

// The row of a keyword whose data lines are text, or -1.
static int s_textRow(int code)
{
    for (int row = 0; row < TEXT_KEYWORDS; ++row)
        if (s_TextKeywords[row].code == code) return row;
    return -1;
}

static int s_receiveKeyword(int code, char* line)
{
    const int row = s_textRow(code);
    s_CurrentKeyword = code;
    CMN_EatKeyword(&line);
    if (row >= 0) {
        s_checkDuplicate(code, s_TextKeywords[row].duplicate);
        if (*line != '\0') s_appendText(row, line);
    } else if (code == KEY_IBIS_VER) {
        s_receiveVersion(line);
    } else if (code == KEY_FILE_NAME) {
        s_receiveFileName(line);
    } else if (code == KEY_FILE_REV) {
        s_receiveShortText(code, 1015, s_Open->fileRev, HDR_FILE_REV_MAX, "File_Rev", line);
    } else if (code == KEY_DATE) {
        s_receiveShortText(code, 1016, s_Open->date, HDR_DATE_MAX, "Date", line);
    } else {
        ERRLOG_BugNew(1003);
        return 0;
    }
    s_Found[code] = true;
    return 1;
}

static int s_receiveData(const char* line)
{
    const int row = s_textRow(s_CurrentKeyword);
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

int HDR_Init(void)
{
    IbisRoot* root = nullptr;
    s_Open = nullptr;
    if (!IBIS_GetIBIS(&root)) {
        ERRLOG_BugNew(1000);
        return 0;
    }
    void* block = nullptr;
    if (!CMN_malloc(&block, sizeof(Hdr))) {
        ERRLOG_LineErrorNew(1006);
        return 0;
    }
    s_Open = static_cast<Hdr*>(block);
    s_CurrentKeyword = NOT_KEY;
    std::memset(s_Found, 0, sizeof s_Found);
    std::memset(s_TextSizes, 0, sizeof s_TextSizes);
    return IBIS_AddHdr(root, s_Open);
}

int HDR_ReceiveLine(int kind, int code, char* line)
{
    CMN_ASSERT(line != nullptr);
    if (kind != LINE_KEYWORD && kind != LINE_DATA) {
        ERRLOG_BugNew(1004);
        return 0;
    }
    if (s_Open == nullptr) {
        ERRLOG_LineErrorNew(kind == LINE_KEYWORD ? 1001 : 1002);
        return 0;
    }
    return kind == LINE_KEYWORD ? s_receiveKeyword(code, line) : s_receiveData(line);
}

int HDR_Fini(int nextCode)
{
    if (s_Open == nullptr) return 1;
    if (nextCode == KEY_IBIS_VER) {
        ERRLOG_LineErrorNew(1005);
        return 1;
    }
    if (KEY_FILE_NAME <= nextCode && nextCode <= KEY_COPYRIGHT) return 1;
    CMN_TestRequiredKeyword("IBIS_Version", s_Found[KEY_IBIS_VER]);
    CMN_TestRequiredKeyword("File_name", s_Found[KEY_FILE_NAME]);
    CMN_TestRequiredKeyword("File_Rev", s_Found[KEY_FILE_REV]);
    s_Open = nullptr;
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
        if (head == s_Open) s_Open = nullptr;
        for (const TextKeyword& keyword : s_TextKeywords) {
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
    s_AllowAnyFileName = on != 0;
}

void HDR_Allow1xVersions(int on)
{
    s_Allow1xVersions = on != 0;
}

void HDR_AllowAnyVersion(int on)
{
    s_AllowAnyVersion = on != 0;
}
