// [Submodel].
#include "IbisParser/submdl.h"

#include "IbisParser/errlog.h"
#include "IbisParser/krng.h"
#include "IbisParser/parse.h"
#include "IbisParser/read/model/mdl.h"
#include "IbisParser/vitbl.h"
#include "IbisParser/wvfrm.h"

static const char s_Module[] = "IbisParser/submdl";

namespace {

const SecFrame frame = {s_Module, 2200, 2201, 2202, 2203, 2204, 2205};

// The submodel that is being read.
struct Reading {
    SubMdl* open;     // null: none
    int code;         // keyword whose data is being read, 0 before it and after its end
    int skip;         // its data lines are dropped
    int typeGiven;    // readable or not
    Wvfrm* waveform;  // the last one
};
Reading reading = {};

const struct TypeRow {
    const char* name;
    int type;
    int since;
} typeRows[] = {
    {"Dynamic_clamp", SUBMDL_DYNAMIC_CLAMP, 3},
    {"Bus_hold", SUBMDL_BUS_HOLD, 3},
    {"Fall_back", SUBMDL_FALL_BACK, 4},
};

// Which types may hold what, in the order of SubMdlType without SUBMDL_UNSET.
enum { TYPE_COUNT = SUBMDL_FALL_BACK };
struct Allowed {
    bool in[TYPE_COUNT];
};
constexpr Allowed all = {{true, true, true}};
constexpr Allowed clamps = {{true, false, false}};
constexpr Allowed drivers = {{false, true, true}};
constexpr Allowed holders = {{false, true, false}};

bool isAllowed(const SubMdl* submodel, const Allowed& allowed)
{
    return submodel->type == SUBMDL_UNSET || allowed.in[submodel->type - 1];
}

enum Kind { KIND_HEAD, KIND_SPEC, KIND_PULSE, KIND_TABLE, KIND_RAMP, KIND_WAVE };

// clang-format off
const struct Keyword {
    int code;
    Kind kind;
    Allowed allowed;
    Vitbl* SubMdl::* table;     // KIND_TABLE
    Wvfrm* SubMdl::* waveform;  // KIND_PULSE, KIND_WAVE
} keywords[] = {
    { KEY_SUBMODEL,                KIND_HEAD,  all,     nullptr,             nullptr              },
    { KEY_SUBMODEL_SPEC,           KIND_SPEC,  all,     nullptr,             nullptr              },
    { KEY_GND_PULSE_TABLE,         KIND_PULSE, clamps,  nullptr,             &SubMdl::gndPulse    },
    { KEY_POWER_PULSE_TABLE,       KIND_PULSE, clamps,  nullptr,             &SubMdl::powerPulse  },
    { KEY_SUBMDL_PULLDOWN,         KIND_TABLE, drivers, &SubMdl::pulldown,   nullptr              },
    { KEY_SUBMDL_PULLUP,           KIND_TABLE, drivers, &SubMdl::pullup,     nullptr              },
    { KEY_SUBMDL_GND_CLAMP,        KIND_TABLE, clamps,  &SubMdl::gndClamp,   nullptr              },
    { KEY_SUBMDL_POWER_CLAMP,      KIND_TABLE, clamps,  &SubMdl::powerClamp, nullptr              },
    { KEY_SUBMDL_RAMP,             KIND_RAMP,  drivers, nullptr,             nullptr              },
    { KEY_SUBMDL_RISING_WAVEFORM,  KIND_WAVE,  drivers, nullptr,             &SubMdl::rising      },
    { KEY_SUBMDL_FALLING_WAVEFORM, KIND_WAVE,  drivers, nullptr,             &SubMdl::falling     },
};
// clang-format on

enum { FIRST_CODE = KEY_SUBMODEL, LAST_CODE = KEY_SUBMDL_FALLING_WAVEFORM };
static_assert(sizeof keywords / sizeof keywords[0] == LAST_CODE - FIRST_CODE + 1,
              "one row for each code, in order");

const struct {
    const char* name;
    RngRange* SubMdl::*slot;
    Allowed allowed;
} items[] = {
    {"V_trigger_r", &SubMdl::V_trigger_r, all},
    {"V_trigger_f", &SubMdl::V_trigger_f, all},
    {"Off_delay", &SubMdl::Off_delay, holders},
};

bool found(const SubMdl* submodel, int code)
{
    return (submodel->found >> (code - FIRST_CODE) & 1u) != 0;
}

// [Submodel] and the lines under it.

void setType(SubMdl* submodel, const CmnArgs* args)
{
    if (reading.typeGiven) {
        ERRLOG_LineErrorNew(2209, submodel->name);
        return;
    }
    reading.typeGiven = 1;
    const char* word = args->nStored > 1 ? args->argv[1] : "";
    const TypeRow* row = args->argc == 2 ? SEC_FindRow(typeRows, word) : nullptr;
    if (row == nullptr) {
        ERRLOG_LineErrorNew(2207, word);
        return;
    }
    if (row->since > SEC_Version()) ERRLOG_LineErrorNew(2208, row->name);
    submodel->type = row->type;
}

int headLine(SubMdl* submodel, const CmnArgs* args, const char*)
{
    const char* name = args->nStored > 0 ? args->argv[0] : "";
    if (!CMN_StrSameIC(name, "Submodel_type")) {
        ERRLOG_LineErrorNew(2206, name);
        return 0;
    }
    setType(submodel, args);
    return 1;
}

// [Submodel Spec].

int specLine(SubMdl* submodel, const CmnArgs* args, const char* line)
{
    const char* name = args->nStored > 0 ? args->argv[0] : "";
    const auto* item = SEC_FindRow(items, name);
    if (item == nullptr) {
        ERRLOG_LineErrorNew(2214, name);
        return 0;
    }
    if (!isAllowed(submodel, item->allowed))
        ERRLOG_LineErrorNew(2215, item->name, SUBMDL_TypeOf(submodel), submodel->name);
    return KRNG_SetRange(&(submodel->*(item->slot)), KRNG_Values(line), item->name);
}

void specFini(const SubMdl* submodel)
{
    for (const auto& item : items)
        if (submodel->*(item.slot) != nullptr) return;
    ERRLOG_LineErrorNew(2221, submodel->name);
}

// Splits a sub-parameter line for one of the two above.
int splitLine(SubMdl* submodel, const char* line,
              int (*receive)(SubMdl* submodel, const CmnArgs* args, const char* line))
{
    CmnArgs args = {};
    if (!KRNG_Split(line, CORNER_COUNT + 1, &args)) return 0;
    const int done = receive(submodel, &args, line);
    CMN_ArgFree(&args);
    return done;
}

// Keywords.

int begin(SubMdl* submodel, const Keyword& row, char* text)
{
    switch (row.kind) {
        case KIND_HEAD:
            return MDL_NameLine(submodel->name, text, row.code, LIMIT_SUBMODEL, 2211, 2219);
        case KIND_TABLE:
            return VITBL_New(&(submodel->*(row.table)), SEC_KeywordName(row.code), submodel->name);
        case KIND_RAMP:
            return RAMP_KeywordLine(&submodel->ramp);
        case KIND_PULSE:
        case KIND_WAVE:
            reading.waveform = nullptr;
            return WVFRM_New(&(submodel->*(row.waveform)), row.code, submodel->name,
                             &reading.waveform);
        default:
            return 1;
    }
}

int receiveRow(SubMdl* submodel, const Keyword& row, const char* line)
{
    switch (row.kind) {
        case KIND_HEAD:
            return splitLine(submodel, line, headLine);
        case KIND_SPEC:
            return splitLine(submodel, line, specLine);
        case KIND_TABLE:
            return VITBL_ReceiveLine(submodel->*(row.table), line);
        case KIND_RAMP:
            return submodel->ramp != nullptr && RAMP_ReceiveLine(submodel->ramp, line);
        default:
            return reading.waveform != nullptr && WVFRM_ReceiveLine(reading.waveform, line);
    }
}

void fini(SubMdl* submodel, const Keyword& row)
{
    switch (row.kind) {
        case KIND_SPEC:
            specFini(submodel);
            break;
        case KIND_TABLE:
            VITBL_Fini(submodel->*(row.table));
            break;
        case KIND_PULSE:
        case KIND_WAVE:
            if (reading.waveform != nullptr) WVFRM_Fini(reading.waveform);
            break;
        default:
            break;
    }
}

int keywordLine(SubMdl* submodel, int code, char* line)
{
    const Keyword& row = keywords[code - FIRST_CODE];
    const char* name = SEC_KeywordName(code);
    char* text = SEC_Argument(line);
    reading.code = code;
    reading.skip = 0;
    if (!isAllowed(submodel, row.allowed))
        ERRLOG_LineErrorNew(2213, name, SUBMDL_TypeOf(submodel), submodel->name);
    if (row.kind != KIND_HEAD) SEC_IgnoreText(2219, text, name);
    const int isFirst = SEC_MarkFound(&submodel->found, code - FIRST_CODE);
    // The pulse tables judge this themselves, and waveforms may be many.
    if (!isFirst && row.kind != KIND_PULSE && row.kind != KIND_WAVE) {
        ERRLOG_LineErrorNew(2212, name, submodel->name);
        reading.skip = 1;
        return 0;
    }
    return begin(submodel, row, text);
}

int dataLine(SubMdl* submodel, int code, const char* line)
{
    if (code != reading.code) {
        SEC_UnknownKeyword(&frame, __LINE__);
        return 0;
    }
    return reading.skip ? 0 : receiveRow(submodel, keywords[code - FIRST_CODE], line);
}

void finishKeyword()
{
    if (reading.code != 0 && !reading.skip) fini(reading.open, keywords[reading.code - FIRST_CODE]);
    reading.code = 0;
    reading.skip = 0;
}

// The rules of a whole record.

void lacks(const SubMdl* submodel, const char* what)
{
    ERRLOG_LineErrorNew(2216, submodel->name, SUBMDL_TypeOf(submodel), what);
}

void checkClamp(const SubMdl* submodel)
{
    const struct {
        int pulse, clamp;
        const char* triggerName;
        const RngRange* trigger;
    } sides[] = {
        {KEY_POWER_PULSE_TABLE, KEY_SUBMDL_POWER_CLAMP, "V_trigger_r", submodel->V_trigger_r},
        {KEY_GND_PULSE_TABLE, KEY_SUBMDL_GND_CLAMP, "V_trigger_f", submodel->V_trigger_f},
    };
    for (const auto& side : sides) {
        const bool hasPulse = found(submodel, side.pulse);
        if (hasPulse && side.trigger == nullptr) lacks(submodel, side.triggerName);
        if (hasPulse && !found(submodel, side.clamp))
            ERRLOG_LineErrorNew(2220, SEC_KeywordName(side.pulse), submodel->name,
                                SEC_KeywordName(side.clamp));
        if (!hasPulse && side.trigger != nullptr)
            ERRLOG_LineWarnNew(2222, submodel->name, side.triggerName);
    }
}

void checkHolder(const SubMdl* submodel)
{
    if (submodel->V_trigger_r == nullptr) lacks(submodel, "V_trigger_r");
    if (submodel->V_trigger_f == nullptr) lacks(submodel, "V_trigger_f");
    for (int corner = 0; corner < CORNER_COUNT; ++corner) {
        const RngSingle rise = MDL_Cell(submodel->V_trigger_r, corner);
        const RngSingle fall = MDL_Cell(submodel->V_trigger_f, corner);
        if (MDL_IsNumber(rise) && MDL_IsNumber(fall) && rise.value < fall.value)
            ERRLOG_LineNoteNew(2223, submodel->name, rise.value, fall.value);
    }
}

void endOfRecord(const SubMdl* submodel)
{
    if (submodel->type == SUBMDL_UNSET && !reading.typeGiven)
        ERRLOG_LineErrorNew(2210, submodel->name);
    if (submodel->type == SUBMDL_DYNAMIC_CLAMP) checkClamp(submodel);
    if (submodel->type == SUBMDL_BUS_HOLD) checkHolder(submodel);
    if (submodel->type == SUBMDL_FALL_BACK && submodel->V_trigger_r == nullptr &&
        submodel->V_trigger_f == nullptr)
        lacks(submodel, "V_trigger_r or V_trigger_f");
    if (MDL_Least(submodel->Off_delay) < 0.0) ERRLOG_LineErrorNew(2217, submodel->name);
}

void free(SubMdl* submodel)
{
    if (submodel == reading.open) reading = {};
    for (const auto& item : items)
        RNG_Free(submodel->*(item.slot));
    for (const Keyword& row : keywords) {
        if (row.table != nullptr) VITBL_Free(submodel->*(row.table));
        if (row.waveform != nullptr) WVFRM_FreeList(submodel->*(row.waveform));
    }
    RAMP_Free(submodel->ramp);
    SEC_FreeRecord(submodel);
}

}  // namespace

int SUBMDL_Init(void)
{
    SUBMDL_Close();
    IbisRoot* root = SEC_Root(&frame, __LINE__);
    if (root == nullptr) return 0;
    auto* submodel = static_cast<SubMdl*>(SEC_NewRecord(&frame, sizeof(SubMdl)));
    if (submodel == nullptr) return 0;
    submodel->line = PARSE_GetLineNum();
    IBIS_AddSubMdl(root, submodel);
    reading = {};
    reading.open = submodel;
    return 1;
}

int SUBMDL_ReceiveLine(int kind, int code, char* line)
{
    CMN_ASSERT(line != nullptr);
    if (!SEC_Receives(&frame, __LINE__, kind, reading.open)) return 0;
    if (code < FIRST_CODE || code > LAST_CODE) {
        SEC_UnknownKeyword(&frame, __LINE__);
        return 0;
    }
    return kind == LINE_KEYWORD ? keywordLine(reading.open, code, line)
                                : dataLine(reading.open, code, line);
}

int SUBMDL_Fini(int nextCode)
{
    if (reading.open == nullptr) return 0;
    finishKeyword();
    const bool staysOpen =
        nextCode == NOT_KEY ||
        (nextCode >= FIRST_CODE && nextCode <= LAST_CODE && nextCode != KEY_SUBMODEL);
    if (!staysOpen) SUBMDL_Close();
    return 1;
}

void SUBMDL_Close(void)
{
    if (reading.open == nullptr) return;
    finishKeyword();
    endOfRecord(reading.open);
    reading = {};
}

void SUBMDL_FreeList(SubMdl* head)
{
    SEC_FreeList(head, free);
}

int SUBMDL_AddLink(SubMdl** head, SubMdl* item)
{
    CMN_ASSERT(head != nullptr && item != nullptr);
    return SEC_AddLink(head, item);
}

SubMdl* SUBMDL_FindByName(const SubMdl* head, const char* name)
{
    CMN_ASSERT(name != nullptr);
    return const_cast<SubMdl*>(SEC_FindByName(head, name));
}

const char* SUBMDL_TypeOf(const SubMdl* submodel)
{
    CMN_ASSERT(submodel != nullptr);
    for (const TypeRow& row : typeRows)
        if (row.type == submodel->type) return row.name;
    return nullptr;
}
