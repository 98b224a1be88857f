// The checks of components that need the whole document.
#include "IbisParser/errlog.h"
#include "IbisParser/ext.h"
#include "IbisParser/read/component/cmpnt.h"

static const char s_Module[] = "IbisParser/cmpnttest";

// Stands for a selector of which no model is defined.
static const char s_none = 0;

CmpntNames::CmpntNames(const Mdl* models, const Msel* selectors)
    : m_Models(models), m_Selectors(selectors), m_Defaults{nullptr, 0, 0}
{
}

CmpntNames::~CmpntNames()
{
    IDX_Clear(&m_Defaults);
}

const Mdl* CmpntNames::Resolve(const char* name) const
{
    if (m_LastName == nullptr || std::strcmp(name, m_LastName) != 0) {
        m_Last = Find(name);
        m_LastName = name;
    }
    return m_Last;
}

const Mdl* CmpntNames::Find(const char* name) const
{
    const Mdl* model = m_Models.Find(name);
    const Msel* selector = model == nullptr ? m_Selectors.Find(name) : nullptr;
    if (selector == nullptr) return model;
    void** value = nullptr;
    if (!IDX_SlotName(&m_Defaults, selector->name, &value)) return nullptr;
    if (*value == nullptr) {
        for (const MselRow* row = selector->rows; row != nullptr && model == nullptr;
             row = row->next)
            model = m_Models.Find(row->model);
        const void* found = model != nullptr ? static_cast<const void*>(model) : &s_none;
        *value = const_cast<void*>(found);
    }
    return *value == &s_none ? nullptr : static_cast<const Mdl*>(*value);
}

const char* CMPNT_TypeName(const Mdl* model)
{
    const MdlTypeInfo* type = MDL_TypeInfo(model->type);
    return type != nullptr ? type->name : "unknown";
}

static void s_testPin(const Cmpnt* component, const Pin* pin, const CmpntNames& names)
{
    const Mdl* model = names.Model(pin->model);
    const int isSelector = names.Selector(pin->model) != nullptr;
    if (model == nullptr && !isSelector)
        ERRLOG_ErrorNew(530, component->name, pin->name, pin->model);
    else if (model != nullptr && isSelector)
        ERRLOG_ErrorNew(531, component->name, pin->model, pin->name);
    if (model == nullptr && isSelector) model = names.Resolve(pin->model);
    const MdlTypeInfo* type = model != nullptr ? MDL_TypeInfo(model->type) : nullptr;
    if (type == nullptr) return;
    if (type->group == MDL_GROUP_SERIES || type->group == MDL_GROUP_SERIES_SWITCH)
        ERRLOG_ErrorNew(538, component->name, pin->name, type->name, model->name);
    if (type->differential && pin->pair == nullptr)
        ERRLOG_ErrorNew(542, component->name, pin->name, model->name);
}

static void s_testPins(const Cmpnt* component, const CmpntNames& names)
{
    int count[PIN_NA + 1] = {};
    int all = 0;
    for (const Pin* pin = component->pins; pin != nullptr; pin = pin->next) {
        if (pin->repeated) continue;
        ++all;
        ++count[pin->kind];
        if (pin->kind == PIN_MODEL) s_testPin(component, pin, names);
    }
    if (all == 0) return;
    if (count[PIN_POWER] == 0 || count[PIN_GND] == 0) ERRLOG_NoteNew(539, component->name);
    if (count[PIN_POWER] + count[PIN_GND] + count[PIN_NC] == all)
        ERRLOG_WarnNew(540, component->name);
}

static void s_testLocations(const Cmpnt* component)
{
    if (component->package == nullptr) return;
    for (const RngRange* range :
         {component->package->R_pkg, component->package->L_pkg, component->package->C_pkg})
        if (range == nullptr || range->typState != CELL_NUMBER || range->typ != 0.0) return;
    if (component->Si_location == LOCATION_DIE) ERRLOG_WarnNew(541, component->name, "Si_location");
    if (component->Timing_location == LOCATION_DIE)
        ERRLOG_WarnNew(541, component->name, "Timing_location");
}

static void s_comparePins(const Cmpnt* component, const PkgMdl* package)
{
    for (const PkgPin* pin = package->pins; pin != nullptr; pin = pin->next)
        if (CMPNT_FindPin(component, pin->name) == nullptr) {
            ERRLOG_WarnNew(534, component->name, package->name, pin->name);
            break;
        }
    unsigned supplies = 0;
    for (const Pin* pin = component->pins; pin != nullptr; pin = pin->next) {
        if (pin->repeated || PKGMDL_HasPin(package, pin->name)) continue;
        if (pin->kind == PIN_MODEL)
            ERRLOG_WarnNew(535, component->name, pin->name, package->name);
        else if (pin->kind == PIN_POWER || pin->kind == PIN_GND || pin->kind == PIN_NC)
            ++supplies;
    }
    if (supplies > 0) ERRLOG_NoteNew(536, component->name, supplies, package->name);
}

static int s_testPackage(const Cmpnt* component, PkgFinder* finder)
{
    if (component->packageModel[0] == '\0') return 1;
    const PkgPlace place = PKGFINDER_Find(finder, component->packageModel);
    if (place.where == PKG_NO_FILE)
        ERRLOG_WarnNew(533, component->name, component->packageModel, place.fileName);
    else if (place.where == PKG_NOT_IN_FILE)
        ERRLOG_ErrorNew(532, component->name, component->packageModel, place.fileName);
    else if (place.package->pins != nullptr && component->pins != nullptr)
        s_comparePins(component, place.package);
    return place.where == PKG_FOUND;
}

int CMPNT_TestPkgMdl(const Cmpnt* component)
{
    CMN_ASSERT(component != nullptr);
    IbisRoot* root = nullptr;
    PkgFinder* finder = IBIS_GetIBIS(&root) ? PKGFINDER_New(root->pkgMdls) : nullptr;
    if (finder == nullptr) return 0;
    const int done = s_testPackage(component, finder);
    PKGFINDER_Free(finder);
    return done;
}

int CMPNT_TestList(Cmpnt* components, Ext* externals, Mdl* models)
{
    CMPNT_Close();
    IbisRoot* root = nullptr;
    PkgFinder* finder = IBIS_GetIBIS(&root) ? PKGFINDER_New(root->pkgMdls) : nullptr;
    if (finder == nullptr) return 0;
    {
        const CmpntNames names(models, root->msels);
        const SecNameIndex<const Ext> circuits(externals);
        for (Ext* item = externals; item != nullptr; item = item->next)
            EXT_FindWired(item);
        for (const Cmpnt* component : SecFileOrder<const Cmpnt>(components)) {
            s_testPins(component, names);
            s_testLocations(component);
            PINMAP_Test(component, names);
            DIFFPIN_Test(component, names);
            SERMAP_Test(component, names);
            APKG_Test(component, finder);
            s_testPackage(component, finder);
            CIRCUIT_Test(component, circuits);
            CMPNTEMI_Test(component);
        }
        EXT_TestList(externals, components);
    }
    PKGFINDER_Free(finder);
    return 1;
}
