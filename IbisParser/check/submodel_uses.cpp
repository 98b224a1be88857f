// Submodels and the models that add them.
#include <cstddef>

#include "IbisParser/base/place.h"
#include "IbisParser/base/raise.h"
#include "IbisParser/mdl.h"
#include "IbisParser/nml.h"
#include "IbisParser/store/section.h"
#include "IbisParser/submdl.h"

namespace {

// The mode that a model cannot be in, or 0. An output that is always on, or an open one, is never
// off; what does not drive is never driving.
int impossibleMode(const MdlTypeInfo* info)
{
    const bool isOpen = info->pullup == MDL_ZERO || info->pulldown == MDL_ZERO;
    switch (info->group) {
        case MDL_GROUP_TX:
            return info->floats && !isOpen ? 0 : ADDSUB_NON_DRIVING;
        case MDL_GROUP_RX:
        case MDL_GROUP_TERMINATOR:
            return ADDSUB_DRIVING;
        default:
            return 0;
    }
}

void testAdded(const Mdl* model, const AddSub* row, const SubMdl* submodel)
{
    const PlaceScope at(row);
    const MdlTypeInfo* info = MDL_TypeInfo(model->type);
    const char* mode = ADDSUB_ModeName(row->mode);
    if (info != nullptr &&
        (info->group == MDL_GROUP_SERIES || info->group == MDL_GROUP_SERIES_SWITCH)) {
        ERRLOG_ErrorNew(203, model->name, info->name, row->submodel);
        return;
    }
    if (mode == nullptr) return;
    if (info != nullptr && row->mode == impossibleMode(info))
        ERRLOG_ErrorNew(202, model->name, info->name, mode, row->submodel);
    if (submodel != nullptr && submodel->type == SUBMDL_FALL_BACK &&
        row->mode == ADDSUB_NON_DRIVING)
        ERRLOG_WarnNew(204, model->name, SUBMDL_TypeOf(submodel), row->submodel, mode);
}

// Different bus holders that are active at the same time.
void testHolders(const Mdl* model, const SecNameIndex<const SubMdl>& submodels)
{
    int driving = 0;
    int nonDriving = 0;
    for (const AddSub* row = model->addSubs; row; row = row->next) {
        const SubMdl* submodel = submodels.Find(row->submodel);
        if (submodel == nullptr || submodel->type != SUBMDL_BUS_HOLD) continue;
        driving += (row->allModes & ADDSUB_DRIVING) != 0;
        nonDriving += (row->allModes & ADDSUB_NON_DRIVING) != 0;
    }
    const int crowded =
        (driving > 1 ? ADDSUB_DRIVING : 0) | (nonDriving > 1 ? ADDSUB_NON_DRIVING : 0);
    if (crowded != 0) ERRLOG_WarnNew(206, model->name, ADDSUB_ModeName(crowded));
}

}  // namespace

int MDL_TestSubMdlReferences(const Mdl* models, const SubMdl* submodels)
{
    SUBMDL_Close();
    const SecNameIndex<const SubMdl> byName(submodels);
    SecSet added;
    for (const Mdl* model : SecFileOrder<const Mdl>(models)) {
        const PlaceScope at(SUBJECT_MODEL, model);
        for (const AddSub* row : SecFileOrder<const AddSub>(model->addSubs)) {
            const PlaceScope in(row);
            SEC_SetAdd(&added, row->submodel);
            if (byName.Find(row->submodel) == nullptr)
                ERRLOG_ErrorNew(200, model->name, row->submodel);
        }
    }
    NML_CheckUnique(submodels, offsetof(SubMdl, name), offsetof(SubMdl, next), "Submodel");
    for (const SubMdl* submodel : SecFileOrder<const SubMdl>(submodels)) {
        const PlaceScope at(SUBJECT_SUBMODEL, submodel);
        if (!SEC_SetHas(&added, submodel->name)) ERRLOG_WarnNew(201, submodel->name);
    }
    return 1;
}

int MDL_TestSubMdls(const Mdl* models, const SubMdl* submodels)
{
    const SecNameIndex<const SubMdl> byName(submodels);
    for (const Mdl* model : SecFileOrder<const Mdl>(models)) {
        const PlaceScope at(SUBJECT_MODEL, model);
        if (model->addSubs == nullptr) continue;
        if (submodels == nullptr) ERRLOG_ErrorNew(205, model->name);
        for (const AddSub* row : SecFileOrder<const AddSub>(model->addSubs))
            testAdded(model, row, byName.Find(row->submodel));
        testHolders(model, byName);
    }
    return 1;
}
