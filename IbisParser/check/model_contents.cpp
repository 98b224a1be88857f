// Completeness and plausibility of models.
#include <cmath>

#include "IbisParser/base/corner.h"
#include "IbisParser/base/place.h"
#include "IbisParser/base/raise.h"
#include "IbisParser/check/model.h"
#include "IbisParser/read/model/table.h"
#include "IbisParser/store/section.h"

static const char s_Module[] = "IbisParser/chk";

#define NO_CURRENT 1e-6    // ampere; a table that must be zero stays below
#define SLOWEST_SLOPE 1e4  // volt per second
#define FASTEST_SLOPE 1e12
#define STEEPER 1.1  // minimum over maximum slope
#define LEAST_OHM 1.0
#define MOST_OHM 1e6
#define LEAST_FARAD 0.1e-12
#define MOST_FARAD 1e-6
#define LEAST_HENRY 1e-12
#define MOST_HENRY 1e-3

static const char* s_typeName(const Mdl* model)
{
    return MDL_TypeInfo(model->type)->name;
}

// A model whose behaviour stands outside the file needs no tables.
static bool s_isExternal(const Mdl* model)
{
    return model->external != nullptr || MDL_Found(model, KEY_EXTERNAL_MODEL);
}

static void s_checkZero(const Mdl* model, const Vitbl* table)
{
    if (table == nullptr) return;
    const PlaceScope at(table);
    for (const RngpLine* line = table->head; line != nullptr; line = line->next) {
        for (int corner = 0; corner < CORNER_COUNT; ++corner) {
            double current = 0.0;
            if (VITBL_Cell(line, corner, &current) == CELL_NUMBER &&
                std::fabs(current) > NO_CURRENT) {
                const PlaceScope in(corner);
                ERRLOG_ErrorNew(704, model->name, s_typeName(model), table->name);
                return;
            }
        }
    }
}

static void s_checkTables(const Mdl* model, const MdlTypeInfo* info)
{
    const bool lacksPullup = info->pullup == MDL_REQUIRED && model->pullup == nullptr;
    const bool lacksPulldown = info->pulldown == MDL_REQUIRED && model->pulldown == nullptr;
    if ((lacksPullup || lacksPulldown) && model->pullup == nullptr && model->pulldown == nullptr) {
        ERRLOG_ErrorNew(702, model->name, info->name);
    } else {
        if (lacksPulldown) ERRLOG_WarnNew(703, model->name, info->name, "Pulldown");
        if (lacksPullup) ERRLOG_WarnNew(703, model->name, info->name, "Pullup");
    }
    if (info->ramp == MDL_REQUIRED && model->ramp == nullptr && !MDL_Found(model, KEY_RAMP))
        ERRLOG_ErrorNew(707, model->name, info->name);
}

static void s_checkClamps(const Mdl* model, const MdlTypeInfo* info)
{
    const bool none =
        model->gndClamp == nullptr && model->powerClamp == nullptr && model->addSubs == nullptr;
    if (info->receives && none) ERRLOG_NoteNew(705, model->name, info->name);
    if (info->type == MDL_TERMINATOR && none && model->Rgnd == nullptr &&
        model->Rpower == nullptr && model->Rac == nullptr && model->Cac == nullptr)
        ERRLOG_WarnNew(706, model->name);
}

void CHK_Ramp(const Ramp* ramp, const char* owner)
{
    if (ramp == nullptr) return;
    const PlaceScope at(ramp);
    if (ramp->rise[CORNER_TYP].state == CELL_ABSENT) ERRLOG_ErrorNew(708, owner, "dV/dt_r");
    if (ramp->fall[CORNER_TYP].state == CELL_ABSENT) ERRLOG_ErrorNew(708, owner, "dV/dt_f");
}

static bool s_slope(const RampSlope* slope, double* out)
{
    if (slope->state != CELL_NUMBER || !(slope->dt > 0.0)) return false;
    *out = slope->dV / slope->dt;
    return true;
}

static void s_checkUnusualSlope(const Mdl* model, const RampSlope* slopes, const char* name)
{
    for (int corner = 0; corner < CORNER_COUNT; ++corner) {
        double slope = 0.0;
        if (s_slope(&slopes[corner], &slope) && (slope < SLOWEST_SLOPE || slope > FASTEST_SLOPE)) {
            const PlaceScope at(&slopes[CORNER_TYP].dt);
            const PlaceScope in(corner);
            ERRLOG_WarnNew(710, model->name, name, slope);
            return;
        }
    }
}

// True when the note on the corners was raised.
static bool s_checkSteeper(const Mdl* model, const RampSlope* slopes, const char* name)
{
    double least = 0.0;
    double most = 0.0;
    if (!s_slope(&slopes[CORNER_MIN], &least) || !s_slope(&slopes[CORNER_MAX], &most) ||
        least <= STEEPER * most)
        return false;
    const PlaceScope at(&slopes[CORNER_TYP].dt);
    ERRLOG_CautionNew(709, model->name, name, least, most);
    return true;
}

static void s_checkRamp(const Mdl* model)
{
    const Ramp* ramp = model->ramp;
    if (ramp == nullptr) return;
    CHK_Ramp(ramp, model->name);
    if (!s_checkSteeper(model, ramp->rise, "dV/dt_r")) s_checkSteeper(model, ramp->fall, "dV/dt_f");
    s_checkUnusualSlope(model, ramp->rise, "dV/dt_r");
    s_checkUnusualSlope(model, ramp->fall, "dV/dt_f");
}

static void s_checkWaveforms(const Mdl* model, const MdlTypeInfo* info)
{
    if (!info->drives) return;
    const bool rising = model->rising != nullptr;
    const bool falling = model->falling != nullptr;
    if (!rising && !falling) {
        if (SEC_Version() >= 3 && !MDL_Found(model, KEY_ALGORITHMIC_MODEL) && !s_isExternal(model))
            ERRLOG_NoteNew(711, model->name);
    } else if (!rising || !falling) {
        ERRLOG_WarnNew(712, model->name, rising ? "rising" : "falling");
    }
}

static int s_state(const RngRange* range, int corner)
{
    return corner == CORNER_TYP   ? range->typState
           : corner == CORNER_MIN ? range->minState
                                  : range->maxState;
}

// Corners of the supplies against corners of the data. data tells whether there are any.
static void s_checkCorners(const Mdl* model, const bool* hasCorner, bool data)
{
    const struct {
        const RngRange* range;
        int code;
    } supplies[] = {{model->voltageRange, KEY_VOLTAGE_RANGE},
                    {model->pullupRef, KEY_PULLUP_REFERENCE},
                    {model->pulldownRef, KEY_PULLDOWN_REFERENCE},
                    {model->powerClampRef, KEY_POWER_CLAMP_REFERENCE},
                    {model->gndClampRef, KEY_GND_CLAMP_REFERENCE}};
    for (int corner = CORNER_MIN; corner <= CORNER_MAX; ++corner) {
        const PlaceScope in(corner);
        int given = 0;
        int numeric = 0;                  // code of the first supply with a number
        const RngRange* first = nullptr;  // that supply
        for (const auto& supply : supplies) {
            if (supply.range == nullptr) continue;
            ++given;
            if (numeric != 0 || s_state(supply.range, corner) != CELL_NUMBER) continue;
            numeric = supply.code;
            first = supply.range;
        }
        const PlaceScope at(first);
        if (numeric != 0 && data && !hasCorner[corner])
            ERRLOG_NoteNew(714, model->name, SEC_KeywordName(numeric), CORNER_Name(corner));
        if (numeric == 0 && given > 0 && hasCorner[corner])
            ERRLOG_WarnNew(715, model->name, CORNER_Name(corner));
    }
}

static bool s_hasData(const Mdl* model)
{
    if (model->pulldown != nullptr || model->pullup != nullptr || model->gndClamp != nullptr ||
        model->powerClamp != nullptr || model->rising != nullptr || model->falling != nullptr)
        return true;
    for (const SerEl* elements : model->series) {
        if (elements != nullptr && (elements->current != nullptr || elements->mosfets != nullptr))
            return true;
    }
    return false;
}

static void s_checkElement(const Mdl* model, const RngRange* range, const char* name, double least,
                           double most)
{
    if (range == nullptr || range->typState != CELL_NUMBER) return;
    const PlaceScope at(range);
    if (range->typ < least || range->typ > most) ERRLOG_WarnNew(727, model->name, name, range->typ);
}

static void s_checkElements(const Mdl* model)
{
    s_checkElement(model, model->Rgnd, "Rgnd", LEAST_OHM, MOST_OHM);
    s_checkElement(model, model->Rpower, "Rpower", LEAST_OHM, MOST_OHM);
    s_checkElement(model, model->Rac, "Rac", LEAST_OHM, MOST_OHM);
    s_checkElement(model, model->Cac, "Cac", LEAST_FARAD, MOST_FARAD);
    for (int state = 0; state < SEREL_STATES; ++state) {
        const SerEl* elements = model->series[state];
        if (elements == nullptr) continue;
        // An open switch may be as good as open.
        const double mostOhm = state == SEREL_OFF ? HUGE_VAL : MOST_OHM;
        s_checkElement(model, elements->R, "R Series", LEAST_OHM, mostOhm);
        s_checkElement(model, elements->Rl, "Rl Series", LEAST_OHM, mostOhm);
        s_checkElement(model, elements->Rc, "Rc Series", LEAST_OHM, mostOhm);
        s_checkElement(model, elements->L, "L Series", LEAST_HENRY, MOST_HENRY);
        s_checkElement(model, elements->Lc, "Lc Series", LEAST_HENRY, MOST_HENRY);
        s_checkElement(model, elements->C, "C Series", LEAST_FARAD, MOST_FARAD);
    }
    const SerEl* on = model->series[SEREL_ON];
    const SerEl* off = model->series[SEREL_OFF];
    if (on != nullptr && off != nullptr && on->R != nullptr && off->R != nullptr &&
        on->R->typState == CELL_NUMBER && off->R->typState == CELL_NUMBER &&
        off->R->typ < on->R->typ) {
        const PlaceScope at(off->R);
        ERRLOG_WarnNew(728, model->name);
    }
}

void CHK_Model(const Mdl* model, const bool* hasCorner)
{
    const MdlTypeInfo* info = MDL_TypeInfo(model->type);
    if (info == nullptr && model->type != MDL_TYPE_UNSET) ERRLOG_BugNew(701, s_Module, __LINE__);
    if (info != nullptr) {
        if (!s_isExternal(model)) {
            s_checkTables(model, info);
            s_checkClamps(model, info);
        }
        if (info->pulldown == MDL_ZERO) s_checkZero(model, model->pulldown);
        if (info->pullup == MDL_ZERO) s_checkZero(model, model->pullup);
    }
    s_checkRamp(model);
    if (info != nullptr) s_checkWaveforms(model, info);
    if (!MDL_Found(model, KEY_TEMPERATURE_RANGE)) ERRLOG_NoteNew(713, model->name);
    s_checkCorners(model, hasCorner, s_hasData(model));
    s_checkElements(model);
}
