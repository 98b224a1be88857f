// [Receiver Thresholds], while reading and as a check of the whole document.
#include "IbisParser/rcvth.h"

#include <cmath>

#include "IbisParser/errlog.h"
#include "IbisParser/krng.h"
#include "IbisParser/read/model/mdl.h"

static const char s_Module[] = "IbisParser/rcvth";

namespace {

enum Set { SET_SINGLE_ENDED, SET_DIFFERENTIAL, SET_NONE };
enum Part { PART_REQUIRED, PART_OPTIONAL };
enum Sign { SIGN_ANY, SIGN_POSITIVE, SIGN_NEGATIVE };

// In the order of RcvThItem. The spread of Vth and its sensitivity do not begin a set.
// clang-format off
const struct { const char* name; Set set; Part part; Sign sign; } items[TH_COUNT] = {
    { "Vth",                   SET_SINGLE_ENDED, PART_REQUIRED, SIGN_ANY      },
    { "Vth_min",               SET_NONE,         PART_OPTIONAL, SIGN_ANY      },
    { "Vth_max",               SET_NONE,         PART_OPTIONAL, SIGN_ANY      },
    { "Vinh_ac",               SET_SINGLE_ENDED, PART_REQUIRED, SIGN_POSITIVE },
    { "Vinh_dc",               SET_SINGLE_ENDED, PART_REQUIRED, SIGN_POSITIVE },
    { "Vinl_ac",               SET_SINGLE_ENDED, PART_REQUIRED, SIGN_NEGATIVE },
    { "Vinl_dc",               SET_SINGLE_ENDED, PART_REQUIRED, SIGN_NEGATIVE },
    { "Tslew_ac",              SET_SINGLE_ENDED, PART_OPTIONAL, SIGN_POSITIVE },
    { "Threshold_sensitivity", SET_NONE,         PART_OPTIONAL, SIGN_ANY      },
    { "Vcross_low",            SET_DIFFERENTIAL, PART_REQUIRED, SIGN_ANY      },
    { "Vcross_high",           SET_DIFFERENTIAL, PART_REQUIRED, SIGN_ANY      },
    { "Vdiff_ac",              SET_DIFFERENTIAL, PART_REQUIRED, SIGN_POSITIVE },
    { "Vdiff_dc",              SET_DIFFERENTIAL, PART_REQUIRED, SIGN_POSITIVE },
    { "Tdiffslew_ac",          SET_DIFFERENTIAL, PART_OPTIONAL, SIGN_POSITIVE },
};

const struct { RcvThItem ac, dc; } nested[] = {
    { TH_VINH_AC,  TH_VINH_DC  },
    { TH_VINL_AC,  TH_VINL_DC  },
    { TH_VDIFF_AC, TH_VDIFF_DC },
};

// What a reference supply needs in the model: its own keyword, or [Voltage Range] where that sets
// all supplies.
const struct { const char* name; int supply; RngRange* Mdl::* own; bool orVoltageRange; } supplyRows[] = {
    { "Power_clamp_ref", TH_SUPPLY_POWER_CLAMP, &Mdl::powerClampRef, true  },
    { "Gnd_clamp_ref",   TH_SUPPLY_GND_CLAMP,   &Mdl::gndClampRef,   true  },
    { "Pullup_ref",      TH_SUPPLY_PULLUP,      &Mdl::pullupRef,     true  },
    { "Pulldown_ref",    TH_SUPPLY_PULLDOWN,    &Mdl::pulldownRef,   true  },
    { "Ext_ref",         TH_SUPPLY_EXTERNAL,    &Mdl::externalRef,   false },
};
// clang-format on

const char Supply[] = "Reference_supply";

void setSupply(RcvTh* thresholds, const char* word)
{
    if (thresholds->referenceSupply != TH_SUPPLY_UNSET) {
        ERRLOG_LineErrorNew(1911, Supply);
        return;
    }
    const auto* row = SEC_FindRow(supplyRows, word);
    if (row == nullptr)
        ERRLOG_LineErrorNew(2004, word);
    else
        thresholds->referenceSupply = row->supply;
}

int receive(RcvTh* thresholds, const CmnArgs* args)
{
    const char* name = args->nStored > 0 ? args->argv[0] : "";
    const auto* item = SEC_FindRow(items, name);
    const bool isSupply = item == nullptr && CMN_StrSameIC(name, Supply);
    if (item == nullptr && !isSupply) {
        ERRLOG_LineErrorNew(2002, name);
        return 0;
    }
    if (args->argc != 2) ERRLOG_LineErrorNew(2003, item ? item->name : Supply, args->argc - 1);
    if (args->nStored < 2) return 0;
    if (isSupply)
        setSupply(thresholds, args->argv[1]);
    else
        MDL_SetSingle(&thresholds->item[item - items], args, item->name);
    return 1;
}

// Missing members of the sets that are begun. Stores which ones are.
void checkSets(const Mdl* model, bool begun[SET_NONE])
{
    const RngSingle* item = model->thresholds->item;
    for (int i = 0; i < TH_COUNT; ++i)
        if (items[i].set != SET_NONE && item[i].state != CELL_ABSENT) begun[items[i].set] = true;
    for (int i = 0; i < TH_COUNT; ++i) {
        const Set set = items[i].set;
        if (items[i].part != PART_REQUIRED || !begun[set] || item[i].state != CELL_ABSENT) continue;
        if (set == SET_SINGLE_ENDED)
            ERRLOG_ErrorNew(2007, model->name, items[i].name);
        else
            ERRLOG_ErrorNew(2008, model->name, items[i].name);
    }
    if (!begun[SET_SINGLE_ENDED] && !begun[SET_DIFFERENTIAL]) ERRLOG_ErrorNew(2009, model->name);
}

void checkSpread(const Mdl* model)
{
    const RngSingle& vth = model->thresholds->item[TH_VTH];
    const RngSingle& low = model->thresholds->item[TH_VTH_MIN];
    const RngSingle& high = model->thresholds->item[TH_VTH_MAX];
    if (MDL_IsNumber(vth) && MDL_IsNumber(low) && MDL_IsNumber(high) &&
        (vth.value < low.value || vth.value > high.value))
        ERRLOG_ErrorNew(2010, model->name, vth.value, low.value, high.value);
    if ((low.state == CELL_ABSENT) != (high.state == CELL_ABSENT))
        ERRLOG_ErrorNew(2011, model->name);
}

void checkLevels(const Mdl* model)
{
    const RngSingle* item = model->thresholds->item;
    for (int i = 0; i < TH_COUNT; ++i) {
        if (!MDL_IsNumber(item[i])) continue;
        if (items[i].sign == SIGN_POSITIVE && item[i].value <= 0.0)
            ERRLOG_ErrorNew(2012, model->name, items[i].name);
        if (items[i].sign == SIGN_NEGATIVE && item[i].value >= 0.0)
            ERRLOG_ErrorNew(2013, model->name, items[i].name);
    }
    for (const auto& pair : nested)
        if (MDL_IsNumber(item[pair.ac]) && MDL_IsNumber(item[pair.dc]) &&
            std::fabs(item[pair.ac].value) < std::fabs(item[pair.dc].value))
            ERRLOG_ErrorNew(2014, model->name, items[pair.ac].name, items[pair.dc].name);
    const RngSingle& low = item[TH_VCROSS_LOW];
    const RngSingle& high = item[TH_VCROSS_HIGH];
    if (MDL_IsNumber(low) && MDL_IsNumber(high) && low.value >= high.value)
        ERRLOG_ErrorNew(2015, model->name, low.value, high.value);
}

void checkSensitivity(const Mdl* model)
{
    const RngSingle& slope = model->thresholds->item[TH_THRESHOLD_SENSITIVITY];
    const int supply = model->thresholds->referenceSupply;
    if ((slope.state == CELL_ABSENT) != (supply == TH_SUPPLY_UNSET))
        ERRLOG_WarnNew(2016, model->name);
    for (const auto& row : supplyRows)
        if (row.supply == supply && model->*(row.own) == nullptr &&
            !(row.orVoltageRange && model->voltageRange != nullptr))
            ERRLOG_ErrorNew(2017, model->name, row.name);
    if (MDL_IsNumber(slope) && (slope.value < 0.0 || slope.value > 1.0))
        ERRLOG_WarnNew(2018, model->name, slope.value);
}

// Vth between the lowest and the highest rail, at typ.
void checkSupplies(const Mdl* model)
{
    double pullup = 0.0, pulldown = 0.0, power = 0.0, ground = 0.0;
    const int hasPullup = MDL_RefVoltage(model, MDL_REF_PULLUP, CORNER_TYP, &pullup);
    const int hasPower = MDL_RefVoltage(model, MDL_REF_POWER_CLAMP, CORNER_TYP, &power);
    const RngSingle& vth = model->thresholds->item[TH_VTH];
    if (!MDL_IsNumber(vth) || (!hasPullup && !hasPower) ||
        !MDL_RefVoltage(model, MDL_REF_PULLDOWN, CORNER_TYP, &pulldown) ||
        !MDL_RefVoltage(model, MDL_REF_GND_CLAMP, CORNER_TYP, &ground))
        return;
    if (!hasPullup) pullup = power;
    if (!hasPower) power = pullup;
    const double low = std::fmin(pulldown, ground);
    const double high = std::fmax(pullup, power);
    if (vth.value < low || vth.value > high)
        ERRLOG_WarnNew(2019, model->name, vth.value, low, high);
}

// Vinl and Vinh far from what the thresholds say.
void checkReplaced(const Mdl* model)
{
    const RngSingle* item = model->thresholds->item;
    const RngSingle& vth = item[TH_VTH];
    const struct {
        const RngSingle& level;
        const RngSingle& offset;
    } levels[] = {{model->Vinl, item[TH_VINL_DC]}, {model->Vinh, item[TH_VINH_DC]}};
    for (const auto& row : levels)
        if (MDL_IsNumber(vth) && MDL_IsNumber(row.level) && MDL_IsNumber(row.offset) &&
            std::fabs(row.level.value - vth.value - row.offset.value) >
                0.2 * std::fabs(vth.value)) {
            ERRLOG_NoteNew(2021, model->name);
            return;
        }
}

int isGiven(const RcvTh* thresholds)
{
    int given = thresholds->referenceSupply != TH_SUPPLY_UNSET;
    for (const RngSingle& item : thresholds->item)
        given += item.state != CELL_ABSENT;
    return given;
}

void checkModel(const Mdl* model, const MdlPairs& pairs)
{
    if (isGiven(model->thresholds) == 0) return;  // reported with the keyword
    const MdlTypeInfo* info = MDL_TypeInfo(model->type);
    if (info != nullptr && !info->receives && !MDL_Refused(model, KEY_RECEIVER_THRESHOLDS))
        ERRLOG_ErrorNew(2006, model->name, info->name);
    bool begun[SET_NONE] = {false, false};
    checkSets(model, begun);
    checkSpread(model);
    checkLevels(model);
    checkSensitivity(model);
    checkSupplies(model);
    if (begun[SET_DIFFERENTIAL] && info != nullptr && !info->differential &&
        !pairs.Has(model->name))
        ERRLOG_WarnNew(2020, model->name, info->name);
    checkReplaced(model);
}

}  // namespace

int RCVTH_KeywordLine(Mdl* model)
{
    CMN_ASSERT(model != nullptr && model->thresholds == nullptr);
    model->thresholds = static_cast<RcvTh*>(SEC_NewPart(2001, s_Module, __LINE__, sizeof(RcvTh)));
    return model->thresholds != nullptr;
}

int RCVTH_ReceiveLine(Mdl* model, const char* line)
{
    CMN_ASSERT(model != nullptr && line != nullptr);
    if (model->thresholds == nullptr) return 0;
    CmnArgs args = {};
    if (!KRNG_Split(line, 2, &args)) {
        ERRLOG_LineBugNew(2000, "Receiver Thresholds", s_Module, __LINE__);
        return 0;
    }
    const int done = receive(model->thresholds, &args);
    CMN_ArgFree(&args);
    return done;
}

int RCVTH_Fini(Mdl* model)
{
    CMN_ASSERT(model != nullptr);
    if (model->thresholds == nullptr) return 0;
    const int given = isGiven(model->thresholds);
    if (given == 0) ERRLOG_LineErrorNew(2005, model->name);
    return given > 0;
}

void RCVTH_Free(RcvTh* thresholds)
{
    if (thresholds != nullptr) SEC_FreeRecord(thresholds);
}

int RCVTH_Check(const Mdl* models)
{
    MDL_Close();
    IbisRoot* root = nullptr;
    IBIS_GetIBIS(&root);
    const MdlPairs pairs(root);
    for (const Mdl* model : SecFileOrder<const Mdl>(models))
        if (model->thresholds != nullptr) checkModel(model, pairs);
    return 1;
}
