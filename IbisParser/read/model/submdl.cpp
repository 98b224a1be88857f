// [Submodel].
#include "IbisParser/submdl.h"

#include "IbisParser/base/raise.h"
#include "IbisParser/krng.h"
#include "IbisParser/read/model/mdl.h"
#include "IbisParser/store/life.h"
#include "IbisParser/vitbl.h"
#include "IbisParser/wvfrm.h"

static const char s_Module[] = "IbisParser/submdl";

namespace {

const SecFrame frame = {s_Module, 2200, 2201, 2202, 2203, 2204, 2205};

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

struct Keyword : SecKeyword<SubMdl> {
    Allowed allowed;
    Vitbl* SubMdl::*table;
    Wvfrm* SubMdl::*waveform;
};

// The submodel that is being read.
struct Reading : SecReading<SubMdl, Keyword, &SubMdl::found> {
    bool typeGiven = false;     // readable or not
    Wvfrm* waveform = nullptr;  // the last one
} reading;

const struct {
    const char* name;
    RngRange* SubMdl::*slot;
    Allowed allowed;
} items[] = {
    {"V_trigger_r", &SubMdl::V_trigger_r, all},
    {"V_trigger_f", &SubMdl::V_trigger_f, all},
    {"Off_delay", &SubMdl::Off_delay, holders},
};

// Splits a sub-parameter line for the function.
template <int (*receive)(SubMdl* submodel, const CmnArgs* args, const char* line)>
int subParameter(SubMdl* submodel, const char* line)
{
    SecArgs args;
    if (!KRNG_Split(line, CORNER_COUNT + 1, &args)) return 0;
    return receive(submodel, &args, line);
}

// [Submodel] and the lines under it.

int headBegin(SubMdl* submodel, char* text)
{
    return MDL_NameLine(submodel->name, text, KEY_SUBMODEL, LIMIT_SUBMODEL, 2211, 2219);
}

void setType(SubMdl* submodel, const CmnArgs* args)
{
    if (reading.typeGiven) {
        ERRLOG_LineErrorNew(2209, submodel->name);
        return;
    }
    reading.typeGiven = true;
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

int specFini(SubMdl* submodel)
{
    for (const auto& item : items)
        if (submodel->*(item.slot) != nullptr) return 1;
    ERRLOG_LineErrorNew(2221, submodel->name);
    return 0;
}

// Tables.

int tableBegin(SubMdl* submodel)
{
    const Keyword& row = *reading.keyword;
    return VITBL_New(&(submodel->*(row.table)), SEC_KeywordName(row.code), submodel->name);
}

int tableLine(SubMdl* submodel, char* line)
{
    return VITBL_ReceiveLine(submodel->*(reading.keyword->table), line);
}

int tableFini(SubMdl* submodel)
{
    return VITBL_Fini(submodel->*(reading.keyword->table));
}

int rampBegin(SubMdl* submodel)
{
    return RAMP_KeywordLine(&submodel->ramp);
}

int rampLine(SubMdl* submodel, char* line)
{
    return submodel->ramp != nullptr && RAMP_ReceiveLine(submodel->ramp, line);
}

int waveBegin(SubMdl* submodel)
{
    const Keyword& row = *reading.keyword;
    reading.waveform = nullptr;
    return WVFRM_New(&(submodel->*(row.waveform)), row.code, submodel->name, &reading.waveform);
}

int waveLine(SubMdl*, char* line)
{
    return reading.waveform != nullptr && WVFRM_ReceiveLine(reading.waveform, line);
}

int waveFini(SubMdl*)
{
    return reading.waveform != nullptr && WVFRM_Fini(reading.waveform);
}

// clang-format off
const Keyword submodelRows[] = {
    //                               flags                begin       data line               finish        types     its place in the record
    { { KEY_SUBMODEL,                SEC_ONCE | SEC_TEXT, headBegin,  subParameter<headLine>, nullptr   },  all,      nullptr,             nullptr              },
    { { KEY_SUBMODEL_SPEC,           SEC_ONCE,            nullptr,    subParameter<specLine>, specFini  },  all,      nullptr,             nullptr              },
    // Pulse tables judge a second one themselves, and waveforms may be many.
    { { KEY_GND_PULSE_TABLE,         0,                   waveBegin,  waveLine,               waveFini  },  clamps,   nullptr,             &SubMdl::gndPulse    },
    { { KEY_POWER_PULSE_TABLE,       0,                   waveBegin,  waveLine,               waveFini  },  clamps,   nullptr,             &SubMdl::powerPulse  },
    { { KEY_SUBMDL_PULLDOWN,         SEC_ONCE,            tableBegin, tableLine,              tableFini },  drivers,  &SubMdl::pulldown,   nullptr              },
    { { KEY_SUBMDL_PULLUP,           SEC_ONCE,            tableBegin, tableLine,              tableFini },  drivers,  &SubMdl::pullup,     nullptr              },
    { { KEY_SUBMDL_GND_CLAMP,        SEC_ONCE,            tableBegin, tableLine,              tableFini },  clamps,   &SubMdl::gndClamp,   nullptr              },
    { { KEY_SUBMDL_POWER_CLAMP,      SEC_ONCE,            tableBegin, tableLine,              tableFini },  clamps,   &SubMdl::powerClamp, nullptr              },
    { { KEY_SUBMDL_RAMP,             SEC_ONCE,            rampBegin,  rampLine,               nullptr   },  drivers,  nullptr,             nullptr              },
    { { KEY_SUBMDL_RISING_WAVEFORM,  0,                   waveBegin,  waveLine,               waveFini  },  drivers,  nullptr,             &SubMdl::rising      },
    { { KEY_SUBMDL_FALLING_WAVEFORM, 0,                   waveBegin,  waveLine,               waveFini  },  drivers,  nullptr,             &SubMdl::falling     },
};
// clang-format on

int judge(SubMdl* submodel, const Keyword& row, char* text)
{
    const char* name = SEC_KeywordName(row.code);
    if (!isAllowed(submodel, row.allowed))
        ERRLOG_LineErrorNew(2213, name, SUBMDL_TypeOf(submodel), submodel->name);
    if ((row.flags & SEC_TEXT) == 0) SEC_IgnoreText(2219, text, name);
    if (reading.isRepeated && (row.flags & SEC_ONCE) != 0)
        ERRLOG_LineErrorNew(2212, name, submodel->name);
    return 1;
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
        const bool hasPulse = reading.Has(side.pulse);
        if (hasPulse && side.trigger == nullptr) lacks(submodel, side.triggerName);
        if (hasPulse && !reading.Has(side.clamp))
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

void end(SubMdl* submodel)
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

void release(SubMdl* submodel)
{
    for (const auto& item : items)
        RNG_Free(submodel->*(item.slot));
    for (const Keyword& row : submodelRows) {
        if (row.table != nullptr) VITBL_Free(submodel->*(row.table));
        if (row.waveform != nullptr) WVFRM_FreeList(submodel->*(row.waveform));
    }
    RAMP_Free(submodel->ramp);
    SEC_FreeRecord(submodel);
}

const SecLife<Reading> life = {
    .reading = &reading,
    .frame = frame,
    .opener = KEY_SUBMODEL,
    .subject = SUBJECT_SUBMODEL,
    .rows = submodelRows,
    .add = IBIS_AddSubMdl,
    .release = release,
    .judge = judge,
    .end = end,
};

}  // namespace

int SUBMDL_Init()
{
    return life.Init();
}

int SUBMDL_ReceiveLine(int kind, int code, char* line)
{
    return life.ReceiveLine(kind, code, line);
}

int SUBMDL_Fini(int nextCode)
{
    return life.Fini(nextCode);
}

void SUBMDL_Close()
{
    life.Close();
}

void SUBMDL_FreeList(SubMdl* head)
{
    life.FreeList(head);
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
