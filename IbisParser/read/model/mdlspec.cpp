// [Model Spec]: its entries while reading, and the rules between them at the end of the model.
#include "IbisParser/mdlspec.h"

#include <cmath>
#include <initializer_list>

#include "IbisParser/base/corner.h"
#include "IbisParser/base/raise.h"
#include "IbisParser/krng.h"
#include "IbisParser/read/model/mdl.h"

static const char s_Module[] = "IbisParser/mdlspec";

namespace {

enum User { USER_ANY, USER_RECEIVER, USER_DRIVER };
enum Sign { SIGN_ANY, SIGN_NOT_NEGATIVE, SIGN_POSITIVE };

// In the order of MdlSpecItem.
// clang-format off
const struct { const char* name; int since; User user; Sign sign; } items[SPEC_COUNT] = {
    { "Vinh",               3, USER_RECEIVER, SIGN_ANY          },
    { "Vinl",               3, USER_RECEIVER, SIGN_ANY          },
    { "Vinh+",              3, USER_RECEIVER, SIGN_ANY          },
    { "Vinh-",              3, USER_RECEIVER, SIGN_ANY          },
    { "Vinl+",              3, USER_RECEIVER, SIGN_ANY          },
    { "Vinl-",              3, USER_RECEIVER, SIGN_ANY          },
    { "S_overshoot_high",   3, USER_ANY,      SIGN_ANY          },
    { "S_overshoot_low",    3, USER_ANY,      SIGN_ANY          },
    { "D_overshoot_high",   3, USER_ANY,      SIGN_ANY          },
    { "D_overshoot_low",    3, USER_ANY,      SIGN_ANY          },
    { "D_overshoot_time",   3, USER_ANY,      SIGN_NOT_NEGATIVE },
    { "Pulse_high",         3, USER_ANY,      SIGN_ANY          },
    { "Pulse_low",          3, USER_ANY,      SIGN_ANY          },
    { "Pulse_time",         3, USER_ANY,      SIGN_POSITIVE     },
    { "Vmeas",              3, USER_DRIVER,   SIGN_ANY          },
    { "Cref",               4, USER_DRIVER,   SIGN_NOT_NEGATIVE },
    { "Rref",               4, USER_DRIVER,   SIGN_POSITIVE     },
    { "Vref",               4, USER_DRIVER,   SIGN_ANY          },
    { "Cref_rising",        4, USER_DRIVER,   SIGN_NOT_NEGATIVE },
    { "Cref_falling",       4, USER_DRIVER,   SIGN_NOT_NEGATIVE },
    { "Rref_rising",        4, USER_DRIVER,   SIGN_POSITIVE     },
    { "Rref_falling",       4, USER_DRIVER,   SIGN_POSITIVE     },
    { "Vref_rising",        4, USER_DRIVER,   SIGN_ANY          },
    { "Vref_falling",       4, USER_DRIVER,   SIGN_ANY          },
    { "Vmeas_rising",       4, USER_DRIVER,   SIGN_ANY          },
    { "Vmeas_falling",      4, USER_DRIVER,   SIGN_ANY          },
    { "Rref_diff",          4, USER_ANY,      SIGN_POSITIVE     },
    { "Cref_diff",          4, USER_ANY,      SIGN_NOT_NEGATIVE },
    { "D_overshoot_ampl_h", 5, USER_ANY,      SIGN_NOT_NEGATIVE },
    { "D_overshoot_ampl_l", 5, USER_ANY,      SIGN_NOT_NEGATIVE },
    { "D_overshoot_area_h", 5, USER_ANY,      SIGN_NOT_NEGATIVE },
    { "D_overshoot_area_l", 5, USER_ANY,      SIGN_NOT_NEGATIVE },
    { "Weak_R",             5, USER_ANY,      SIGN_POSITIVE     },
    { "Weak_I",             5, USER_ANY,      SIGN_ANY          },
    { "Weak_V",             5, USER_ANY,      SIGN_ANY          },
};

// An entry that needs one of two others. Hysteresis takes all four levels, dynamic overshoot the
// static one.
const struct { MdlSpecItem item, needs, orNeeds; const char* text; } specNeeds[] = {
    { SPEC_VINH_PLUS,          SPEC_VINH_MINUS,         SPEC_VINH_MINUS,         "Vinh-"              },
    { SPEC_VINH_PLUS,          SPEC_VINL_PLUS,          SPEC_VINL_PLUS,          "Vinl+"              },
    { SPEC_VINH_MINUS,         SPEC_VINH_PLUS,          SPEC_VINH_PLUS,          "Vinh+"              },
    { SPEC_VINH_MINUS,         SPEC_VINL_MINUS,         SPEC_VINL_MINUS,         "Vinl-"              },
    { SPEC_VINL_PLUS,          SPEC_VINL_MINUS,         SPEC_VINL_MINUS,         "Vinl-"              },
    { SPEC_VINL_PLUS,          SPEC_VINH_PLUS,          SPEC_VINH_PLUS,          "Vinh+"              },
    { SPEC_VINL_MINUS,         SPEC_VINL_PLUS,          SPEC_VINL_PLUS,          "Vinl+"              },
    { SPEC_VINL_MINUS,         SPEC_VINH_MINUS,         SPEC_VINH_MINUS,         "Vinh-"              },
    { SPEC_D_OVERSHOOT_HIGH,   SPEC_D_OVERSHOOT_TIME,   SPEC_D_OVERSHOOT_TIME,   "D_overshoot_time"   },
    { SPEC_D_OVERSHOOT_HIGH,   SPEC_S_OVERSHOOT_HIGH,   SPEC_S_OVERSHOOT_HIGH,   "S_overshoot_high"   },
    { SPEC_D_OVERSHOOT_LOW,    SPEC_D_OVERSHOOT_TIME,   SPEC_D_OVERSHOOT_TIME,   "D_overshoot_time"   },
    { SPEC_D_OVERSHOOT_LOW,    SPEC_S_OVERSHOOT_LOW,    SPEC_S_OVERSHOOT_LOW,    "S_overshoot_low"    },
    { SPEC_D_OVERSHOOT_TIME,   SPEC_D_OVERSHOOT_HIGH,   SPEC_D_OVERSHOOT_LOW,    "D_overshoot_high or D_overshoot_low" },
    { SPEC_PULSE_HIGH,         SPEC_PULSE_TIME,         SPEC_PULSE_TIME,         "Pulse_time"         },
    { SPEC_PULSE_LOW,          SPEC_PULSE_TIME,         SPEC_PULSE_TIME,         "Pulse_time"         },
    { SPEC_PULSE_TIME,         SPEC_PULSE_HIGH,         SPEC_PULSE_LOW,          "Pulse_high or Pulse_low" },
    { SPEC_D_OVERSHOOT_AMPL_H, SPEC_D_OVERSHOOT_AREA_H, SPEC_D_OVERSHOOT_AREA_H, "D_overshoot_area_h" },
    { SPEC_D_OVERSHOOT_AREA_H, SPEC_D_OVERSHOOT_AMPL_H, SPEC_D_OVERSHOOT_AMPL_H, "D_overshoot_ampl_h" },
    { SPEC_D_OVERSHOOT_AMPL_L, SPEC_D_OVERSHOOT_AREA_L, SPEC_D_OVERSHOOT_AREA_L, "D_overshoot_area_l" },
    { SPEC_D_OVERSHOOT_AREA_L, SPEC_D_OVERSHOOT_AMPL_L, SPEC_D_OVERSHOOT_AMPL_L, "D_overshoot_ampl_l" },
    { SPEC_WEAK_V,             SPEC_WEAK_R,             SPEC_WEAK_I,             "Weak_R or Weak_I"   },
};

// Test load entries by edge.
const struct { const char* name; MdlSpecItem both, rising, falling; } edges[] = {
    { "Cref",  SPEC_CREF,  SPEC_CREF_RISING,  SPEC_CREF_FALLING  },
    { "Rref",  SPEC_RREF,  SPEC_RREF_RISING,  SPEC_RREF_FALLING  },
    { "Vref",  SPEC_VREF,  SPEC_VREF_RISING,  SPEC_VREF_FALLING  },
    { "Vmeas", SPEC_VMEAS, SPEC_VMEAS_RISING, SPEC_VMEAS_FALLING },
};

// Entries that replace a [Model] value.
const struct { MdlSpecItem item; RngSingle Mdl::* single; } replaced[] = {
    { SPEC_VINH,      &Mdl::Vinh      },
    { SPEC_VINL,      &Mdl::Vinl      },
    { SPEC_VMEAS,     &Mdl::Vmeas     },
    { SPEC_CREF,      &Mdl::Cref      },
    { SPEC_RREF,      &Mdl::Rref      },
    { SPEC_VREF,      &Mdl::Vref      },
    { SPEC_RREF_DIFF, &Mdl::Rref_diff },
    { SPEC_CREF_DIFF, &Mdl::Cref_diff },
};
// clang-format on

const RngSingle none = {0.0, CELL_ABSENT};

RngSingle cell(const Mdl* model, MdlSpecItem item, int corner)
{
    return MDL_Cell(MDLSPEC_Get(model, item), corner);
}

bool isGiven(const Mdl* model, MdlSpecItem item)
{
    return MDLSPEC_Get(model, item) != nullptr;
}

int receive(Mdl* model, const CmnArgs* args, const char* line)
{
    const char* name = args->nStored > 0 ? args->argv[0] : "";
    const auto* row = SEC_FindRow(items, name);
    if (row == nullptr) {
        ERRLOG_LineErrorNew(3102, name);
        return 0;
    }
    if (row->since > SEC_Version()) ERRLOG_LineErrorNew(3103, row->name, VERSION_Since(row->since));
    const MdlTypeInfo* info = MDL_TypeInfo(model->type);
    if (info != nullptr && ((row->user == USER_RECEIVER && info->drives && !info->receives) ||
                            (row->user == USER_DRIVER && info->receives && !info->drives)))
        ERRLOG_LineWarnNew(3104, model->name, info->name, row->name);
    return KRNG_SetRange(&model->spec->item[row - items], KRNG_Values(line), row->name);
}

void checkNeeds(const Mdl* model)
{
    for (const auto& row : specNeeds)
        if (isGiven(model, row.item) && !isGiven(model, row.needs) && !isGiven(model, row.orNeeds))
            ERRLOG_LineErrorNew(3106, model->name, items[row.item].name, row.text);
}

// An entry against one that must be lower; ownHigh and ownLow stand in for one that is not given.
void checkAbove(const Mdl* model, MdlSpecItem high, MdlSpecItem low,
                const RngSingle& ownHigh = none, const RngSingle& ownLow = none)
{
    const bool hasHigh = isGiven(model, high);
    const bool hasLow = isGiven(model, low);
    if (!hasHigh && !hasLow) return;
    for (int corner = 0; corner < CORNER_COUNT; ++corner) {
        const RngSingle a = hasHigh ? cell(model, high, corner) : ownHigh;
        const RngSingle b = hasLow ? cell(model, low, corner) : ownLow;
        if (MDL_IsNumber(a) && MDL_IsNumber(b) && a.value <= b.value)
            ERRLOG_LineErrorNew(3107, model->name, items[high].name, CORNER_Short(corner), a.value,
                                items[low].name, b.value);
    }
}

void checkSigns(const Mdl* model)
{
    for (int i = 0; i < SPEC_COUNT; ++i) {
        const double least = MDL_Least(model->spec->item[i]);
        if (items[i].sign == SIGN_NOT_NEGATIVE && least < 0.0)
            ERRLOG_LineErrorNew(3109, model->name, items[i].name);
        if (items[i].sign == SIGN_POSITIVE && least <= 0.0)
            ERRLOG_LineErrorNew(3110, model->name, items[i].name);
    }
}

// One of the limits against another; raised for the first column that offends. sign is 1 when the
// limit must be above (strictly, or not below) the other, -1 when below.
struct Limit {
    ErrNumber<const char*, double, double> number;
    MdlSpecItem item;
    int sign;
    bool strict;
    RngSingle (*other)(const Mdl* model, int corner);
};

RngSingle staticHigh(const Mdl* model, int corner)
{
    return cell(model, SPEC_S_OVERSHOOT_HIGH, corner);
}

RngSingle staticLow(const Mdl* model, int corner)
{
    return cell(model, SPEC_S_OVERSHOOT_LOW, corner);
}

// clang-format off
const Limit specLimits[] = {
    { 3111, SPEC_S_OVERSHOOT_HIGH,  1, true,  MDLSPEC_InputHigh },
    { 3112, SPEC_S_OVERSHOOT_LOW,  -1, true,  MDLSPEC_InputLow  },
    { 3113, SPEC_D_OVERSHOOT_HIGH,  1, false, staticHigh      },
    { 3114, SPEC_D_OVERSHOOT_LOW,  -1, false, staticLow       },
    { 3115, SPEC_PULSE_HIGH,        1, true,  MDLSPEC_InputHigh },
    { 3116, SPEC_PULSE_LOW,        -1, true,  MDLSPEC_InputLow  },
};
// clang-format on

void checkLimits(const Mdl* model)
{
    for (const Limit& row : specLimits)
        for (int corner = 0; corner < CORNER_COUNT; ++corner) {
            const RngSingle limit = cell(model, row.item, corner);
            const RngSingle other = row.other(model, corner);
            if (!MDL_IsNumber(limit) || !MDL_IsNumber(other)) continue;
            const double margin = row.sign * (limit.value - other.value);
            if (margin < 0.0 || (row.strict && margin == 0.0)) {
                ERRLOG_LineWarnNew(row.number, model->name, limit.value, other.value);
                break;
            }
        }
}

void checkEdges(const Mdl* model)
{
    for (const auto& row : edges) {
        const bool rising = isGiven(model, row.rising);
        const bool falling = isGiven(model, row.falling);
        if (rising != falling)
            ERRLOG_LineErrorNew(3117, model->name, items[rising ? row.rising : row.falling].name,
                                items[rising ? row.falling : row.rising].name);
        if (isGiven(model, row.both) && (rising || falling))
            ERRLOG_LineWarnNew(3118, model->name, row.name, row.name);
    }
}

// The typical measuring voltages of a buffer that drives and receives lie between its thresholds.
int checkVmeas(const Mdl* model)
{
    const RngSingle low = MDLSPEC_InputLow(model, CORNER_TYP);
    const RngSingle high = MDLSPEC_InputHigh(model, CORNER_TYP);
    const MdlTypeInfo* info = MDL_TypeInfo(model->type);
    if (info == nullptr || info->group != MDL_GROUP_IO || !MDL_IsNumber(low) || !MDL_IsNumber(high))
        return 0;
    for (const MdlSpecItem item : {SPEC_VMEAS, SPEC_VMEAS_RISING, SPEC_VMEAS_FALLING}) {
        const RngSingle vmeas = cell(model, item, CORNER_TYP);
        if (!MDL_IsNumber(vmeas) || (vmeas.value >= low.value && vmeas.value <= high.value))
            continue;
        ERRLOG_LineNoteNew(3119, model->name, items[item].name, vmeas.value, low.value, high.value);
        return 1;
    }
    return 0;
}

void checkReplaced(const Mdl* model)
{
    for (const auto& row : replaced) {
        const RngSingle spec = cell(model, row.item, CORNER_TYP);
        const RngSingle& own = model->*(row.single);
        if (!MDL_IsNumber(spec) || !MDL_IsNumber(own)) continue;
        const double larger = std::fmax(std::fabs(spec.value), std::fabs(own.value));
        if (std::fabs(spec.value - own.value) > 1e-9 * larger)
            ERRLOG_LineNoteNew(3120, model->name, items[row.item].name);
    }
}

void checkSupply(const Mdl* model)
{
    const MdlTypeInfo* info = MDL_TypeInfo(model->type);
    double supply = 0.0;
    if (info == nullptr || info->ecl || !MDL_RefVoltage(model, MDL_REF_PULLUP, CORNER_TYP, &supply))
        return;
    for (const MdlSpecItem item : {SPEC_VINH, SPEC_VINH_PLUS}) {
        const RngSingle level = cell(model, item, CORNER_TYP);
        if (MDL_IsNumber(level) && level.value > supply + 0.2 * std::fabs(supply))
            ERRLOG_LineWarnNew(3121, model->name, items[item].name, supply);
    }
}

// The first given of two entries, then of the [Model] value.
RngSingle specLevel(const Mdl* model, int corner, MdlSpecItem first, MdlSpecItem second,
                    const RngSingle& own)
{
    for (const MdlSpecItem item : {first, second})
        if (const RngRange* range = MDLSPEC_Get(model, item))
            return range->typState == CELL_NUMBER ? MDL_Cell(range, corner) : none;
    return own;
}

}  // namespace

const RngRange* MDLSPEC_Get(const Mdl* model, int item)
{
    CMN_ASSERT(model != nullptr && item >= 0 && item < SPEC_COUNT);
    return model->spec != nullptr ? model->spec->item[item] : nullptr;
}

RngSingle MDLSPEC_InputHigh(const Mdl* model, int corner)
{
    return specLevel(model, corner, SPEC_VINH_PLUS, SPEC_VINH, model->Vinh);
}

RngSingle MDLSPEC_InputLow(const Mdl* model, int corner)
{
    return specLevel(model, corner, SPEC_VINL_MINUS, SPEC_VINL, model->Vinl);
}

int MDLSPEC_KeywordLine(Mdl* model)
{
    CMN_ASSERT(model != nullptr && model->spec == nullptr);
    model->spec = static_cast<MdlSpec*>(SEC_NewPart(3101, s_Module, __LINE__, sizeof(MdlSpec)));
    return model->spec != nullptr;
}

int MDLSPEC_ReceiveLine(Mdl* model, const char* line)
{
    CMN_ASSERT(model != nullptr && line != nullptr);
    if (model->spec == nullptr) return 0;
    SecArgs args;
    if (!KRNG_Split(line, CORNER_COUNT + 1, &args)) {
        ERRLOG_LineBugNew(3100, "Model Spec", s_Module, __LINE__);
        return 0;
    }
    return receive(model, &args, line);
}

int MDLSPEC_Fini(Mdl* model)
{
    CMN_ASSERT(model != nullptr);
    if (model->spec == nullptr) return 0;
    for (const RngRange* range : model->spec->item)
        if (range != nullptr) return 1;
    ERRLOG_LineWarnNew(3105, model->name);
    return 0;
}

int MDLSPEC_EndOfModel(const Mdl* model, int* vmeasNoted)
{
    CMN_ASSERT(model != nullptr && vmeasNoted != nullptr);
    *vmeasNoted = 0;
    if (model->spec == nullptr) return 0;
    checkNeeds(model);
    checkAbove(model, SPEC_VINH_PLUS, SPEC_VINH_MINUS);
    checkAbove(model, SPEC_VINL_PLUS, SPEC_VINL_MINUS);
    checkAbove(model, SPEC_VINH, SPEC_VINL, model->Vinh, model->Vinl);
    if (isGiven(model, SPEC_VINH) && isGiven(model, SPEC_VINH_PLUS))
        ERRLOG_LineNoteNew(3108, model->name, "Vinh", "Vinh+");
    if (isGiven(model, SPEC_VINL) && isGiven(model, SPEC_VINL_PLUS))
        ERRLOG_LineNoteNew(3108, model->name, "Vinl", "Vinl+");
    checkSigns(model);
    checkLimits(model);
    checkEdges(model);
    *vmeasNoted = checkVmeas(model);
    checkReplaced(model);
    checkSupply(model);
    return 1;
}

void MDLSPEC_Free(MdlSpec* spec)
{
    if (spec == nullptr) return;
    for (RngRange* range : spec->item)
        RNG_Free(range);
    SEC_FreeRecord(spec);
}
