// Components against the document: the order of their checks, pins, locations, EMI domains.
#include "IbisParser/check/component.h"
#include "IbisParser/base/place.h"
#include "IbisParser/base/raise.h"
#include "IbisParser/check/companions.h"
#include "IbisParser/ext.h"
#include "IbisParser/mdl.h"

static void s_testPin(const Cmpnt* component, const Pin* pin, const CmpntNames& names)
{
    const Mdl* model = names.Model(pin->model);
    const bool isSelector = names.Selector(pin->model) != nullptr;
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

// A bus switch has series models between pins without a model of their own.
static bool s_joinsPins(const Cmpnt* component)
{
    for (const SerMap* row = component->seriesPins; row != nullptr; row = row->next)
        for (const char* name : {row->name, row->pin2}) {
            const Pin* pin = CMPNT_FindPin(component, name);
            if (pin != nullptr && pin->kind == PIN_NC) return true;
        }
    return false;
}

static void s_testPins(const Cmpnt* component, const CmpntNames& names)
{
    int count[PIN_NA + 1] = {};
    int all = 0;
    for (const Pin* pin = component->pins; pin != nullptr; pin = pin->next) {
        if (pin->repeated) continue;
        const PlaceScope at(SUBJECT_PIN, pin);
        ++all;
        ++count[pin->kind];
        if (pin->kind == PIN_MODEL) s_testPin(component, pin, names);
    }
    if (all == 0) return;
    if (count[PIN_POWER] == 0 || count[PIN_GND] == 0) ERRLOG_NoteNew(539, component->name);
    if (count[PIN_POWER] + count[PIN_GND] + count[PIN_NC] == all && !s_joinsPins(component))
        ERRLOG_WarnNew(540, component->name);
}

static void s_testLocations(const Cmpnt* component, PkgFinder* finder)
{
    const bool isDie =
        component->Si_location == LOCATION_DIE || component->Timing_location == LOCATION_DIE;
    if (component->package == nullptr || !isDie) return;
    for (const RngRange* range :
         {component->package->R_pkg, component->package->L_pkg, component->package->C_pkg})
        if (range == nullptr || range->typState != CELL_NUMBER || range->typ != 0.0) return;
    if (component->packageModel[0] != '\0' &&
        PKGFINDER_Find(finder, component->packageModel).where == PKG_FOUND)
        return;
    if (component->Si_location == LOCATION_DIE) ERRLOG_WarnNew(541, component->name, "Si_location");
    if (component->Timing_location == LOCATION_DIE)
        ERRLOG_WarnNew(541, component->name, "Timing_location");
}

static void s_testEmi(const Cmpnt* component)
{
    if (component->emi == nullptr) return;
    const CmpntEmi* emi = component->emi;
    SecSet listed;
    SecSet used;
    long sum = 0;
    for (const EmiPinDomain* domain = emi->domains; domain != nullptr; domain = domain->next) {
        SEC_SetAdd(&listed, domain->name);
        if (domain->percent > 0) sum += domain->percent;
    }
    const PlaceScope in(emi->domains);
    if (sum > 100) ERRLOG_ErrorNew(816, component->name, static_cast<int>(sum));
    for (const EmiPin* pin = emi->pins; pin != nullptr; pin = pin->next) {
        if (pin->domain[0] == '\0') continue;
        const PlaceScope at(SUBJECT_PIN, pin);
        SEC_SetAdd(&used, pin->domain);
        if (emi->domains != nullptr && !SEC_SetHas(&listed, pin->domain))
            ERRLOG_ErrorNew(817, component->name, pin->domain, pin->name);
    }
    for (const EmiPinDomain* domain = emi->domains; domain != nullptr; domain = domain->next) {
        const PlaceScope at(SUBJECT_DOMAIN, domain);
        if (SEC_SetAdd(&used, domain->name)) ERRLOG_WarnNew(818, component->name, domain->name);
    }
}

int CMPNT_TestList(Cmpnt* components, Ext* externals, Mdl* models)
{
    CMPNT_Close();
    // Package files are read next; a package model left open belongs to this one.
    PKGMDL_Close();
    IbisRoot* root = nullptr;
    if (!IBIS_GetIBIS(&root)) return 0;
    PkgFinder finder(root->pkgMdls);
    const CmpntNames names(models, root->msels);
    const SecNameIndex<const Ext> circuits(externals);
    for (Ext* item = externals; item != nullptr; item = item->next)
        EXT_FindWired(item);
    for (const Cmpnt* component : SecFileOrder<const Cmpnt>(components)) {
        const PlaceScope at(SUBJECT_COMPONENT, component);
        s_testPins(component, names);
        s_testLocations(component, &finder);
        PINMAP_Test(component, names);
        DIFFPIN_Test(component, names);
        SERMAP_Test(component, names);
        APKG_Test(component, &finder);
        PACKAGE_Test(component, &finder);
        CIRCUIT_Test(component, circuits);
        s_testEmi(component);
    }
    EXT_TestList(externals, components);
    return 1;
}
