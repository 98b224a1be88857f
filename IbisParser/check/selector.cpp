// Model selectors: what their rows name, and who uses them.
#include <cstddef>

#include "IbisParser/base/place.h"
#include "IbisParser/base/raise.h"
#include "IbisParser/check/names.h"
#include "IbisParser/cmpnt.h"
#include "IbisParser/nml.h"
#include "IbisParser/read/model/msel.h"

static const char s_Module[] = "IbisParser/msel";

static bool s_isSeries(const MdlTypeInfo* type)
{
    return type->group == MDL_GROUP_SERIES || type->group == MDL_GROUP_SERIES_SWITCH;
}

static void s_testRows(const Msel* selector, const CmpntNames& names)
{
    const MdlTypeInfo* first = nullptr;
    bool isMixed = false;
    for (const MselRow* row = selector->rows; row != nullptr; row = row->next) {
        const PlaceScope at(row);
        const Mdl* model = names.Model(row->model);
        if (model == nullptr && names.Selector(row->model) != nullptr)
            ERRLOG_ErrorNew(1115, selector->name, row->model);
        else if (model == nullptr)
            ERRLOG_ErrorNew(1111, selector->name, row->model);
        const MdlTypeInfo* type = model != nullptr ? MDL_TypeInfo(model->type) : nullptr;
        if (type == nullptr) continue;
        if (first == nullptr) first = type;
        if (!isMixed && s_isSeries(first) != s_isSeries(type)) {
            ERRLOG_WarnNew(1114, selector->name, first->name, type->name);
            isMixed = true;
        }
    }
}

// The names in the model columns of every component.
static void s_collectUses(const Cmpnt* components, SecSet* used)
{
    for (; components != nullptr; components = components->next) {
        for (const Pin* pin = components->pins; pin != nullptr; pin = pin->next)
            if (pin->kind == PIN_MODEL) SEC_SetAdd(used, pin->model);
        for (const SerMap* row = components->seriesPins; row != nullptr; row = row->next)
            SEC_SetAdd(used, row->model);
    }
}

int MSEL_TestList(Msel* selectors)
{
    MSEL_Close();
    IbisRoot* root = nullptr;
    if (!IBIS_GetIBIS(&root)) {
        ERRLOG_BugNew(1100, s_Module, __LINE__);
        return 0;
    }
    NML_CheckUnique(selectors, offsetof(Msel, name), offsetof(Msel, next), "Model Selector");
    const CmpntNames names(root->mdls, selectors);
    SecSet used;
    s_collectUses(root->cmpnts, &used);
    for (const Msel* selector : SecFileOrder<const Msel>(selectors)) {
        const PlaceScope at(SUBJECT_SELECTOR, selector);
        if (names.Model(selector->name) != nullptr) ERRLOG_ErrorNew(1112, selector->name);
        s_testRows(selector, names);
        // A selector without a name was reported as that.
        if (selector->name[0] != '\0' && !SEC_SetHas(&used, selector->name))
            ERRLOG_WarnNew(1113, selector->name);
    }
    return 1;
}
