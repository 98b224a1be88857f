// [Define Package Model] with its pins, their sections, and the block of matrices.
#include "IbisParser/pkgmdl.h"

#include <climits>
#include <cstddef>
#include <cstring>
#include <initializer_list>
#include <iterator>

#include "IbisParser/apkg.h"
#include "IbisParser/base/token.h"
#include "IbisParser/cmn.h"
#include "IbisParser/cmpnt.h"
#include "IbisParser/errlog.h"
#include "IbisParser/parse.h"
#include "IbisParser/store/section.h"

static const char s_Module[] = "IbisParser/pkgmdl";
static const SecFrame s_frame = {s_Module, 2300, 2301, 2302, 2303, 2304, 2305};

// Bits of PkgMdl::reported; the second is that of the first of three matrices.
enum { REPORTED_NO_SECTIONS_KEYWORD = 1, REPORTED_MATRIX = 2 };

static PkgMdl* s_open = nullptr;
static int s_keyword = NOT_KEY;        // the open record's current one
static int s_isRepeated = 0;           // it was met before; its data lines are passed over
static int s_hasLateManufacturer = 0;  // one that the reader took for a component's
static SectPath* s_path = nullptr;     // sections of the current pin
static SectPath s_discarded;           // those of a pin that is listed twice
static int s_pinLines = 0;
static int s_longestPath = 0;  // sections of the pin that has most

static bool s_hasFound(int code)
{
    return (s_open->found >> (code - KEY_DEFINE_PACKAGE_MODEL) & 1u) != 0;
}

// Sections are read when their number is declared, and after the complaint that it is not.
static bool s_takesSections()
{
    return s_hasFound(KEY_NUMBER_OF_SECTIONS) ||
           (s_open->reported & REPORTED_NO_SECTIONS_KEYWORD) != 0;
}

static bool s_hasSection(const SectPath* path)
{
    const SectItem* item = path->head;
    while (item != nullptr && item->kind != SECT_SECTION)
        item = item->next;
    return item != nullptr;
}

static void s_endPin()
{
    SectPath* path = s_path;
    s_path = nullptr;
    if (path == nullptr) return;
    const bool unfinished = path->open != nullptr;
    SECT_End(path);
    const int count = SECT_Count(path);
    if (path != &s_discarded) {
        if (count > s_longestPath) s_longestPath = count;
        if (!s_hasSection(path)) {
            if (!unfinished && s_takesSections()) ERRLOG_LineErrorNew(2316, path->name);
        } else if (s_open->numberOfSections > 0 && count > s_open->numberOfSections) {
            ERRLOG_LineErrorNew(2315, path->name, count, s_open->numberOfSections);
        }
    }
    SECT_FreeList(&s_discarded);
}

static PkgPin* s_newPin(const char* name)
{
    PkgPin* pin = static_cast<PkgPin*>(SEC_NewRecord(&s_frame, sizeof(PkgPin)));
    if (pin == nullptr) return nullptr;
    SEC_CopyName(pin->name, name, SIZE_PIN);
    pin->line = PARSE_GetLineNum();
    pin->index = s_open->pinCount++;
    if (s_open->lastPin != nullptr)
        s_open->lastPin->next = pin;
    else
        s_open->pins = pin;
    s_open->lastPin = pin;
    return pin;
}

// The record of a pin line's pin: a new one, or null after a complaint.
static PkgPin* s_addPin(char* name)
{
    ++s_pinLines;
    if (std::strlen(name) > SIZE_PIN) {
        ERRLOG_LineErrorNew(2312, name, static_cast<int>(SIZE_PIN));
        name[SIZE_PIN] = '\0';
    }
    if (s_open->pinIndex == nullptr) {
        void* block = nullptr;
        if (!CMN_malloc(&block, sizeof(IdxTable))) return nullptr;
        s_open->pinIndex = static_cast<IdxTable*>(block);
    }
    const PkgPin* known = PKGMDL_FindPin(s_open, name);
    if (known != nullptr) {
        ERRLOG_LineErrorNew(2311, name, s_open->name);
        SECT_Begin(&s_discarded, SECT_PACKAGE_PIN, known->name);
        s_path = &s_discarded;
        return nullptr;
    }
    PkgPin* pin = s_newPin(name);
    if (pin == nullptr) return nullptr;
    void** value = nullptr;
    if (IDX_SlotName(s_open->pinIndex, pin->name, &value)) *value = pin;
    SECT_Begin(&pin->path, SECT_PACKAGE_PIN, pin->name);
    s_path = &pin->path;
    return pin;
}

static int s_pinLine(char* line)
{
    char* text = TOKEN_SkipBlanks(line);
    const bool goesOn = s_path != nullptr && (s_path->open != nullptr || SECT_IsItem(text));
    const char* pinName = s_path != nullptr ? s_path->name : "";
    if (!goesOn) {
        s_endPin();
        char* name = TOKEN_Next(&text);
        s_addPin(name);
        pinName = name;
        text = TOKEN_SkipBlanks(text);
        if (*text == '\0') return 1;
    }
    if (!s_takesSections()) {
        if (!SECT_IsItem(text)) {
            ERRLOG_LineErrorNew(2317, text, pinName);
            return 0;
        }
        ERRLOG_LineErrorNew(2314, pinName);
        s_open->reported |= REPORTED_NO_SECTIONS_KEYWORD;
    }
    return s_path != nullptr && SECT_ReceiveLine(s_path, text);
}

static void s_setCount(int* count, unsigned number, const char* text)
{
    unsigned value = 0;
    if (CMN_StrToUI(text, &value) == 1 && value > 0 && value <= INT_MAX)
        *count = static_cast<int>(value);
    else
        ERRLOG_LineErrorNew(number, text);
}

// [End Model Data], or whatever came in its place.
static void s_endModelData()
{
    MTX_Fini(s_open);
    s_open->modelDataOpen = 0;
    const PkgMdl* package = s_open;
    unsigned mark = REPORTED_MATRIX;
    for (const Mtx* matrix : {package->resistance, package->inductance, package->capacitance}) {
        if (matrix != nullptr && (s_open->reported & mark) == 0) {
            s_open->reported |= mark;
            MTX_Check(matrix, package);
        }
        mark <<= 1;
    }
}

static void s_finishKeyword()
{
    if (s_keyword == KEY_PIN_NUMBERS) s_endPin();
    s_keyword = NOT_KEY;
}

static void s_checkRecord()
{
    const PkgMdl* package = s_open;
    static const int required[] = {KEY_PKGMDL_MANUFACTURER, KEY_OEM, KEY_DESCRIPTION,
                                   KEY_NUMBER_OF_PINS, KEY_PIN_NUMBERS};
    for (const int code : required) {
        const bool late = code == KEY_PKGMDL_MANUFACTURER && s_hasLateManufacturer;
        if (!s_hasFound(code) && !late)
            ERRLOG_LineErrorNew(2307, package->name, SEC_KeywordName(code));
    }
    if (s_hasFound(KEY_PIN_NUMBERS) && package->numberOfPins > 0 &&
        s_pinLines != package->numberOfPins)
        ERRLOG_LineErrorNew(2313, package->name, s_pinLines, package->numberOfPins);
    if (s_hasFound(KEY_MODEL_DATA)) {
        for (const int code : {KEY_INDUCTANCE_MATRIX, KEY_CAPACITANCE_MATRIX})
            if (!s_hasFound(code)) ERRLOG_LineErrorNew(2319, package->name, SEC_KeywordName(code));
        if (!s_hasFound(KEY_RESISTANCE_MATRIX)) ERRLOG_LineNoteNew(2328, package->name);
    }
    const bool sections = s_takesSections();
    if (sections && s_hasFound(KEY_MODEL_DATA)) ERRLOG_LineWarnNew(2322, package->name);
    if (!sections && !s_hasFound(KEY_MODEL_DATA)) ERRLOG_LineErrorNew(2323, package->name);
    if (s_longestPath > 0 && s_longestPath < package->numberOfSections)
        ERRLOG_LineWarnNew(2329, package->name, package->numberOfSections);
    if (!package->ended) ERRLOG_LineErrorNew(2324, package->name);
}

void PKGMDL_Close(void)
{
    if (s_open == nullptr) return;
    s_finishKeyword();
    if (s_open->modelDataOpen) {
        ERRLOG_LineErrorNew(2320, s_open->name);
        s_endModelData();
    }
    s_checkRecord();
    s_open = nullptr;
}

// Keyword lines.

static void s_setName(char* text)
{
    CMN_SetStr(s_open->name, text, SIZE_NAME, SEC_KeywordName(KEY_DEFINE_PACKAGE_MODEL));
}

static void s_setManufacturer(char* text)
{
    CMN_SetStr(s_open->manufacturer, text, SIZE_NAME, SEC_KeywordName(KEY_PKGMDL_MANUFACTURER));
}

static void s_setOem(char* text)
{
    CMN_SetStr(s_open->oem, text, SIZE_NAME, SEC_KeywordName(KEY_OEM));
}

static void s_setDescription(char* text)
{
    CMN_SetStr(s_open->description, text, SIZE_DESCRIPTION, SEC_KeywordName(KEY_DESCRIPTION));
}

static void s_setNumberOfPins(char* text)
{
    s_setCount(&s_open->numberOfPins, 2308, text);
}

static void s_setNumberOfSections(char* text)
{
    s_setCount(&s_open->numberOfSections, 2309, text);
}

static void s_beginModelData(char*)
{
    s_open->modelDataOpen = 1;
    if (!s_hasFound(KEY_PIN_NUMBERS)) ERRLOG_LineErrorNew(2327, s_open->name);
}

static void s_beginMatrix(char* text)
{
    MTX_KeywordLine(s_open, s_keyword, text);
}

static void s_setBandwidth(char* text)
{
    MTX_Bandwidth(s_open, text);
}

static void s_beginRow(char* text)
{
    MTX_Row(s_open, text);
}

static void s_receiveEndModelData(char*)
{
    if (s_open->modelDataOpen)
        s_endModelData();
    else
        ERRLOG_LineErrorNew(2321);
}

static void s_receiveEnd(char*)
{
    s_open->ended = 1;
    PKGMDL_Close();
}

enum ArgumentForm { ARG_NONE, ARG_WORD, ARG_TEXT };

// clang-format off
static const struct KeywordRow {
    int code;
    ArgumentForm argument;  // text beyond it is ignored with a warning
    int once;               // a second one is reported and passed over
    int beforePins;         // stands before [Pin Numbers]
    int inModelData;        // stands between [Model Data] and its end
    void (*receive)(char* text);
} s_rows[] = {
    //  code                       argument  once before inside receive
    { KEY_DEFINE_PACKAGE_MODEL,    ARG_TEXT, 0,   0,     0,     s_setName },
    { KEY_PKGMDL_MANUFACTURER,     ARG_TEXT, 1,   0,     0,     s_setManufacturer },
    { KEY_OEM,                     ARG_TEXT, 1,   0,     0,     s_setOem },
    { KEY_DESCRIPTION,             ARG_TEXT, 1,   0,     0,     s_setDescription },
    { KEY_NUMBER_OF_PINS,          ARG_TEXT, 1,   1,     0,     s_setNumberOfPins },
    { KEY_PIN_NUMBERS,             ARG_NONE, 1,   0,     0,     nullptr },
    { KEY_MODEL_DATA,              ARG_NONE, 1,   0,     0,     s_beginModelData },
    { KEY_RESISTANCE_MATRIX,       ARG_WORD, 0,   0,     1,     s_beginMatrix },
    { KEY_INDUCTANCE_MATRIX,       ARG_WORD, 0,   0,     1,     s_beginMatrix },
    { KEY_CAPACITANCE_MATRIX,      ARG_WORD, 0,   0,     1,     s_beginMatrix },
    { KEY_BANDWIDTH,               ARG_WORD, 0,   0,     1,     s_setBandwidth },
    { KEY_ROW,                     ARG_WORD, 0,   0,     1,     s_beginRow },
    { KEY_END_MODEL_DATA,          ARG_NONE, 0,   0,     0,     s_receiveEndModelData },
    { KEY_END_PACKAGE_MODEL,       ARG_NONE, 0,   0,     0,     s_receiveEnd },
    { KEY_NUMBER_OF_SECTIONS,      ARG_TEXT, 1,   1,     0,     s_setNumberOfSections },
};
// clang-format on
static_assert(std::size(s_rows) == KEY_NUMBER_OF_SECTIONS - KEY_DEFINE_PACKAGE_MODEL + 1);

static bool s_isOfMatrix(int code)
{
    return code == KEY_BANDWIDTH || code == KEY_ROW;
}

// The part of the text that the keyword takes; what follows is reported.
static char* s_cutArgument(const KeywordRow& row, char* text)
{
    if (row.argument == ARG_TEXT) return text;
    static char none[] = "";
    char* argument = row.argument == ARG_WORD ? TOKEN_Next(&text) : nullptr;
    SEC_IgnoreText(2326, TOKEN_SkipBlanks(text), SEC_KeywordName(row.code));
    return argument != nullptr ? argument : none;
}

static int s_keywordLine(int code, char* line)
{
    if (code < KEY_DEFINE_PACKAGE_MODEL || code > KEY_NUMBER_OF_SECTIONS) {
        SEC_UnknownKeyword(&s_frame, __LINE__);
        return 0;
    }
    const KeywordRow& row = s_rows[code - KEY_DEFINE_PACKAGE_MODEL];
    s_finishKeyword();
    if (!s_isOfMatrix(code)) MTX_Fini(s_open);
    s_keyword = code;
    s_isRepeated = row.once && s_hasFound(code);
    if (s_isRepeated) {
        ERRLOG_LineErrorNew(2306, SEC_KeywordName(code), s_open->name);
        // A second block of matrices may bring those that the first one lacks.
        if (code == KEY_MODEL_DATA) s_open->modelDataOpen = 1;
        return 0;
    }
    if (row.beforePins && s_hasFound(KEY_PIN_NUMBERS))
        ERRLOG_LineErrorNew(2310, SEC_KeywordName(code), s_open->name);
    SEC_MarkFound(&s_open->found, code - KEY_DEFINE_PACKAGE_MODEL);
    if (row.inModelData && !s_open->modelDataOpen) {
        // The rows of a matrix that was refused say nothing new.
        if (!(s_isOfMatrix(code) && s_open->skipMatrix))
            ERRLOG_LineErrorNew(2318, SEC_KeywordName(code));
        s_open->skipMatrix = 1;
        return 0;
    }
    char* argument = s_cutArgument(row, SEC_Argument(line));
    if (row.receive != nullptr) row.receive(argument);
    return 1;
}

static int s_dataLine(char* line)
{
    if (s_keyword == KEY_PIN_NUMBERS) return s_isRepeated ? 0 : s_pinLine(line);
    if (s_keyword >= KEY_RESISTANCE_MATRIX && s_keyword <= KEY_ROW)
        return MTX_ReceiveLine(s_open, line);
    ERRLOG_LineErrorNew(2325, SEC_KeywordName(s_keyword));
    return 0;
}

int PKGMDL_Init(void)
{
    PKGMDL_Close();
    IbisRoot* root = SEC_Root(&s_frame, __LINE__);
    if (root == nullptr) return 0;
    PkgMdl* package = static_cast<PkgMdl*>(SEC_NewRecord(&s_frame, sizeof(PkgMdl)));
    if (package == nullptr) return 0;
    package->line = PARSE_GetLineNum();
    package->numberOfPins = -1;
    package->numberOfSections = -1;
    IBIS_AddPkgMdl(root, package);
    s_open = package;
    s_keyword = NOT_KEY;
    s_isRepeated = 0;
    s_hasLateManufacturer = 0;
    s_pinLines = 0;
    s_longestPath = 0;
    return 1;
}

int PKGMDL_ReceiveLine(int kind, int code, char* line)
{
    CMN_ASSERT(line != nullptr);
    if (!SEC_Receives(&s_frame, __LINE__, kind, s_open)) return 0;
    return kind == LINE_KEYWORD ? s_keywordLine(code, line) : s_dataLine(line);
}

int PKGMDL_Fini(int nextCode)
{
    if (s_open == nullptr) return 0;
    if (nextCode == NOT_KEY) {
        s_finishKeyword();
        return 1;
    }
    if (nextCode == KEY_MANUFACTURER && !s_hasFound(KEY_PIN_NUMBERS)) {
        s_finishKeyword();
        s_hasLateManufacturer = 1;
        return 1;
    }
    const bool staysOpen =
        nextCode > KEY_DEFINE_PACKAGE_MODEL && nextCode <= KEY_NUMBER_OF_SECTIONS;
    if (staysOpen)
        s_finishKeyword();
    else
        PKGMDL_Close();
    return 1;
}

static void s_freeRecord(PkgMdl* package)
{
    if (package == s_open) {
        s_open = nullptr;
        s_path = nullptr;
        SECT_FreeList(&s_discarded);
    }
    SEC_FreeList(package->pins, [](PkgPin* pin) {
        SECT_FreeList(&pin->path);
        SEC_FreeRecord(pin);
    });
    MTX_Free(package->resistance);
    MTX_Free(package->inductance);
    MTX_Free(package->capacitance);
    if (package->pinIndex != nullptr) {
        IDX_Clear(package->pinIndex);
        SEC_FreeRecord(package->pinIndex);
    }
    SEC_FreeRecord(package);
}

void PKGMDL_FreeList(PkgMdl* head)
{
    SEC_FreeList(head, s_freeRecord);
}

int PKGMDL_AddLink(PkgMdl** head, PkgMdl* item)
{
    CMN_ASSERT(head != nullptr && item != nullptr);
    return SEC_AddLink(head, item);
}

PkgMdl* PKGMDL_FindByName(PkgMdl* head, const char* name)
{
    CMN_ASSERT(name != nullptr);
    return SEC_FindByName(head, name);
}

PkgPin* PKGMDL_FindPin(const PkgMdl* package, const char* name)
{
    CMN_ASSERT(package != nullptr && name != nullptr);
    if (package->pinIndex == nullptr) return nullptr;
    return static_cast<PkgPin*>(IDX_FindName(package->pinIndex, name));
}

int PKGMDL_HasPin(const PkgMdl* package, const char* name)
{
    return PKGMDL_FindPin(package, name) != nullptr;
}

PkgMdl* PKGMDL_GetOpen(void)
{
    return s_open;
}
