// The combined curves of a model: which tables conduct in a state, and where they stand.
#include "IbisParser/base/raise.h"
#include "IbisParser/check/curve.h"
#include "IbisParser/cmn.h"
#include "IbisParser/mdl.h"
#include "IbisParser/submdl.h"

static const char s_Module[] = "IbisParser/curve_model";

bool CURVE_IsPushPull(const Mdl* model)
{
    const MdlTypeInfo* info = MDL_TypeInfo(model->type);
    return info != nullptr && info->pullup == MDL_REQUIRED && info->pulldown == MDL_REQUIRED;
}

bool CURVE_IsEcl(const Mdl* model)
{
    const MdlTypeInfo* info = MDL_TypeInfo(model->type);
    return info != nullptr && info->ecl;
}

bool CURVE_Rails(const Mdl* model, int corner, CurveRails* out)
{
    return MDL_RefVoltage(model, MDL_REF_PULLUP, corner, &out->pullup) &&
           MDL_RefVoltage(model, MDL_REF_PULLDOWN, corner, &out->pulldown) &&
           MDL_RefVoltage(model, MDL_REF_POWER_CLAMP, corner, &out->powerClamp) &&
           MDL_RefVoltage(model, MDL_REF_GND_CLAMP, corner, &out->gndClamp);
}

static CurveSupply s_supply(const Mdl* model, int high, int low)
{
    CurveSupply supply = {};
    for (int corner = 0; corner < CORNER_COUNT; ++corner) {
        double top = 0.0;
        double bottom = 0.0;
        supply.known[corner] = MDL_RefVoltage(model, high, corner, &top) &&
                               MDL_RefVoltage(model, low, corner, &bottom);
        supply.volts[corner] = top - bottom;
    }
    return supply;
}

CurveSupply CURVE_DriveSupply(const Mdl* model)
{
    return s_supply(model, MDL_REF_PULLUP, MDL_REF_PULLDOWN);
}

CurveSupply CURVE_ClampSupply(const Mdl* model)
{
    return s_supply(model, MDL_REF_POWER_CLAMP, MDL_REF_GND_CLAMP);
}

SubMdl* CURVE_StoredSubMdls()
{
    IbisRoot* root = nullptr;
    SubMdl* head = nullptr;
    if (IBIS_GetIBIS(&root)) IBIS_GetSubMdls(root, &head);
    return head;
}

CurveParts::~CurveParts()
{
    void* block = parts;
    if (block != nullptr) CMN_freeSetNull(&block);
}

// Adds a table, if there is one. 0 when its reference voltage is not given.
static int s_addPart(CurveParts* list, const Mdl* model, const Vitbl* table, int reference,
                     bool falling, bool clamp, int corner)
{
    if (table == nullptr) return 1;
    CurvePart part = {table, 0.0, falling, clamp};
    if (!MDL_RefVoltage(model, reference, corner, &part.reference)) return 0;
    list->parts[list->count++] = part;
    return 1;
}

static int s_addClamps(CurveParts* list, const Mdl* model, const Vitbl* gnd, const Vitbl* power,
                       int corner)
{
    return s_addPart(list, model, gnd, MDL_REF_GND_CLAMP, false, true, corner) &&
           s_addPart(list, model, power, MDL_REF_POWER_CLAMP, true, true, corner);
}

static bool s_isTooLong(const Vitbl* table)
{
    return table != nullptr && table->count > static_cast<int>(SEC_Limit(LIMIT_CURVE_POINTS));
}

// The clamps of a dynamic clamp are static when no pulse moves them. Tables of more points than
// are allowed, which is told of, stay out: many models may add them.
static const SubMdl* s_staticClamp(const CurveSubMdls* submodels, const AddSub* added, int state)
{
    const int mode = state == CURVE_OFF ? ADDSUB_NON_DRIVING : ADDSUB_DRIVING;
    if ((added->mode & mode) == 0) return nullptr;
    const SubMdl* submodel = submodels->Find(added->submodel);
    if (submodel == nullptr || submodel->type != SUBMDL_DYNAMIC_CLAMP ||
        submodel->gndPulse != nullptr || submodel->powerPulse != nullptr ||
        s_isTooLong(submodel->gndClamp) || s_isTooLong(submodel->powerClamp))
        return nullptr;
    return submodel;
}

int CURVE_Collect(const Mdl* model, const CurveSubMdls* submodels, int state, int corner,
                  CurveParts* out)
{
    std::size_t rows = 0;
    for (const AddSub* added = model->addSubs; added != nullptr; added = added->next)
        ++rows;
    void* block = nullptr;
    if (!CMN_malloc(&block, (3 + 2 * rows) * sizeof(CurvePart))) {
        ERRLOG_BugNew(4700, s_Module, __LINE__);
        return CURVE_NO_MEMORY;
    }
    out->parts = static_cast<CurvePart*>(block);
    int placed = 1;
    if (state == CURVE_LOW) {
        const bool ecl = CURVE_IsEcl(model);
        placed = s_addPart(out, model, model->pulldown, ecl ? MDL_REF_PULLUP : MDL_REF_PULLDOWN,
                           ecl, false, corner);
    } else if (state == CURVE_HIGH) {
        placed = s_addPart(out, model, model->pullup, MDL_REF_PULLUP, true, false, corner);
    } else if (state != CURVE_OFF) {
        ERRLOG_BugNew(4701, s_Module, __LINE__);
        return CURVE_NO_TABLE;
    }
    placed = placed && s_addClamps(out, model, model->gndClamp, model->powerClamp, corner);
    for (const AddSub* added = model->addSubs; added != nullptr && placed; added = added->next) {
        const SubMdl* clamp = s_staticClamp(submodels, added, state);
        if (clamp != nullptr)
            placed = s_addClamps(out, model, clamp->gndClamp, clamp->powerClamp, corner);
    }
    return !placed ? CURVE_NO_REFERENCE : out->count > 0 ? CURVE_BUILT : CURVE_NO_TABLE;
}

int CURVE_CombineWith(const Mdl* model, const CurveSubMdls* submodels, int state, int corner,
                      int hold, Curve* out)
{
    *out = {nullptr, 0, 0.0, 0.0};
    CurveParts list;
    const int result = CURVE_Collect(model, submodels, state, corner, &list);
    if (result != CURVE_BUILT) return result;
    return CURVE_Sum(list.parts, list.count, corner, hold, out);
}

int CURVE_Combine(const Mdl* model, int state, int corner, int hold, Curve* out)
{
    CMN_ASSERT(model != nullptr && out != nullptr);
    const CurveSubMdls submodels(CURVE_StoredSubMdls());
    return CURVE_CombineWith(model, &submodels, state, corner, hold, out);
}

CurveSet::CurveSet(const Mdl* model, const CurveSubMdls* submodels)
{
    for (int state = 0; state < CURVE_STATES; ++state) {
        for (int corner = 0; corner < CORNER_COUNT; ++corner) {
            CurveCase* each = &cases[state][corner];
            CurveParts list;
            each->result = CURVE_Collect(model, submodels, state, corner, &list);
            if (each->result != CURVE_BUILT) continue;
            each->result = CURVE_Sum(list.parts, list.count, corner, 0, &each->free);
            if (each->result == CURVE_BUILT)
                each->result = CURVE_Sum(list.parts, list.count, corner, 1, &each->held);
        }
    }
}

CurveSet::~CurveSet()
{
    for (auto& state : cases) {
        for (CurveCase& each : state) {
            CURVE_Free(&each.free);
            CURVE_Free(&each.held);
        }
    }
}
