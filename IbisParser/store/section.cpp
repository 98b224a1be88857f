// Helpers of the keyword sections.
#include "IbisParser/store/section.h"

#include <sys/stat.h>

#include <algorithm>

#include "IbisParser/errlog.h"
#include "IbisParser/parse.h"

static const char s_Module[] = "IbisParser/section_internal";

// Keywords as messages write them, by code.
enum { FIRST_CODE = KEY_COMPONENT, LAST_CODE = KEY_TEST_LOAD };
static const char* const s_keywordNames[] = {
    // 9-29: component, external circuit
    "Component", "Manufacturer", "Package", "Pin", "Package Model", "Pin Mapping", "Diff Pin",
    "Series Switch Groups", "Series Pin Mapping", "Alternate Package Models",
    "End Alternate Package Models", "Node Declarations", "End Node Declarations", "Circuit Call",
    "End Circuit Call", "External Circuit", "End External Circuit", "Begin EMI Component",
    "End EMI Component", "Pin EMI", "Pin Domain EMI",
    // 30-73: model
    "External Model", "End External Model", "Model", "Temperature Range", "Voltage Range",
    "Pullup Reference", "Pulldown Reference", "POWER Clamp Reference", "GND Clamp Reference",
    "External Reference", "Pulldown", "Pullup", "GND Clamp", "POWER Clamp", "Rgnd", "Rpower", "Rac",
    "Cac", "Ramp", "Rising Waveform", "Falling Waveform", "TTgnd", "TTpower", "Model Spec",
    "Receiver Thresholds", "Driver Schedule", "On", "Off", "R Series", "L Series", "Rl Series",
    "C Series", "Lc Series", "Rc Series", "Series Current", "Series MOSFET", "Add Submodel",
    "Algorithmic Model", "End Algorithmic Model", "ISSO PD", "ISSO PU", "Composite Current",
    "Begin EMI Model", "End EMI Model",
    // 74-95: package model, board
    "Define Package Model", "Manufacturer", "OEM", "Description", "Number Of Pins", "Pin Numbers",
    "Model Data", "Resistance Matrix", "Inductance Matrix", "Capacitance Matrix", "Bandwidth",
    "Row", "End Model Data", "End Package Model", "Number Of Sections", "Begin Board Description",
    "Manufacturer", "Number Of Pins", "Pin List", "Path Description", "Reference Designator Map",
    "End Board Description",
    // 96-117: selector, submodel, test data and load
    "Model Selector", "Submodel", "Submodel Spec", "GND Pulse Table", "POWER Pulse Table",
    "Pulldown", "Pullup", "GND Clamp", "POWER Clamp", "Ramp", "Rising Waveform", "Falling Waveform",
    "Test Data", "Rising Waveform Near", "Rising Waveform Far", "Falling Waveform Near",
    "Falling Waveform Far", "Diff Rising Waveform Near", "Diff Rising Waveform Far",
    "Diff Falling Waveform Near", "Diff Falling Waveform Far", "Test Load"};
static_assert(sizeof s_keywordNames / sizeof s_keywordNames[0] == LAST_CODE - FIRST_CODE + 1,
              "one name for each code");

// clang-format off
// version class                                          2    3     4     5
static const unsigned s_limits[LIMIT_COUNT][4] = {
    /* LIMIT_SIGNAL */                                 { 20,  20,   40,   40 },
    /* LIMIT_SUBMODEL */                               { 20,  20,   20,   40 },
    /* LIMIT_CURVE_POINTS */                           { 100, 100, 100,  100 },
    /* LIMIT_WAVE_POINTS */                            { 100, 100, 1000, 1000 }};
// clang-format on

IbisRoot* SEC_Root(const SecFrame* frame, int line)
{
    IbisRoot* root = nullptr;
    if (!IBIS_GetIBIS(&root)) ERRLOG_BugNew(frame->noRoot, frame->module, line);
    return root;
}

void* SEC_NewRecord(const SecFrame* frame, std::size_t size)
{
    void* record = nullptr;
    if (!CMN_malloc(&record, size)) ERRLOG_BugNew(frame->noRecord);
    return record;
}

int SEC_Receives(const SecFrame* frame, int line, int kind, const void* open)
{
    if (kind != LINE_KEYWORD && kind != LINE_DATA) {
        ERRLOG_LineBugNew(frame->unknownKind, frame->module, line);
        return 0;
    }
    if (open == nullptr) {
        ERRLOG_LineErrorNew(kind == LINE_KEYWORD ? frame->orphanKeyword : frame->orphanData);
        return 0;
    }
    return 1;
}

void SEC_UnknownKeyword(const SecFrame* frame, int line)
{
    ERRLOG_LineBugNew(frame->unknownKeyword, frame->module, line);
}

void* SEC_NewPart(unsigned number, const char* module, int line, std::size_t size)
{
    void* record = nullptr;
    if (!CMN_malloc(&record, size)) ERRLOG_BugNew(number, module, line);
    return record;
}

std::FILE* SEC_OpenFile(const char* path)
{
    struct stat status;
    if (stat(path, &status) != 0 || !S_ISREG(status.st_mode)) return nullptr;
    return CMN_fopen(path, "r");
}

const char* SEC_KeywordName(int code)
{
    CMN_ASSERT(code >= FIRST_CODE && code <= LAST_CODE);
    return s_keywordNames[code - FIRST_CODE];
}

char* SEC_Argument(char* line)
{
    char* end = std::strchr(line, ']');
    if (end == nullptr) return line + std::strlen(line);
    for (++end; *end != '\0' && CMN_IsWhitespace(static_cast<unsigned char>(*end)); ++end) {
    }
    return end;
}

void SEC_IgnoreText(unsigned number, const char* text, const char* keyword)
{
    if (*text != '\0') ERRLOG_LineWarnNew(number, text, keyword);
}

int SEC_CopyName(char* dest, const char* text, unsigned limit)
{
    const std::size_t length = std::strlen(text);
    const std::size_t kept = std::min<std::size_t>(length, limit);
    std::memcpy(dest, text, kept);
    dest[kept] = '\0';
    return length <= limit;
}

int SEC_Version()
{
    return geFileVersion < 2 ? 2 : geFileVersion > 5 ? 5 : geFileVersion;
}

unsigned SEC_Limit(SecLimit limit)
{
    return s_limits[limit][SEC_Version() - 2];
}

int SEC_SetAdd(SecSet* set, const char* text)
{
    if (SEC_SetHas(set, text)) return 0;
    char* key = CMN_StrMake(text);
    if (key == nullptr) return 0;
    void** value = nullptr;
    if (!IDX_SlotName(&set->table, key, &value)) {
        SEC_FreeRecord(key);
        return 0;
    }
    *value = key;
    return 1;
}

int SEC_SetHas(const SecSet* set, const char* text)
{
    return IDX_FindName(&set->table, text) != nullptr;
}

void SEC_SetClear(SecSet* set)
{
    for (std::size_t i = 0; i < set->table.capacity; ++i)
        if (set->table.entries[i].value != nullptr) CMN_freeSetNull(&set->table.entries[i].value);
    IDX_Clear(&set->table);
}
