// [Define Package Model] with its pins, their sections, and the block of matrices.
#include "IbisParser/pkgmdl.h"

#include <cstddef>
#include <cstring>
#include <initializer_list>
#include <iterator>

#include "IbisParser/apkg.h"
#include "IbisParser/base/place.h"
#include "IbisParser/base/raise.h"
#include "IbisParser/base/token.h"
#include "IbisParser/cmn.h"
#include "IbisParser/cmpnt.h"
#include "IbisParser/store/life.h"

static const char s_Module[] = "IbisParser/pkgmdl";
static const SecFrame s_frame = {s_Module, 2300, 2301, 2302, 2303, 2304, 2305, 2325};

// Bits of PkgMdl::reported; the second is that of the first of three matrices.
enum { REPORTED_NO_SECTIONS_KEYWORD = 1, REPORTED_MATRIX = 2 };

struct PkgKeyword : SecKeyword<PkgMdl> {
    bool takesWord;    // without SEC_TEXT: one word may follow it
    bool beforePins;   // stands before [Pin Numbers]
    bool inModelData;  // stands between [Model Data] and its end
};

static struct PkgReading : SecReading<PkgMdl, PkgKeyword, &PkgMdl::found> {
    PlaceSpot endModelData = {0, 0};
    SectPath* path = nullptr;  // sections of the current pin
    SectPath discarded = {};   // those of a pin that is listed twice
    int pinLines = 0;
    int longestPath = 0;  // sections of the pin that has most
} s_reading;

// Sections are read when their number is declared, and after the complaint that it is not.
static bool s_takesSections(const PkgMdl* package)
{
    return s_reading.Has(KEY_NUMBER_OF_SECTIONS) ||
           (package->reported & REPORTED_NO_SECTIONS_KEYWORD) != 0;
}

static bool s_hasSection(const SectPath* path)
{
    const SectItem* item = path->head;
    while (item != nullptr && item->kind != SECT_SECTION)
        item = item->next;
    return item != nullptr;
}

static int s_endPin(PkgMdl* package)
{
    SectPath* path = s_reading.path;
    s_reading.path = nullptr;
    if (path == nullptr) return 1;
    const bool isKept = path != &s_reading.discarded;
    const PlaceScope at(SUBJECT_PIN, path->name,
                        isKept ? PLACE_Of(package->lastPin) : PlaceSpot{0, 0});
    const bool unfinished = path->open != nullptr;
    SECT_End(path);
    const int count = SECT_Count(path);
    if (isKept) {
        if (count > s_reading.longestPath) s_reading.longestPath = count;
        if (!s_hasSection(path)) {
            if (!unfinished && s_takesSections(package)) ERRLOG_LineErrorNew(2316, path->name);
        } else if (package->numberOfSections > 0 && count > package->numberOfSections) {
            ERRLOG_LineErrorNew(2315, path->name, count, package->numberOfSections);
        }
    }
    SECT_FreeList(&s_reading.discarded);
    return 1;
}

static PkgPin* s_newPin(PkgMdl* package, const char* name)
{
    PkgPin* pin = static_cast<PkgPin*>(SEC_NewRecord(&s_frame, sizeof(PkgPin)));
    if (pin == nullptr) return nullptr;
    SEC_KeepName(pin, name, SIZE_PIN);
    pin->line = PARSE_GetLineNum();
    pin->index = package->pinCount++;
    if (package->lastPin != nullptr)
        package->lastPin->next = pin;
    else
        package->pins = pin;
    package->lastPin = pin;
    return pin;
}

// The record of a pin line's pin: a new one, or null after a complaint.
static PkgPin* s_addPin(PkgMdl* package, const char* name)
{
    ++s_reading.pinLines;
    if (std::strlen(name) > SIZE_PIN) ERRLOG_LineErrorNew(2312, name, static_cast<int>(SIZE_PIN));
    if (package->pinIndex == nullptr) {
        void* block = nullptr;
        if (!CMN_malloc(&block, sizeof(IdxTable))) return nullptr;
        package->pinIndex = static_cast<IdxTable*>(block);
    }
    const PkgPin* known = PKGMDL_FindPin(package, name);
    if (known != nullptr) {
        ERRLOG_LineErrorNew(2311, name, package->name);
        SECT_Begin(&s_reading.discarded, SECT_PACKAGE_PIN, known->name);
        s_reading.path = &s_reading.discarded;
        return nullptr;
    }
    PkgPin* pin = s_newPin(package, name);
    if (pin == nullptr) return nullptr;
    void** value = nullptr;
    if (IDX_SlotName(package->pinIndex, SEC_WholeName(pin), &value)) *value = pin;
    SECT_Begin(&pin->path, SECT_PACKAGE_PIN, pin->name);
    s_reading.path = &pin->path;
    return pin;
}

static int s_pinLine(PkgMdl* package, char* line)
{
    char* text = TOKEN_SkipBlanks(line);
    const bool goesOn =
        s_reading.path != nullptr && (s_reading.path->open != nullptr || SECT_IsItem(text));
    const char* pinName = s_reading.path != nullptr ? s_reading.path->name : "";
    if (!goesOn) {
        s_endPin(package);
        char* name = TOKEN_Next(&text);
        s_addPin(package, name);
        pinName = name;
        text = TOKEN_SkipBlanks(text);
        if (*text == '\0') return 1;
    }
    const PlaceScope at(SUBJECT_PIN, pinName, {0, 0});
    if (!s_takesSections(package)) {
        if (!SECT_IsItem(text)) {
            ERRLOG_LineErrorNew(2317, text, pinName);
            return 0;
        }
        ERRLOG_LineErrorNew(2314, pinName);
        package->reported |= REPORTED_NO_SECTIONS_KEYWORD;
    }
    return s_reading.path != nullptr && SECT_ReceiveLine(s_reading.path, text);
}

static int s_setCount(int* count, ErrNumber<const char*> number, const char* text)
{
    int value = 0;
    if (SEC_ReadCount(text, &value) && value > 0)
        *count = value;
    else
        ERRLOG_LineErrorNew(number, text);
    return 1;
}

// [End Model Data], or whatever came in its place.
static void s_endModelData(PkgMdl* package)
{
    MTX_Fini(package);
    package->modelDataOpen = 0;
    unsigned mark = REPORTED_MATRIX;
    for (const Mtx* matrix : {package->resistance, package->inductance, package->capacitance}) {
        if (matrix != nullptr && (package->reported & mark) == 0) {
            package->reported |= mark;
            MTX_Check(matrix, package);
        }
        mark <<= 1;
    }
}

static void s_end(PkgMdl* package)
{
    if (package->modelDataOpen) {
        ERRLOG_LineErrorNew(2320, package->name);
        s_endModelData(package);
    }
    static const int required[] = {KEY_PKGMDL_MANUFACTURER, KEY_OEM, KEY_DESCRIPTION,
                                   KEY_NUMBER_OF_PINS, KEY_PIN_NUMBERS};
    for (const int code : required)
        if (!s_reading.Has(code)) ERRLOG_LineErrorNew(2307, package->name, SEC_KeywordName(code));
    if (s_reading.Has(KEY_PIN_NUMBERS) && package->numberOfPins > 0 &&
        s_reading.pinLines != package->numberOfPins)
        ERRLOG_LineErrorNew(2313, package->name, s_reading.pinLines, package->numberOfPins);
    if (s_reading.Has(KEY_MODEL_DATA)) {
        const PlaceLogged at(s_reading.endModelData);
        for (const int code : {KEY_INDUCTANCE_MATRIX, KEY_CAPACITANCE_MATRIX})
            if (!s_reading.Has(code))
                ERRLOG_LineErrorNew(2319, package->name, SEC_KeywordName(code));
        if (!s_reading.Has(KEY_RESISTANCE_MATRIX)) ERRLOG_LineNoteNew(2328, package->name);
    }
    const bool sections = s_takesSections(package);
    if (sections && s_reading.Has(KEY_MODEL_DATA)) ERRLOG_LineWarnNew(2322, package->name);
    if (!sections && !s_reading.Has(KEY_MODEL_DATA)) ERRLOG_LineErrorNew(2323, package->name);
    if (s_reading.longestPath > 0 && s_reading.longestPath < package->numberOfSections)
        ERRLOG_LineWarnNew(2329, package->name, package->numberOfSections);
    if (!package->ended) ERRLOG_LineErrorNew(2324, package->name);
}

// Keyword lines.

static int s_setText(char* field, const char* text, unsigned limit)
{
    CMN_SetStr(field, text, limit, SEC_KeywordName(s_reading.keyword->code));
    return 1;
}

static int s_setName(PkgMdl* package, const char* text)
{
    return s_setText(package->name, text, SIZE_NAME);
}

static int s_setManufacturer(PkgMdl* package, const char* text)
{
    return s_setText(package->manufacturer, text, SIZE_NAME);
}

static int s_setOem(PkgMdl* package, const char* text)
{
    return s_setText(package->oem, text, SIZE_NAME);
}

static int s_setDescription(PkgMdl* package, const char* text)
{
    return s_setText(package->description, text, SIZE_DESCRIPTION);
}

static int s_setNumberOfPins(PkgMdl* package, const char* text)
{
    return s_setCount(&package->numberOfPins, 2308, text);
}

static int s_setNumberOfSections(PkgMdl* package, const char* text)
{
    return s_setCount(&package->numberOfSections, 2309, text);
}

static int s_beginModelData(PkgMdl* package)
{
    package->modelDataOpen = 1;
    if (!s_reading.Has(KEY_PIN_NUMBERS)) ERRLOG_LineErrorNew(2327, package->name);
    return 1;
}

static int s_beginMatrix(PkgMdl* package, char* text)
{
    return MTX_KeywordLine(package, s_reading.keyword->code, text);
}

static int s_receiveEndModelData(PkgMdl* package)
{
    if (!package->modelDataOpen) {
        ERRLOG_LineErrorNew(2321);
        return 1;
    }
    s_reading.endModelData = PLACE_Here();
    s_endModelData(package);
    return 1;
}

static int s_receiveEnd(PkgMdl* package)
{
    package->ended = 1;
    PKGMDL_Close();
    return 1;
}

// clang-format off
static const PkgKeyword s_keywords[] = {
    //                               flags                begin                  data line        finish       word   before inside
    { { KEY_DEFINE_PACKAGE_MODEL,    SEC_TEXT,            s_setName,             nullptr,         nullptr  },  false, false, false },
    { { KEY_PKGMDL_MANUFACTURER,     SEC_TEXT | SEC_ONCE, s_setManufacturer,     nullptr,         nullptr  },  false, false, false },
    { { KEY_OEM,                     SEC_TEXT | SEC_ONCE, s_setOem,              nullptr,         nullptr  },  false, false, false },
    { { KEY_DESCRIPTION,             SEC_TEXT | SEC_ONCE, s_setDescription,      nullptr,         nullptr  },  false, false, false },
    { { KEY_NUMBER_OF_PINS,          SEC_TEXT | SEC_ONCE, s_setNumberOfPins,     nullptr,         nullptr  },  false, true,  false },
    { { KEY_PIN_NUMBERS,             SEC_ONCE,            nullptr,               s_pinLine,       s_endPin },  false, false, false },
    { { KEY_MODEL_DATA,              SEC_ONCE,            s_beginModelData,      nullptr,         nullptr  },  false, false, false },
    { { KEY_RESISTANCE_MATRIX,       0,                   s_beginMatrix,         MTX_ReceiveLine, nullptr  },  true,  false, true  },
    { { KEY_INDUCTANCE_MATRIX,       0,                   s_beginMatrix,         MTX_ReceiveLine, nullptr  },  true,  false, true  },
    { { KEY_CAPACITANCE_MATRIX,      0,                   s_beginMatrix,         MTX_ReceiveLine, nullptr  },  true,  false, true  },
    { { KEY_BANDWIDTH,               0,                   MTX_Bandwidth,         MTX_ReceiveLine, nullptr  },  true,  false, true  },
    { { KEY_ROW,                     0,                   MTX_Row,               MTX_ReceiveLine, nullptr  },  true,  false, true  },
    { { KEY_END_MODEL_DATA,          0,                   s_receiveEndModelData, nullptr,         nullptr  },  false, false, false },
    { { KEY_END_PACKAGE_MODEL,       0,                   s_receiveEnd,          nullptr,         nullptr  },  false, false, false },
    { { KEY_NUMBER_OF_SECTIONS,      SEC_TEXT | SEC_ONCE, s_setNumberOfSections, nullptr,         nullptr  },  false, true,  false },
};
// clang-format on

// Cuts the text behind the part that the keyword takes; what follows is reported.
static void s_cutText(const PkgKeyword& row, char* text)
{
    if ((row.flags & SEC_TEXT) != 0) return;
    if (row.takesWord) TOKEN_Next(&text);
    SEC_IgnoreText(2326, TOKEN_SkipBlanks(text), SEC_KeywordName(row.code));
}

static int s_judge(PkgMdl* package, const PkgKeyword& row, char* text)
{
    const char* name = SEC_KeywordName(row.code);
    const bool isOfMatrix = row.code == KEY_BANDWIDTH || row.code == KEY_ROW;
    if (!isOfMatrix) MTX_Fini(package);
    if (s_reading.isRepeated && (row.flags & SEC_ONCE) != 0) {
        ERRLOG_LineErrorNew(2306, name, package->name);
        // A second block of matrices may bring those that the first one lacks.
        if (row.code == KEY_MODEL_DATA) package->modelDataOpen = 1;
        return 1;
    }
    if (row.beforePins && s_reading.Has(KEY_PIN_NUMBERS))
        ERRLOG_LineErrorNew(2310, name, package->name);
    if (row.inModelData && !package->modelDataOpen) {
        // The rows of a matrix that was refused say nothing new.
        if (!(isOfMatrix && package->skipMatrix)) ERRLOG_LineErrorNew(2318, name);
        package->skipMatrix = 1;
        return 0;
    }
    s_cutText(row, text);
    return 1;
}

static int s_prepare(PkgMdl* package)
{
    package->numberOfPins = -1;
    package->numberOfSections = -1;
    return 1;
}

static void s_release(PkgMdl* package)
{
    if (package == s_reading.open) SECT_FreeList(&s_reading.discarded);
    SEC_FreeList(package->pins, [](PkgPin* pin) {
        SECT_FreeList(&pin->path);
        SEC_FreeNamed(pin);
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

static const SecLife<PkgReading> s_life = {
    .reading = &s_reading,
    .frame = s_frame,
    .opener = KEY_DEFINE_PACKAGE_MODEL,
    .subject = SUBJECT_PACKAGE_MODEL,
    .rows = s_keywords,
    .add = IBIS_AddPkgMdl,
    .release = s_release,
    .prepare = s_prepare,
    .judge = s_judge,
    .end = s_end,
};

int PKGMDL_Init()
{
    return s_life.Init();
}

int PKGMDL_ReceiveLine(int kind, int code, char* line)
{
    return s_life.ReceiveLine(kind, code, line);
}

int PKGMDL_Fini(int nextCode)
{
    return s_life.Fini(nextCode);
}

void PKGMDL_Close()
{
    s_life.Close();
}

void PKGMDL_FreeList(PkgMdl* head)
{
    s_life.FreeList(head);
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

PkgMdl* PKGMDL_GetOpen()
{
    return s_reading.open;
}
