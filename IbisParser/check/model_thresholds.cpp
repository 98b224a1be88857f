// [Receiver Thresholds]: whether the sets are whole, and their values.
#include <cmath>

#include "IbisParser/base/place.h"
#include "IbisParser/base/raise.h"
#include "IbisParser/check/names.h"
#include "IbisParser/read/model/mdl.h"
#include "IbisParser/read/model/rcvth.h"

namespace {

const struct {
    RcvThItem ac, dc;
} nested[] = {
    {TH_VINH_AC, TH_VINH_DC},
    {TH_VINL_AC, TH_VINL_DC},
    {TH_VDIFF_AC, TH_VDIFF_DC},
};

// Missing members of the sets that are begun. Stores which ones are.
void checkSets(const Mdl* model, bool begun[TH_NO_SET])
{
    const RngSingle* item = model->thresholds->item;
    for (int i = 0; i < TH_COUNT; ++i)
        if (rcvthItems[i].set != TH_NO_SET && item[i].state != CELL_ABSENT)
            begun[rcvthItems[i].set] = true;
    for (int i = 0; i < TH_COUNT; ++i) {
        const RcvThSet set = rcvthItems[i].set;
        if (!rcvthItems[i].isRequired || !begun[set] || item[i].state != CELL_ABSENT) continue;
        if (set == TH_SET_SINGLE_ENDED)
            ERRLOG_ErrorNew(2007, model->name, rcvthItems[i].name);
        else
            ERRLOG_ErrorNew(2008, model->name, rcvthItems[i].name);
    }
    if (!begun[TH_SET_SINGLE_ENDED] && !begun[TH_SET_DIFFERENTIAL])
        ERRLOG_ErrorNew(2009, model->name);
}

void checkSpread(const Mdl* model)
{
    const RngSingle& vth = model->thresholds->item[TH_VTH];
    const RngSingle& low = model->thresholds->item[TH_VTH_MIN];
    const RngSingle& high = model->thresholds->item[TH_VTH_MAX];
    const PlaceScope at(low.state != CELL_ABSENT ? &low.state : &high.state);
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
        const PlaceScope at(&item[i].state);
        if (rcvthItems[i].sign == TH_POSITIVE && item[i].value <= 0.0)
            ERRLOG_ErrorNew(2012, model->name, rcvthItems[i].name);
        if (rcvthItems[i].sign == TH_NEGATIVE && item[i].value >= 0.0)
            ERRLOG_ErrorNew(2013, model->name, rcvthItems[i].name);
    }
    for (const auto& pair : nested) {
        const PlaceScope at(&item[pair.ac].state);
        if (MDL_IsNumber(item[pair.ac]) && MDL_IsNumber(item[pair.dc]) &&
            std::fabs(item[pair.ac].value) < std::fabs(item[pair.dc].value))
            ERRLOG_ErrorNew(2014, model->name, rcvthItems[pair.ac].name, rcvthItems[pair.dc].name);
    }
    const RngSingle& low = item[TH_VCROSS_LOW];
    const RngSingle& high = item[TH_VCROSS_HIGH];
    const PlaceScope at(&low.state);
    if (MDL_IsNumber(low) && MDL_IsNumber(high) && low.value >= high.value)
        ERRLOG_ErrorNew(2015, model->name, low.value, high.value);
}

void checkSensitivity(const Mdl* model)
{
    const RngSingle& slope = model->thresholds->item[TH_THRESHOLD_SENSITIVITY];
    const int supply = model->thresholds->referenceSupply;
    const PlaceScope at(&slope.state);
    if ((slope.state == CELL_ABSENT) != (supply == TH_SUPPLY_UNSET))
        ERRLOG_WarnNew(2016, model->name);
    for (const auto& row : rcvthSupplies)
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
    const bool hasPullup = MDL_RefVoltage(model, MDL_REF_PULLUP, CORNER_TYP, &pullup) != 0;
    const bool hasPower = MDL_RefVoltage(model, MDL_REF_POWER_CLAMP, CORNER_TYP, &power) != 0;
    const RngSingle& vth = model->thresholds->item[TH_VTH];
    if (!MDL_IsNumber(vth) || (!hasPullup && !hasPower) ||
        !MDL_RefVoltage(model, MDL_REF_PULLDOWN, CORNER_TYP, &pulldown) ||
        !MDL_RefVoltage(model, MDL_REF_GND_CLAMP, CORNER_TYP, &ground))
        return;
    if (!hasPullup) pullup = power;
    if (!hasPower) power = pullup;
    const double low = std::fmin(pulldown, ground);
    const double high = std::fmax(pullup, power);
    const PlaceScope at(&vth.state);
    const PlaceScope in(CORNER_TYP);
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
            const PlaceScope at(&row.level.state);
            ERRLOG_NoteNew(2021, model->name);
            return;
        }
}

void checkModel(const Mdl* model, const MdlPairs& pairs)
{
    if (RCVTH_CountGiven(model->thresholds) == 0) return;  // reported with the keyword
    const MdlTypeInfo* info = MDL_TypeInfo(model->type);
    if (info != nullptr && !info->receives && !MDL_Refused(model, KEY_RECEIVER_THRESHOLDS))
        ERRLOG_ErrorNew(2006, model->name, info->name);
    bool begun[TH_NO_SET] = {false, false};
    checkSets(model, begun);
    checkSpread(model);
    checkLevels(model);
    checkSensitivity(model);
    checkSupplies(model);
    if (begun[TH_SET_DIFFERENTIAL] && info != nullptr && !info->differential &&
        !pairs.Has(model->name))
        ERRLOG_WarnNew(2020, model->name, info->name);
    checkReplaced(model);
}

}  // namespace

int RCVTH_Check(const Mdl* models)
{
    MDL_Close();
    IbisRoot* root = nullptr;
    IBIS_GetIBIS(&root);
    const MdlPairs pairs(root);
    for (const Mdl* model : SecFileOrder<const Mdl>(models)) {
        const PlaceScope at(SUBJECT_MODEL, model);
        const PlaceScope in(model->thresholds);
        if (model->thresholds != nullptr) checkModel(model, pairs);
    }
    return 1;
}
