// Package models: whom components ask for, and what they hold against the components' pins.
#include <cstddef>
#include <cstring>
#include "IbisParser/base/place.h"
#include "IbisParser/base/raise.h"
#include "IbisParser/check/companions.h"
#include "IbisParser/check/component.h"
#include "IbisParser/cmn.h"
#include "IbisParser/nml.h"

static const char s_Module[] = "IbisParser/cmpnttest";

static void s_comparePins(const Cmpnt* component, const PkgMdl* package)
{
    for (const PkgPin* pin = package->pins; pin != nullptr; pin = pin->next)
        if (CMPNT_FindPin(component, SEC_WholeName(pin)) == nullptr) {
            const PlaceScope at(SUBJECT_PIN, pin->name, {0, 0});
            ERRLOG_WarnNew(534, component->name, package->name, pin->name);
            break;
        }
    unsigned supplies = 0;
    for (const Pin* pin = component->pins; pin != nullptr; pin = pin->next) {
        if (pin->repeated || PKGMDL_HasPin(package, SEC_WholeName(pin))) continue;
        const PlaceScope at(SUBJECT_PIN, pin);
        if (pin->kind == PIN_MODEL)
            ERRLOG_WarnNew(535, component->name, pin->name, package->name);
        else if (pin->kind == PIN_POWER || pin->kind == PIN_GND || pin->kind == PIN_NC)
            ++supplies;
    }
    if (supplies > 0) ERRLOG_NoteNew(536, component->name, supplies, package->name);
}

bool PACKAGE_Test(const Cmpnt* component, PkgFinder* finder)
{
    if (component->packageModel[0] == '\0') return true;
    const PlaceScope at(component->packageModel);
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
    if (!IBIS_GetIBIS(&root)) return 0;
    PkgFinder finder(root->pkgMdls);
    return PACKAGE_Test(component, &finder);
}

void APKG_Test(const Cmpnt* component, PkgFinder* finder)
{
    const Apkg* first = component->alternates;
    if (first == nullptr) return;
    const PlaceScope list(first);
    bool hasDefault = false;
    for (const Apkg* item = first; item != nullptr; item = item->next)
        hasDefault = hasDefault || std::strcmp(item->name, component->packageModel) == 0;
    if (!hasDefault && component->packageModel[0] != '\0')
        ERRLOG_NoteNew(609, component->name, component->packageModel);
    for (const Apkg* item = first; item != nullptr; item = item->next) {
        const PlaceScope at(item);
        if (PKGFINDER_Find(finder, item->name).where != PKG_FOUND)
            ERRLOG_WarnNew(610, component->name, item->name);
    }
    if (first->next == nullptr) ERRLOG_NoteNew(611, component->name);
}

int PKGMDL_TestList(PkgMdl* packages)
{
    PKGMDL_Close();
    NML_CheckUnique(packages, offsetof(PkgMdl, name), offsetof(PkgMdl, next), "Package Model");
    IbisRoot* root = nullptr;
    if (!IBIS_GetIBIS(&root) || root->cmpnts == nullptr) return 1;
    SecSet used;
    for (const Cmpnt* component = root->cmpnts; component != nullptr; component = component->next) {
        SEC_SetAdd(&used, component->packageModel);
        for (const Apkg* row = component->alternates; row != nullptr; row = row->next)
            SEC_SetAdd(&used, row->name);
    }
    for (const PkgMdl* package : SecFileOrder<PkgMdl>(packages)) {
        const PlaceScope at(SUBJECT_PACKAGE_MODEL, package);
        if (!SEC_SetHas(&used, package->name)) ERRLOG_WarnNew(2331, package->name);
    }
    return 1;
}
