// Which buffers are compared with their tables, corner by corner.
#include "IbisParser/acdc.h"

#include <cmath>

#include "IbisParser/base/corner.h"
#include "IbisParser/base/index.h"
#include "IbisParser/base/place.h"
#include "IbisParser/base/raise.h"
#include "IbisParser/check/acdc.h"
#include "IbisParser/read/model/table.h"

static bool s_hasCorner(const Vitbl* table, int corner)
{
    return table != nullptr && VITBL_CountNumbers(table, corner) >= TABLE_MIN_POINTS;
}

// 1 when the corner's curves are there. A corner that only some tables have is reported.
static bool s_isComplete(const Mdl* model, const AcdcCorner* corner)
{
    bool complete = true;
    for (const CurveCase* state : corner->state)
        complete = complete && (state->result == CURVE_BUILT || state->result == CURVE_NO_TABLE);
    if (complete) return true;
    if (s_hasCorner(model->pulldown, corner->corner) ||
        s_hasCorner(model->pullup, corner->corner) ||
        s_hasCorner(model->gndClamp, corner->corner) ||
        s_hasCorner(model->powerClamp, corner->corner))
        ERRLOG_NoteNew(2404, model->name, CORNER_Name(corner->corner));
    return false;
}

static bool s_hasReferences(const Mdl* model)
{
    double volts = 0.0;
    return MDL_RefVoltage(model, MDL_REF_PULLUP, CORNER_TYP, &volts) &&
           MDL_RefVoltage(model, MDL_REF_POWER_CLAMP, CORNER_TYP, &volts);
}

// A state whose table the type asks for but the file lacks is known to be wrong already.
static bool s_isDriven(const Vitbl* table, int need)
{
    return table != nullptr || need == MDL_ZERO;
}

static void s_checkDriver(const Mdl* model, const MdlTypeInfo* info, const CurveSubMdls* submodels)
{
    const AcdcBuffer buffer = {
        &acdcModelNumbers, model->name, {model->rising, model->falling}, model};
    const CurveSet set(model, submodels);
    for (int corner = CORNER_TYP; corner < CORNER_COUNT; ++corner) {
        const PlaceScope at(corner);
        const AcdcCorner each = {
            corner,
            {&set.cases[CURVE_LOW][corner], &set.cases[CURVE_HIGH][corner]},
            {s_isDriven(model->pulldown, info->pulldown), s_isDriven(model->pullup, info->pullup)}};
        if (!s_isComplete(model, &each)) continue;
        ACDC_CheckEnds(&buffer, &each);
        if (corner == CORNER_TYP) {
            ACDC_CheckRamp(model, &each);
            ACDC_CheckTimingLoad(model, &each);
        }
    }
}

static void s_checkModel(const Mdl* model, const CurveSubMdls* submodels)
{
    const MdlTypeInfo* info = MDL_TypeInfo(model->type);
    if (info == nullptr || !info->drives || model->external != nullptr ||
        (model->pulldown == nullptr && model->pullup == nullptr))
        return;
    if (model->schedule != nullptr) {
        if (model->rising != nullptr || model->falling != nullptr)
            ERRLOG_NoteNew(2405, model->name);
        return;
    }
    if (s_hasReferences(model))
        s_checkDriver(model, info, submodels);
    else
        ERRLOG_NoteNew(2403, model->name);
}

int acdc_CheckAllModels(const Mdl* models)
{
    const CurveSubMdls submodels(CURVE_StoredSubMdls());
    for (const Mdl* model : SecFileOrder<const Mdl>(models)) {
        const PlaceScope at(SUBJECT_MODEL, model);
        s_checkModel(model, &submodels);
    }
    return 1;
}

// A bus holder or fall-back driver works between the drive references of the model that adds it.
static void s_checkHolder(const SubMdl* submodel, const Mdl* model)
{
    const AcdcBuffer buffer = {
        &acdcSubMdlNumbers, submodel->name, {submodel->rising, submodel->falling}, model};
    for (int corner = CORNER_TYP; corner < CORNER_COUNT; ++corner) {
        const PlaceScope at(corner);
        CurvePart low = {submodel->pulldown, 0.0, false, false};
        CurvePart high = {submodel->pullup, 0.0, true, false};
        if (!MDL_RefVoltage(model, MDL_REF_PULLDOWN, corner, &low.reference) ||
            !MDL_RefVoltage(model, MDL_REF_PULLUP, corner, &high.reference))
            return;
        CurveCase cases[ACDC_DRIVEN];
        const CurvePart* parts[ACDC_DRIVEN] = {&low, &high};
        bool complete = true;
        for (int state = CURVE_LOW; state <= CURVE_HIGH; ++state) {
            const int count = parts[state]->table != nullptr;
            cases[state].result = CURVE_Sum(parts[state], count, corner, 0, &cases[state].free);
            CURVE_Sum(parts[state], count, corner, 1, &cases[state].held);
            complete = complete && (cases[state].result == CURVE_BUILT ||
                                    cases[state].result == CURVE_NO_TABLE);
        }
        const AcdcCorner each = {corner,
                                 {&cases[CURVE_LOW], &cases[CURVE_HIGH]},
                                 {low.table != nullptr, high.table != nullptr}};
        if (complete) ACDC_CheckEnds(&buffer, &each);
        for (CurveCase& one : cases) {
            CURVE_Free(&one.free);
            CURVE_Free(&one.held);
        }
    }
}

static double s_amplitude(const Wvfrm* pulse, int corner)
{
    double largest = 0.0;
    for (const RngpLine* line = pulse != nullptr ? pulse->head : nullptr; line != nullptr;
         line = line->next) {
        double volts = 0.0;
        if (VITBL_Cell(line, corner, &volts) == CELL_NUMBER)
            largest = std::fmax(largest, std::fabs(volts));
    }
    return largest;
}

static void s_checkPulses(const SubMdl* submodel, const Mdl* model)
{
    for (int corner = CORNER_TYP; corner < CORNER_COUNT; ++corner) {
        double high = 0.0;
        double low = 0.0;
        if (!MDL_RefVoltage(model, MDL_REF_PULLUP, corner, &high) ||
            !MDL_RefVoltage(model, MDL_REF_PULLDOWN, corner, &low))
            return;
        const double amplitude = std::fmax(s_amplitude(submodel->gndPulse, corner),
                                           s_amplitude(submodel->powerPulse, corner));
        if (amplitude > high - low) {
            const PlaceScope at(corner);
            ERRLOG_WarnNew(2439, submodel->name, CORNER_Short(corner), amplitude, high - low);
            return;
        }
    }
}

// The first model of the file that adds each submodel.
static void s_indexUsers(const Mdl* models, IdxTable* users)
{
    for (const Mdl* model : SecFileOrder<const Mdl>(models)) {
        for (const AddSub* added = model->addSubs; added != nullptr; added = added->next) {
            void** user = nullptr;
            if (!IDX_SlotName(users, added->submodel, &user)) return;
            if (*user == nullptr) *user = const_cast<Mdl*>(model);
        }
    }
}

int acdc_CheckAllSubModels(const SubMdl* submodels)
{
    IbisRoot* root = nullptr;
    Mdl* models = nullptr;
    if (IBIS_GetIBIS(&root)) IBIS_GetMdls(root, &models);
    SecScopedIndex users;
    s_indexUsers(models, &users);
    for (const SubMdl* submodel : SecFileOrder<const SubMdl>(submodels)) {
        const PlaceScope at(SUBJECT_SUBMODEL, submodel);
        const Mdl* model = static_cast<const Mdl*>(IDX_FindName(&users, submodel->name));
        if (submodel->type == SUBMDL_DYNAMIC_CLAMP) {
            if (model != nullptr) s_checkPulses(submodel, model);
        } else if (model != nullptr) {
            s_checkHolder(submodel, model);
        } else if (submodel->rising != nullptr || submodel->falling != nullptr) {
            ERRLOG_NoteNew(2438, submodel->name);
        }
    }
    return 1;
}
