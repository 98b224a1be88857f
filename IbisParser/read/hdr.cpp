// Reading and checking of the file header.
#include "IbisParser/hdr.h"

#include <cstring>
#include <iterator>

#include "IbisParser/base/raise.h"
#include "IbisParser/base/textbuf.h"
#include "IbisParser/base/version.h"
#include "IbisParser/parse.h"
#include "IbisParser/store/life.h"

static const char s_Module[] = "IbisParser/hdr";

// Letters and digits apart, the characters of a DOS file name.
static const char s_dosCharacters[] = "!#$%&'()-@^_`{}~";

static bool s_allowAnyFileName = false;
static bool s_allow1xVersions = false;
static bool s_allowAnyVersion = false;

struct HdrKeyword : SecKeyword<Hdr> {
    ErrNumber<> duplicate;  // message of a second one; 0: it may come in several pieces
    char* Hdr::*text;       // of its data lines
};

// The keyword table is that of all sections, but not the life: the bugs of a header stand without a
// place, and one that a second [IBIS Ver] finds open is left as it is.
static struct HdrReading : SecReading<Hdr, HdrKeyword> {
    unsigned found = 0;      // a bit for each row
    TextSize sizes[8] = {};  // of the rows' texts
} s_reading;

// The version class of a legal version, else 0.
static int s_versionClass(const char* version)
{
    if (s_allowAnyVersion) return VERSION_Latest()->versionClass;
    if (s_allow1xVersions && std::strncmp(version, "1.", 2) == 0) return 1;
    const VersionRow* row = VERSION_Find(version);
    return row != nullptr ? row->versionClass : 0;
}

static int s_receiveVersion(Hdr* header, const char* text)
{
    // Its own bit stands already.
    if ((s_reading.found & (s_reading.found - 1)) != 0) ERRLOG_LineErrorNew(1007);
    CMN_SetKeywordStr(header->ibisVer, text, HDR_VERSION_MAX, "IBIS_Version");
    const int versionClass = s_versionClass(header->ibisVer);
    if (versionClass == 0)
        ERRLOG_LineErrorNew(1008, header->ibisVer);
    else
        geFileVersion = versionClass;
    return 1;
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

static int s_receiveFileName(Hdr* header, const char* text)
{
    const unsigned limit = VERSION_Current()->limits[LIMIT_FILE_NAME];
    CMN_SetFilenameStr(header->fileName, text, limit, "File_name");
    if (!s_allowAnyFileName) s_checkFileName(header->fileName);
    CMN_ReservedWordErr(header->fileName);
    return 1;
}

static int s_receiveFileRev(Hdr* header, const char* text)
{
    CMN_SetKeywordStr(header->fileRev, text, HDR_FILE_REV_MAX, "File_Rev");
    CMN_ReservedWordErr(header->fileRev);
    return 1;
}

static int s_receiveDate(Hdr* header, const char* text)
{
    CMN_SetKeywordStr(header->date, text, HDR_DATE_MAX, "Date");
    CMN_ReservedWordErr(header->date);
    return 1;
}

// Texts of several lines.

static int s_appendText(Hdr* header, const char* line)
{
    char** text = &(header->*s_reading.keyword->text);
    TextSize* size = &s_reading.sizes[s_reading.keyword - s_reading.rows.data()];
    if ((*text != nullptr && !TEXTBUF_Append(text, size, "\n", 1)) ||
        !TEXTBUF_Append(text, size, line, std::strlen(line)))
        ERRLOG_LineErrorNew(1020);
    return 1;
}

static int s_beginText(Hdr* header, const char* text)
{
    return *text == '\0' || s_appendText(header, text);
}

// clang-format off
static const HdrKeyword s_keywords[] = {
    //                   flags                begin              data line              twice  text
    { { KEY_IBIS_VER,    SEC_TEXT | SEC_ONCE, s_receiveVersion,  nullptr      },  1005,  nullptr },
    { { KEY_FILE_NAME,   SEC_TEXT | SEC_ONCE, s_receiveFileName, nullptr      },  1009,  nullptr },
    { { KEY_FILE_REV,    SEC_TEXT | SEC_ONCE, s_receiveFileRev,  nullptr      },  1015,  nullptr },
    { { KEY_DATE,        SEC_TEXT | SEC_ONCE, s_receiveDate,     nullptr      },  1016,  nullptr },
    { { KEY_SOURCE,      SEC_TEXT,            s_beginText,       s_appendText },  1017,  &Hdr::source },
    { { KEY_NOTES,       SEC_TEXT,            s_beginText,       s_appendText },  1018,  &Hdr::notes },
    { { KEY_DISCLAIMER,  SEC_TEXT,            s_beginText,       s_appendText },     0,  &Hdr::disclaimer },
    { { KEY_COPYRIGHT,   SEC_TEXT,            s_beginText,       s_appendText },  1019,  &Hdr::copyright },
};
// clang-format on
static_assert(std::size(s_keywords) == std::size(HdrReading().sizes));

static int s_receiveKeyword(int code, char* line)
{
    const HdrKeyword* row = s_reading.Find(code);
    s_reading.keyword = row;
    if (row == nullptr) {
        ERRLOG_BugNew(1003);
        return 0;
    }
    CMN_EatKeyword(&line);
    if (!SEC_MarkFound(&s_reading.found, static_cast<int>(row - s_keywords))) {
        if (row->duplicate != 0) ERRLOG_LineErrorNew(row->duplicate);
        if ((row->flags & SEC_ONCE) != 0) return 1;
    }
    return row->begin(s_reading.open, line);
}

static int s_receiveData(char* line)
{
    if (s_reading.keyword == nullptr || !s_reading.keyword->data) {
        ERRLOG_LineErrorNew(1002);
        return 0;
    }
    return s_reading.keyword->data(s_reading.open, line);
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
    s_reading = {};
    if (!IBIS_GetIBIS(&root)) {
        ERRLOG_BugNew(1000);
        return 0;
    }
    void* block = nullptr;
    if (!CMN_malloc(&block, sizeof(Hdr))) {
        ERRLOG_LineErrorNew(1006);
        return 0;
    }
    s_reading.open = static_cast<Hdr*>(block);
    s_reading.rows = s_keywords;
    return IBIS_AddHdr(root, s_reading.open);
}

int HDR_ReceiveLine(int kind, int code, char* line)
{
    CMN_ASSERT(line != nullptr);
    if (kind != LINE_KEYWORD && kind != LINE_DATA) {
        ERRLOG_BugNew(1004);
        return 0;
    }
    if (s_reading.open == nullptr) {
        ERRLOG_LineErrorNew(kind == LINE_KEYWORD ? ErrNumber<>(1001) : ErrNumber<>(1002));
        return 0;
    }
    return kind == LINE_KEYWORD ? s_receiveKeyword(code, line) : s_receiveData(line);
}

static int s_hasFound(int code)
{
    return (s_reading.found >> (s_reading.Find(code) - s_keywords) & 1u) != 0;
}

int HDR_Fini(int nextCode)
{
    if (s_reading.open == nullptr) return 1;
    if (nextCode == KEY_IBIS_VER) ERRLOG_LineErrorNew(1005);
    if (s_reading.Find(nextCode) != nullptr) return 1;
    CMN_TestRequiredKeyword("IBIS_Version", s_hasFound(KEY_IBIS_VER));
    CMN_TestRequiredKeyword("File_name", s_hasFound(KEY_FILE_NAME));
    CMN_TestRequiredKeyword("File_Rev", s_hasFound(KEY_FILE_REV));
    s_reading = {};
    return 1;
}

int HDR_AddLink(Hdr** head, Hdr* item)
{
    CMN_ASSERT(head != nullptr && item != nullptr);
    return SEC_AddLink(head, item);
}

void HDR_FreeList(Hdr* head)
{
    CMN_ASSERT(head != nullptr);
    SEC_FreeList(head, [](Hdr* header) {
        if (header == s_reading.open) s_reading = {};
        for (const HdrKeyword& row : s_keywords)
            if (row.text != nullptr) SEC_FreeText(&(header->*row.text));
        SEC_FreeRecord(header);
    });
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
