// The typical ramp and the timing load against the tables.
#include <algorithm>
#include <cmath>

#include "IbisParser/base/place.h"
#include "IbisParser/base/raise.h"
#include "IbisParser/check/acdc.h"
#include "IbisParser/cmn.h"
#include "IbisParser/mdlspec.h"

// The ramp's load is not in the file but for its resistance: several are tried.
struct Trial {
    const AcdcCorner* typ;
    double dV;
    double expected;  // of the best load so far
    double quotient;  // dV / expected - 1 there
    bool found;
};

static void s_tryLoad(Trial* trial, double r, double vf)
{
    static Curve CurveCase::*const variants[] = {&CurveCase::free, &CurveCase::held};
    for (Curve CurveCase::*variant : variants) {
        AcdcPoint low;
        AcdcPoint high;
        if (!ACDC_Solve(&(trial->typ->state[CURVE_LOW]->*variant), r, vf, vf, &low) ||
            !ACDC_Solve(&(trial->typ->state[CURVE_HIGH]->*variant), r, vf, vf, &high))
            continue;
        const double expected = 0.6 * std::fabs(high.v - low.v);
        if (!(expected >= ACDC_MIN_SWING)) continue;
        const double quotient = trial->dV / expected - 1.0;
        if (trial->found && std::fabs(quotient) >= std::fabs(trial->quotient)) continue;
        trial->expected = expected;
        trial->quotient = quotient;
        trial->found = true;
    }
}

static bool s_near(double a, double b)
{
    return std::fabs(a - b) <= ACDC_SAME_LOAD * std::fabs(b);
}

// 50 ohm unless the file gives a load of use.
static double s_rampLoad(const Mdl* model)
{
    const RngSingle* load = &model->ramp->R_load;
    return load->state == CELL_NUMBER && load->value > 0.0 ? load->value : 50.0;
}

static void s_tryFixtures(Trial* trial, const Wvfrm* list, const RngSingle* load)
{
    int tried = 0;
    for (const Wvfrm* waveform = list; waveform != nullptr && tried < WVFRM_MAX_PER_OWNER;
         waveform = waveform->next) {
        ++tried;
        double vf = 0.0;
        if (waveform->R_fixture.state == CELL_NUMBER &&
            WVFRM_FixtureVoltage(waveform, CORNER_TYP, &vf) == CELL_NUMBER &&
            (load->state != CELL_NUMBER || s_near(waveform->R_fixture.value, load->value)))
            s_tryLoad(trial, waveform->R_fixture.value, vf);
    }
}

// The value that counts: [Model Spec] goes before [Model].
static bool s_effective(const Mdl* model, const RngSingle* own, int item, double* out)
{
    const RngRange* spec = MDLSPEC_Get(model, item);
    if (spec != nullptr && spec->typState == CELL_NUMBER) {
        *out = spec->typ;
        return true;
    }
    *out = own->value;
    return own->state == CELL_NUMBER;
}

static bool s_timingLoad(const Mdl* model, double* r, double* v)
{
    return s_effective(model, &model->Rref, SPEC_RREF, r) && *r > 0.0 &&
           s_effective(model, &model->Vref, SPEC_VREF, v);
}

static void s_tryLoads(Trial* trial, const Mdl* model, const CurveRails* rails)
{
    const RngSingle* load = &model->ramp->R_load;
    const double r = s_rampLoad(model);
    s_tryLoad(trial, r, rails->pulldown);
    s_tryLoad(trial, r, rails->pullup);
    double reference = 0.0;
    if (s_effective(model, &model->Vref, SPEC_VREF, &reference)) s_tryLoad(trial, r, reference);
    if (CURVE_IsEcl(model)) s_tryLoad(trial, r, rails->pullup - 2.0);
    s_tryFixtures(trial, model->rising, load);
    s_tryFixtures(trial, model->falling, load);
    double resistance = 0.0;
    if (load->state != CELL_NUMBER && s_timingLoad(model, &resistance, &reference))
        s_tryLoad(trial, resistance, reference);
}

// dV is written as the 20-80 % step, dt as its time.
static void s_checkStep(const Mdl* model, const AcdcCorner* typ, const CurveRails* rails,
                        bool rising)
{
    const RampSlope* slope =
        rising ? &model->ramp->rise[CORNER_TYP] : &model->ramp->fall[CORNER_TYP];
    if (slope->state != CELL_NUMBER) return;
    const PlaceScope at(&slope->dt);
    Trial trial = {typ, slope->dV, 0.0, 0.0, false};
    s_tryLoads(&trial, model, rails);
    const double q = std::fabs(trial.quotient);
    if (!trial.found || q <= ACDC_RAMP_TOLERANCE) return;
    const double span =
        std::max(rails->pullup, rails->powerClamp) - std::min(rails->pulldown, rails->gndClamp);
    if (q > ACDC_RAMP_SLOPE && slope->dV > span) {
        if (rising)
            ERRLOG_ErrorNew(2421, model->name, "typ", slope->dV, trial.expected);
        else
            ERRLOG_ErrorNew(2422, model->name, "typ", slope->dV, trial.expected);
    } else if (rising) {
        ERRLOG_WarnNew(2419, model->name, "typ", slope->dV, trial.expected);
    } else {
        ERRLOG_WarnNew(2420, model->name, "typ", slope->dV, trial.expected);
    }
}

// The load voltage that makers use for the edge.
static double s_usualLoad(const Mdl* model, const CurveRails* rails, bool rising)
{
    const MdlTypeInfo* info = MDL_TypeInfo(model->type);
    if (info->ecl) return rails->pullup - 2.0;
    if (info->pullup == MDL_ZERO) return rails->pullup;
    if (info->pulldown == MDL_ZERO) return rails->pulldown;
    return rising ? rails->pulldown : rails->pullup;
}

static void s_checkEdgeTime(const Mdl* model, const CurveRails* rails, bool rising)
{
    const RampSlope* slope =
        rising ? &model->ramp->rise[CORNER_TYP] : &model->ramp->fall[CORNER_TYP];
    if (slope->state != CELL_NUMBER) return;
    const PlaceScope at(&slope->dt);
    const double usual = s_usualLoad(model, rails, rising);
    const double slack = ACDC_SAME_LOAD * std::fabs(rails->pullup - rails->pulldown);
    for (const Wvfrm* waveform = rising ? model->rising : model->falling; waveform != nullptr;
         waveform = waveform->next) {
        double vf = 0.0;
        double time = 0.0;
        if (waveform->R_fixture.state != CELL_NUMBER ||
            !s_near(waveform->R_fixture.value, s_rampLoad(model)) ||
            WVFRM_FixtureVoltage(waveform, CORNER_TYP, &vf) != CELL_NUMBER ||
            std::fabs(vf - usual) > slack || !WVFRM_EdgeTime(waveform, CORNER_TYP, &time))
            continue;
        if (std::fabs(slope->dt / time - 1.0) > ACDC_EDGE_TOLERANCE)
            ERRLOG_CautionNew(2423, model->name, "typ", rising ? "rising" : "falling", slope->dt,
                              time);
        return;
    }
}

void ACDC_CheckRamp(const Mdl* model, const AcdcCorner* typ)
{
    CurveRails rails;
    if (model->ramp == nullptr || !CURVE_Rails(model, CORNER_TYP, &rails)) return;
    const PlaceScope at(model->ramp);
    if (typ->driven[CURVE_LOW] && typ->driven[CURVE_HIGH]) {
        s_checkStep(model, typ, &rails, true);
        s_checkStep(model, typ, &rails, false);
    }
    s_checkEdgeTime(model, &rails, true);
    s_checkEdgeTime(model, &rails, false);
}

void ACDC_CheckTimingLoad(const Mdl* model, const AcdcCorner* typ)
{
    CurveRails rails;
    double level = 0.0;
    double r = 0.0;
    double vf = 0.0;
    if (!s_effective(model, &model->Vmeas, SPEC_VMEAS, &level) ||
        !CURVE_Rails(model, CORNER_TYP, &rails))
        return;
    const PlaceScope at(&model->Vmeas.state);
    if (s_timingLoad(model, &r, &vf)) {
        if (!typ->driven[CURVE_LOW] || !typ->driven[CURVE_HIGH]) return;
        AcdcPoint low;
        AcdcPoint high;
        if (!ACDC_SolveState(typ->state[CURVE_LOW], r, vf, rails.pulldown, &low) ||
            !ACDC_SolveState(typ->state[CURVE_HIGH], r, vf, rails.pullup, &high))
            return;
        if (!(std::min(low.v, high.v) < level && level < std::max(low.v, high.v)))
            ERRLOG_WarnNew(2424, model->name, level, low.v, high.v);
    } else if (level < std::min(rails.pulldown, rails.pullup) ||
               level > std::max(rails.pulldown, rails.pullup)) {
        ERRLOG_WarnNew(2425, model->name, level, rails.pulldown, rails.pullup);
    }
}
