// Plausibility of components.
#include "IbisParser/chkcmpnt.h"

#include <cmath>
#include <cstddef>
#include <cstring>

#include "IbisParser/base/place.h"
#include "IbisParser/base/raise.h"
#include "IbisParser/cmn.h"
#include "IbisParser/cmpnt.h"
#include "IbisParser/nml.h"
#include "IbisParser/store/section.h"

// Impedances sqrt(L/C) of packages lie between these, in ohm.
static const double s_minImpedance = 1.0;
static const double s_maxImpedance = 1000.0;
// A pin's value beyond this factor of the package value is hardly meant.
static const double s_maxFactor = 100.0;

static bool s_isSignal(const Pin* pin)
{
    return pin->kind == PIN_MODEL || pin->kind == PIN_CIRCUITCALL;
}

static void s_checkSignals(const Cmpnt* component)
{
    for (const Pin* pin = component->pins; pin != nullptr; pin = pin->next)
        if (s_isSignal(pin)) return;
    // A bus switch has series models between pins without a model of their own.
    if (component->pins != nullptr && component->seriesPins == nullptr)
        ERRLOG_ErrorNew(716, component->name);
}

static bool s_isPositive(const RngSingle* cell)
{
    return cell->state == CELL_NUMBER && cell->value > 0.0;
}

// True when the message was raised.
static bool s_checkImpedance(const char* owner, double L, double C)
{
    const double impedance = std::sqrt(L / C);
    if (impedance >= s_minImpedance && impedance <= s_maxImpedance) return false;
    ERRLOG_WarnNew(717, owner, impedance);
    return true;
}

static void s_checkPackage(const char* owner, const RngRange* L, const RngRange* C)
{
    const PlaceScope at(L);
    const PlaceScope in(CORNER_TYP);
    s_checkImpedance(owner, L->typ, C->typ);
}

static void s_checkImpedances(const Cmpnt* component)
{
    const Pkg* package = component->package;
    const RngRange* L = package != nullptr ? package->L_pkg : nullptr;
    const RngRange* C = package != nullptr ? package->C_pkg : nullptr;
    if (L != nullptr && C != nullptr && L->typState == CELL_NUMBER && C->typState == CELL_NUMBER &&
        L->typ > 0.0 && C->typ > 0.0)
        s_checkPackage(component->name, L, C);
    for (const Pin* pin = component->pins; pin != nullptr; pin = pin->next) {
        const PlaceScope at(SUBJECT_PIN, pin);
        if (s_isPositive(&pin->L) && s_isPositive(&pin->C) &&
            s_checkImpedance(pin->name, pin->L.value, pin->C.value))
            return;
    }
}

static void s_checkSupplyNames(const Cmpnt* component)
{
    for (const Pin* pin = component->pins; pin != nullptr; pin = pin->next) {
        const PlaceScope at(SUBJECT_PIN, pin);
        const bool isNamedSupply =
            CMN_StrSameIC(pin->signal, "GND") || CMN_StrSameIC(pin->signal, "POWER");
        if (isNamedSupply && (pin->kind == PIN_MODEL || pin->kind == PIN_NC))
            ERRLOG_WarnNew(718, component->name, pin->name, pin->signal, pin->model);
    }
}

// A signal whose pins differ in their model; pins without a connection do not count.
static void s_checkSignalModels(const Cmpnt* component)
{
    SecScopedIndex first;
    SecSet told;
    for (Pin* pin = component->pins; pin != nullptr; pin = pin->next) {
        const PlaceScope at(SUBJECT_PIN, pin);
        void** value = nullptr;
        if (pin->kind == PIN_NC || pin->kind == PIN_NA) continue;
        if (!IDX_SlotName(&first, pin->signal, &value)) break;
        const Pin* other = static_cast<const Pin*>(*value);
        if (other == nullptr)
            *value = pin;
        else if ((pin->kind != other->kind ||
                  (pin->kind == PIN_MODEL && std::strcmp(pin->model, other->model) != 0)) &&
                 SEC_SetAdd(&told, pin->signal))
            ERRLOG_NoteNew(719, component->name, pin->signal, other->model, pin->model);
    }
}

static void s_checkPinValues(const Cmpnt* component)
{
    static const struct {
        const char* name;
        RngSingle Pin::*pinValue;
        RngRange* Pkg::*packageValue;
    } columns[] = {{"R_pin", &Pin::R, &Pkg::R_pkg},
                   {"L_pin", &Pin::L, &Pkg::L_pkg},
                   {"C_pin", &Pin::C, &Pkg::C_pkg}};
    if (component->package == nullptr) return;
    for (const auto& column : columns) {
        const RngRange* range = component->package->*column.packageValue;
        if (range == nullptr || range->typState != CELL_NUMBER || !(range->typ > 0.0)) continue;
        for (const Pin* pin = component->pins; pin != nullptr; pin = pin->next) {
            const RngSingle* cell = &(pin->*column.pinValue);
            if (!s_isPositive(cell)) continue;
            if (!SEC_Exceeds(cell->value, s_maxFactor * range->typ) &&
                !SEC_Exceeds(range->typ, s_maxFactor * cell->value))
                continue;
            const PlaceScope at(SUBJECT_PIN, pin);
            ERRLOG_WarnNew(720, component->name, pin->name, column.name, cell->value, range->typ);
            break;
        }
    }
}

int chk_CheckAllComponents(Cmpnt* components)
{
    CMPNT_Close();
    NML_CheckUnique(components, offsetof(Cmpnt, name), offsetof(Cmpnt, next), "Component");
    for (const Cmpnt* component : SecFileOrder<const Cmpnt>(components)) {
        const PlaceScope at(SUBJECT_COMPONENT, component);
        s_checkSignals(component);
        s_checkImpedances(component);
        s_checkSupplyNames(component);
        s_checkSignalModels(component);
        s_checkPinValues(component);
    }
    return 1;
}
