// The checks of all submodels, in file order.
#include <cstddef>
#include <initializer_list>

#include "IbisParser/base/place.h"
#include "IbisParser/base/raise.h"
#include "IbisParser/check/curve.h"
#include "IbisParser/check/model.h"
#include "IbisParser/check/table.h"
#include "IbisParser/check/waveforms.h"
#include "IbisParser/chk.h"
#include "IbisParser/cmn.h"
#include "IbisParser/submdl.h"

// Who adds each submodel, by its name.
struct Users {
    Users() = default;
    ~Users()
    {
        for (std::size_t k = 0; k < falls.capacity; ++k) {
            if (falls.entries[k].value != nullptr) CMN_freeSetNull(&falls.entries[k].value);
        }
    }
    Users(const Users&) = delete;
    Users& operator=(const Users&) = delete;

    SecScopedIndex first;    // the first model that does
    SecScopedIndex row;      // its line
    SecScopedIndex outside;  // the first whose supplies do not hold the triggers
    SecScopedIndex falls;    // CurveFalls of a model, by the line of its keyword
};

static bool s_isOutside(const RngRange* trigger, const Mdl* model)
{
    CurveRails rails;
    if (trigger == nullptr || trigger->typState != CELL_NUMBER ||
        !CURVE_Rails(model, CORNER_TYP, &rails))
        return false;
    return trigger->typ < rails.pulldown || trigger->typ > rails.pullup;
}

template <typename Record>
static void s_remember(IdxTable* table, const SubMdl* submodel, const Record* record)
{
    void** slot = nullptr;
    if (IDX_SlotName(table, submodel->name, &slot) && *slot == nullptr)
        *slot = const_cast<Record*>(record);
}

static void s_findUsers(const Mdl* models, const CurveSubMdls* submodels, Users* users)
{
    for (const Mdl* model : SecFileOrder<const Mdl>(models)) {
        for (const AddSub* added = model->addSubs; added != nullptr; added = added->next) {
            const SubMdl* submodel = submodels->Find(added->submodel);
            if (submodel == nullptr) continue;
            s_remember(&users->first, submodel, model);
            s_remember(&users->row, submodel, added);
            if (s_isOutside(submodel->V_trigger_r, model) ||
                s_isOutside(submodel->V_trigger_f, model))
                s_remember(&users->outside, submodel, model);
        }
    }
}

static void s_checkCompleteness(const SubMdl* submodel)
{
    const char* type = SUBMDL_TypeOf(submodel);
    if (type == nullptr) return;
    const bool clamp = submodel->type == SUBMDL_DYNAMIC_CLAMP;
    const Vitbl* a = clamp ? submodel->gndClamp : submodel->pulldown;
    const Vitbl* b = clamp ? submodel->powerClamp : submodel->pullup;
    if (a == nullptr && b == nullptr) ERRLOG_ErrorNew(722, submodel->name, type);
    if (clamp) return;
    if (submodel->ramp == nullptr) ERRLOG_ErrorNew(723, submodel->name, type);
    if (submodel->type == SUBMDL_BUS_HOLD && (a == nullptr) != (b == nullptr))
        ERRLOG_NoteNew(725, submodel->name, a != nullptr ? "Pulldown" : "Pullup",
                       a != nullptr ? "Pullup" : "Pulldown");
}

static void s_checkTriggers(const SubMdl* submodel, const Mdl* model)
{
    CurveRails rails;
    if (model == nullptr || !CURVE_Rails(model, CORNER_TYP, &rails)) return;
    const bool rising = s_isOutside(submodel->V_trigger_r, model);
    // Another submodel of this name may be the one whose triggers are outside.
    if (!rising && !s_isOutside(submodel->V_trigger_f, model)) return;
    const RngRange* trigger = rising ? submodel->V_trigger_r : submodel->V_trigger_f;
    const PlaceScope at(trigger);
    ERRLOG_NoteNew(724, submodel->name, rising ? "V_trigger_r" : "V_trigger_f", trigger->typ,
                   model->name, rails.pulldown, rails.pullup);
}

// A pulse table that never moves.
static void s_checkPulse(const SubMdl* submodel, const Wvfrm* pulse)
{
    if (pulse == nullptr) return;
    const PlaceScope at(pulse);
    int numbers = 0;
    double first = 0.0;
    for (const RngpLine* line = pulse->head; line != nullptr; line = line->next) {
        double volts = 0.0;
        if (VITBL_Cell(line, CORNER_TYP, &volts) != CELL_NUMBER) continue;
        if (numbers++ == 0) first = volts;
        if (volts != first) return;
    }
    if (numbers > 0) ERRLOG_WarnNew(726, submodel->name, SEC_KeywordName(pulse->kind));
}

// Where the combined curves of a model fall; null when memory ran out.
static const CurveFalls* s_falls(Users* users, const Mdl* model, const CurveSubMdls* submodels)
{
    void** slot = nullptr;
    if (!IDX_Slot(&users->falls, &model->line, sizeof model->line, &slot)) return nullptr;
    if (*slot == nullptr && CMN_malloc(slot, sizeof(CurveFalls))) {
        const CurveSet set(model, submodels);
        CURVE_CheckShape(model, &set, static_cast<CurveFalls*>(*slot), false);
    }
    return static_cast<const CurveFalls*>(*slot);
}

// A clamp that a model adds is judged with that model's own clamps: often it is a difference only.
static VitblShape s_shapeOfClamp(const SubMdl* submodel, const Mdl* user, const AddSub* row,
                                 const CurveSubMdls* submodels, Users* users)
{
    if (user == nullptr || row == nullptr || submodel->type != SUBMDL_DYNAMIC_CLAMP ||
        submodel->gndPulse != nullptr || submodel->powerPulse != nullptr)
        return VITBL_OWN_SHAPE;
    const CurveFalls* falls = s_falls(users, user, submodels);
    const bool driving = (row->mode & ADDSUB_DRIVING) != 0;
    const bool holds[CURVE_STATES] = {driving, driving, (row->mode & ADDSUB_NON_DRIVING) != 0};
    return falls != nullptr ? VITBL_ShapeBy(falls, holds) : VITBL_OWN_SHAPE;
}

static void s_checkSubMdlTables(const SubMdl* submodel, const Mdl* user, VitblShape shape,
                                const bool* hasCorner)
{
    const CurveSupply none = {};
    const CurveSupply drive = user != nullptr ? CURVE_DriveSupply(user) : none;
    const CurveSupply clamp = user != nullptr ? CURVE_ClampSupply(user) : none;
    bool soundSaid = false;
    const auto check = [&](const Vitbl* table, const CurveSupply& supply, bool drives) {
        const VitblContext context = {
            supply, {hasCorner[0], hasCorner[1], hasCorner[2]}, drives, drives, shape, &soundSaid};
        VITBL_Check(table, &context);
    };
    check(submodel->pulldown, drive, true);
    check(submodel->pullup, drive, true);
    check(submodel->gndClamp, clamp, false);
    check(submodel->powerClamp, clamp, false);
}

static void s_checkSubMdl(const SubMdl* submodel, Users* users, const CurveSubMdls* submodels)
{
    const char* name = submodel->name;
    const Mdl* user = static_cast<const Mdl*>(IDX_FindName(&users->first, name));
    const AddSub* row = static_cast<const AddSub*>(IDX_FindName(&users->row, name));
    s_checkCompleteness(submodel);
    CHK_Ramp(submodel->ramp, name);
    s_checkTriggers(submodel, static_cast<const Mdl*>(IDX_FindName(&users->outside, name)));
    bool hasCorner[CORNER_COUNT] = {false, false, false};
    for (const Vitbl* table :
         {submodel->pulldown, submodel->pullup, submodel->gndClamp, submodel->powerClamp})
        CHK_MarkTable(table, hasCorner);
    CHK_MarkWaveforms(submodel->rising, hasCorner);
    CHK_MarkWaveforms(submodel->falling, hasCorner);
    s_checkSubMdlTables(submodel, user, s_shapeOfClamp(submodel, user, row, submodels, users),
                        hasCorner);
    s_checkPulse(submodel, submodel->gndPulse);
    s_checkPulse(submodel, submodel->powerPulse);
    WVFRM_CheckSubMdl(submodel, hasCorner);
}

int chk_CheckAllSubModels(const SubMdl* submodels)
{
    IbisRoot* root = nullptr;
    Mdl* models = nullptr;
    if (IBIS_GetIBIS(&root)) IBIS_GetMdls(root, &models);
    const CurveSubMdls byName(CURVE_StoredSubMdls());
    Users users;
    s_findUsers(models, &byName, &users);
    for (const SubMdl* submodel : SecFileOrder<const SubMdl>(submodels)) {
        const PlaceScope at(SUBJECT_SUBMODEL, submodel);
        s_checkSubMdl(submodel, &users, &byName);
    }
    return 1;
}
