// mdl: the rules of a whole record, applied when it closes.
#include <initializer_list>

#include "IbisParser/algmod.h"
#include "IbisParser/base/raise.h"
#include "IbisParser/ext.h"
#include "IbisParser/isso.h"
#include "IbisParser/read/model/mdl.h"

static const char s_Module[] = "IbisParser/mdlend";

namespace {

// In the file, readable or not.
bool isGiven(const RngSingle& cell)
{
    return cell.state != CELL_ABSENT;
}

bool isSeriesKind(const MdlTypeInfo* info)
{
    return info->group == MDL_GROUP_SERIES || info->group == MDL_GROUP_SERIES_SWITCH;
}

void checkCapacitance(const Mdl* model, const MdlTypeInfo* info)
{
    if (model->C_comp == nullptr && !MDL_HasPartCapacitance(model) && !isSeriesKind(info) &&
        !info->differential)
        ERRLOG_LineErrorNew(125, model->name);
}

// A receiver assumes a threshold that the file gives nowhere.
void checkDefault(const Mdl* model, const MdlTypeInfo* info, const char* name, const RngSingle& own,
                  MdlSpecItem level, MdlSpecItem hysteresis, double assumed)
{
    if (info->hasDefaults && !isGiven(own) && MDLSPEC_Get(model, level) == nullptr &&
        MDLSPEC_Get(model, hysteresis) == nullptr && model->thresholds == nullptr)
        ERRLOG_LineWarnNew(131, model->name, info->name, name, assumed);
}

void checkThresholds(const Mdl* model, const MdlTypeInfo* info)
{
    const RngSingle& low = model->Vinl;
    const RngSingle& high = model->Vinh;
    if (!info->receives) {
        if (isGiven(low)) ERRLOG_LineWarnNew(132, model->name, info->name, "Vinl");
        if (isGiven(high)) ERRLOG_LineWarnNew(132, model->name, info->name, "Vinh");
        return;
    }
    if (MDL_IsNumber(low) && MDL_IsNumber(high) && low.value > high.value)
        ERRLOG_LineErrorNew(130, model->name, low.value, high.value);
    if (MDL_IsNumber(low) && MDL_IsNumber(high) && low.value == high.value)
        ERRLOG_LineNoteNew(157, model->name, low.value);
    checkDefault(model, info, "Vinl", low, SPEC_VINL, SPEC_VINL_MINUS, info->Vinl);
    checkDefault(model, info, "Vinh", high, SPEC_VINH, SPEC_VINH_PLUS, info->Vinh);
}

void checkVmeas(const Mdl* model, const MdlTypeInfo* info)
{
    const RngSingle low = MDLSPEC_InputLow(model, CORNER_TYP);
    const RngSingle high = MDLSPEC_InputHigh(model, CORNER_TYP);
    const RngSingle& vmeas = model->Vmeas;
    if (info->group == MDL_GROUP_IO && MDLSPEC_Get(model, SPEC_VMEAS) == nullptr &&
        MDL_IsNumber(low) && MDL_IsNumber(high) && MDL_IsNumber(vmeas) &&
        (vmeas.value < low.value || vmeas.value > high.value))
        ERRLOG_LineNoteNew(133, model->name, vmeas.value, low.value, high.value);
}

// A value of the timing test load, as [Model] or [Model Spec] gives it.
const struct {
    const char* name;
    RngSingle Mdl::*own;
    MdlSpecItem both, rising, falling;
} loads[] = {
    {"Vmeas", &Mdl::Vmeas, SPEC_VMEAS, SPEC_VMEAS_RISING, SPEC_VMEAS_FALLING},
    {"Cref", &Mdl::Cref, SPEC_CREF, SPEC_CREF_RISING, SPEC_CREF_FALLING},
    {"Rref", &Mdl::Rref, SPEC_RREF, SPEC_RREF_RISING, SPEC_RREF_FALLING},
    {"Vref", &Mdl::Vref, SPEC_VREF, SPEC_VREF_RISING, SPEC_VREF_FALLING},
};
enum { LOAD_VMEAS, LOAD_CREF, LOAD_RREF, LOAD_VREF, LOAD_COUNT };

void checkLoad(const Mdl* model, const MdlTypeInfo* info)
{
    bool given[LOAD_COUNT];
    for (int i = 0; i < LOAD_COUNT; ++i) {
        const auto& row = loads[i];
        given[i] = isGiven(model->*(row.own));
        if (given[i] && !info->drives) ERRLOG_LineWarnNew(134, model->name, row.name);
        for (const MdlSpecItem item : {row.both, row.rising, row.falling})
            given[i] = given[i] || MDLSPEC_Get(model, item) != nullptr;
    }
    if (!info->drives) return;
    if (given[LOAD_RREF] && !given[LOAD_VREF]) ERRLOG_LineWarnNew(137, model->name, "Vref");
    if (given[LOAD_VREF] && !given[LOAD_RREF]) ERRLOG_LineWarnNew(137, model->name, "Rref");
    if ((given[LOAD_CREF] || given[LOAD_RREF] || given[LOAD_VREF]) && !given[LOAD_VMEAS])
        ERRLOG_LineWarnNew(137, model->name, "Vmeas");
}

void checkLoadSigns(const Mdl* model)
{
    static const struct {
        const char* name;
        RngSingle Mdl::*value;
        bool positive;
    } rows[] = {
        {"Rref", &Mdl::Rref, true},
        {"Rref_diff", &Mdl::Rref_diff, true},
        {"Cref", &Mdl::Cref, false},
        {"Cref_diff", &Mdl::Cref_diff, false},
    };
    for (const auto& row : rows) {
        const RngSingle& cell = model->*(row.value);
        if (!MDL_IsNumber(cell)) continue;
        if (row.positive && cell.value <= 0.0) ERRLOG_LineErrorNew(135, model->name, row.name);
        if (!row.positive && cell.value < 0.0) ERRLOG_LineErrorNew(136, model->name, row.name);
    }
}

void checkSupplies(const Mdl* model, const MdlTypeInfo* info)
{
    int references = 0;
    for (const int code : {KEY_PULLUP_REFERENCE, KEY_PULLDOWN_REFERENCE, KEY_POWER_CLAMP_REFERENCE,
                           KEY_GND_CLAMP_REFERENCE})
        references += MDL_Found(model, code);
    const bool hasRange = MDL_Found(model, KEY_VOLTAGE_RANGE) != 0;
    if (references < 4 && !hasRange && info != nullptr && !isSeriesKind(info))
        ERRLOG_LineErrorNew(140, model->name);
    const RngSingle pullup = MDL_Cell(model->pullupRef, CORNER_TYP);
    const RngSingle pulldown = MDL_Cell(model->pulldownRef, CORNER_TYP);
    if (MDL_IsNumber(pullup) && MDL_IsNumber(pulldown) && pullup.value == pulldown.value)
        ERRLOG_LineWarnNew(141, model->name, SEC_KeywordName(KEY_PULLUP_REFERENCE),
                           SEC_KeywordName(KEY_PULLDOWN_REFERENCE));
    if (references == 4 && hasRange) ERRLOG_LineNoteNew(143, model->name);
}

void checkParts(const Mdl* model)
{
    static const struct {
        int code, needs;
    } pairs[] = {{KEY_TTGND, KEY_GND_CLAMP}, {KEY_TTPOWER, KEY_POWER_CLAMP}};
    for (const auto& pair : pairs)
        if (MDL_Found(model, pair.code) && !MDL_Found(model, pair.needs))
            ERRLOG_LineErrorNew(146, model->name, SEC_KeywordName(pair.code),
                                SEC_KeywordName(pair.needs));
    if (MDL_Found(model, KEY_RAC) != MDL_Found(model, KEY_CAC))
        ERRLOG_LineErrorNew(149, model->name);
    if (MDL_Found(model, KEY_EXTERNAL_REFERENCE) && SEC_Version() >= 4 &&
        !(model->thresholds != nullptr &&
          model->thresholds->referenceSupply == TH_SUPPLY_EXTERNAL) &&
        !(model->external != nullptr && EXT_HasPort(model->external, "A_extref")))
        ERRLOG_LineNoteNew(150, model->name);
}

void checkByType(const Mdl* model, const MdlTypeInfo* info)
{
    checkCapacitance(model, info);
    checkThresholds(model, info);
    if (model->enable != MDL_ENABLE_UNSET && !info->floats)
        ERRLOG_LineNoteNew(154, model->name, info->name);
    if (info->differential && !MDL_Found(model, KEY_EXTERNAL_MODEL))
        ERRLOG_LineErrorNew(155, model->name, info->name);
}

}  // namespace

void MDL_EndOfRecord(const Mdl* model)
{
    CMN_ASSERT(model != nullptr);
    const MdlTypeInfo* info = MDL_TypeInfo(model->type);
    if (info == nullptr && !MDL_TypeWasGiven()) ERRLOG_LineErrorNew(120, model->name);
    if (info != nullptr) {
        checkByType(model, info);
        checkLoad(model, info);
    }
    checkLoadSigns(model);
    checkSupplies(model, info);
    checkParts(model);
    int vmeasNoted = 0;
    MDLSPEC_EndOfModel(model, &vmeasNoted);
    if (info != nullptr && !vmeasNoted) checkVmeas(model, info);
    SEREL_EndOfModel(model);
    ISSO_EndModel(model);
}
