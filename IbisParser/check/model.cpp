// The checks of all models, in file order.
#include "IbisParser/chk.h"

#include <cstddef>
#include <initializer_list>

#include "IbisParser/base/place.h"
#include "IbisParser/check/curve.h"
#include "IbisParser/check/model.h"
#include "IbisParser/check/table.h"
#include "IbisParser/check/waveforms.h"
#include "IbisParser/cmn.h"
#include "IbisParser/errlog.h"
#include "IbisParser/ext.h"
#include "IbisParser/isso.h"
#include "IbisParser/nml.h"
#include "IbisParser/read/model/table.h"
#include "IbisParser/read/model/wvfrm.h"
#include "IbisParser/serel.h"
#include "IbisParser/submdl.h"

void CHK_MarkTable(const Vitbl* list, bool* hasCorner)
{
    for (; list != nullptr; list = list->next) {
        for (int corner = 0; corner < CORNER_COUNT; ++corner) {
            if (!hasCorner[corner]) hasCorner[corner] = VITBL_CountNumbers(list, corner) > 0;
        }
    }
}

void CHK_MarkWaveforms(const Wvfrm* list, bool* hasCorner)
{
    for (; list != nullptr; list = list->next) {
        for (int corner = 0; corner < CORNER_COUNT; ++corner) {
            double volts = 0.0;
            if (!hasCorner[corner]) hasCorner[corner] = WVFRM_EndPoint(list, corner, 0, &volts);
        }
    }
}

static void s_markModel(const Mdl* model, bool* hasCorner)
{
    for (const Vitbl* table : {model->pulldown, model->pullup, model->gndClamp, model->powerClamp})
        CHK_MarkTable(table, hasCorner);
    for (const SerEl* elements : model->series) {
        if (elements == nullptr) continue;
        CHK_MarkTable(elements->current, hasCorner);
        CHK_MarkTable(elements->mosfets, hasCorner);
    }
    CHK_MarkWaveforms(model->rising, hasCorner);
    CHK_MarkWaveforms(model->falling, hasCorner);
}

static void s_checkModelTables(const Mdl* model, const CurveFalls* falls, const bool* hasCorner)
{
    static const bool low[CURVE_STATES] = {true, false, false};
    static const bool high[CURVE_STATES] = {false, true, false};
    static const bool all[CURVE_STATES] = {true, true, true};
    const MdlTypeInfo* info = MDL_TypeInfo(model->type);
    const CurveSupply drive = CURVE_DriveSupply(model);
    const CurveSupply clamp = CURVE_ClampSupply(model);
    const bool pulldownConducts = info == nullptr || info->pulldown != MDL_ZERO;
    const bool pullupConducts = info == nullptr || info->pullup != MDL_ZERO;
    bool soundSaid = false;
    const struct {
        const Vitbl* table;
        const CurveSupply* supply;
        const bool* holds;
        bool mustConduct, comparesCorners;
    } rows[] = {
        {model->pulldown, &drive, low, pulldownConducts, true},
        {model->pullup, &drive, high, pullupConducts, true},
        {model->gndClamp, &clamp, all, false, false},
        {model->powerClamp, &clamp, all, false, false},
        {model->issoPD, &drive, nullptr, false, false},
        {model->issoPU, &drive, nullptr, false, false},
    };
    for (const auto& row : rows) {
        VitblContext context = {
            *row.supply,
            {hasCorner[0], hasCorner[1], hasCorner[2]},
            row.mustConduct,
            row.comparesCorners,
            row.holds != nullptr ? VITBL_ShapeBy(falls, row.holds) : VITBL_ANY_SHAPE,
            &soundSaid};
        VITBL_Check(row.table, &context);
    }
    VitblContext series = {drive,           {hasCorner[0], hasCorner[1], hasCorner[2]},
                           false,           false,
                           VITBL_OWN_SHAPE, &soundSaid};
    for (const SerEl* elements : model->series) {
        if (elements == nullptr) continue;
        VITBL_Check(elements->current, &series);
        VITBL_CheckMosfets(elements->mosfets, &series);
    }
}

static void s_checkModel(const Mdl* model, const CurveSubMdls* submodels)
{
    bool hasCorner[CORNER_COUNT] = {false, false, false};
    s_markModel(model, hasCorner);
    CHK_Model(model, hasCorner);
    const CurveSet set(model, submodels);
    CurveFalls falls;
    CURVE_CheckShape(model, &set, &falls, false);
    s_checkModelTables(model, &falls, hasCorner);
    CURVE_CheckShape(model, &set, &falls, true);
    CURVE_CheckTables(model, &set);
    WVFRM_CheckModel(model, hasCorner);
    ISSO_Test(model);
    if (model->external != nullptr) EXT_MdlTest(model);
}

int chk_CheckAllModels(const Mdl* models)
{
    NML_CheckUnique(models, offsetof(Mdl, name), offsetof(Mdl, next), "Model");
    const CurveSubMdls submodels(CURVE_StoredSubMdls());
    for (const Mdl* model : SecFileOrder<const Mdl>(models)) {
        const PlaceScope at(SUBJECT_MODEL, model);
        s_checkModel(model, &submodels);
    }
    return 1;
}
