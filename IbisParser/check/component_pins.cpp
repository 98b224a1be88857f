// The tables of a component's pins against the document: [Pin Mapping], [Diff Pin] and
// [Series Pin Mapping] with its switch groups.
#include "IbisParser/base/place.h"
#include "IbisParser/base/raise.h"
#include "IbisParser/check/component.h"
#include "IbisParser/read/component/cmpnt.h"
#include "IbisParser/vitbl.h"

// [Pin Mapping].

static bool s_hasBus(const PinMap* row, int column)
{
    return row->bus[column][0] != '\0' && !CMN_StrSameIC(row->bus[column], "NC");
}

static int s_countBuses(const PinMap* row)
{
    int count = 0;
    for (int i = 0; i < PINMAP_COLUMNS; ++i)
        count += s_hasBus(row, i);
    return count;
}

// A supply pin names one bus, in the column of its own rail or, with a warning, of the other.
static void s_testSupply(const Cmpnt* component, const Pin* pin, int ownColumn, int otherColumn)
{
    const PinMap* row = pin->mapping;
    const PlaceScope at(row);
    const int buses = s_countBuses(row);
    if (buses == 1 && s_hasBus(row, ownColumn)) return;
    const bool isSwapped = buses == 1 && s_hasBus(row, otherColumn);
    if (pin->kind == PIN_GND && isSwapped)
        ERRLOG_WarnNew(1311, component->name, pin->name);
    else if (pin->kind == PIN_GND)
        ERRLOG_ErrorNew(1311, component->name, pin->name);
    else if (isSwapped)
        ERRLOG_WarnNew(1312, component->name, pin->name);
    else
        ERRLOG_ErrorNew(1312, component->name, pin->name);
}

static bool s_carriesCurrent(const Vitbl* table)
{
    return table != nullptr && table->carries;
}

// The supplies that a model draws on, one for each column.
static void s_findNeeds(const Mdl* model, const PinMap* row, bool needs[PINMAP_COLUMNS])
{
    const MdlTypeInfo* type = MDL_TypeInfo(model->type);
    const bool isEcl = type != nullptr && type->ecl;
    const int pulldown = isEcl ? PINMAP_PULLUP : PINMAP_PULLDOWN;
    // Without a column of their own, clamps work on the buses of the drivers.
    const int gndClamp = row->bus[PINMAP_GND_CLAMP][0] != '\0' ? PINMAP_GND_CLAMP : PINMAP_PULLDOWN;
    const int powerClamp =
        row->bus[PINMAP_POWER_CLAMP][0] != '\0' ? PINMAP_POWER_CLAMP : PINMAP_PULLUP;
    const struct {
        int column;
        bool isUsed;
    } uses[] = {
        {PINMAP_PULLUP, s_carriesCurrent(model->pullup) || model->Rpower != nullptr},
        {pulldown, s_carriesCurrent(model->pulldown)},
        {PINMAP_PULLDOWN, model->Rgnd != nullptr},
        {gndClamp, s_carriesCurrent(model->gndClamp)},
        {powerClamp, s_carriesCurrent(model->powerClamp)},
        {PINMAP_EXT, model->externalRef != nullptr && row->bus[PINMAP_EXT][0] != '\0'},
    };
    for (const auto& use : uses)
        needs[use.column] = needs[use.column] || use.isUsed;
}

static void s_testNeeds(const Cmpnt* component, const Pin* pin, const Mdl* model)
{
    const PlaceScope at(pin->mapping);
    bool needs[PINMAP_COLUMNS] = {};
    s_findNeeds(model, pin->mapping, needs);
    for (int i = 0; i < PINMAP_COLUMNS; ++i)
        if (needs[i] && !s_hasBus(pin->mapping, i))
            ERRLOG_WarnNew(1314, component->name, pin->name, pinmapColumns[i], model->name);
}

static void s_testUnconnected(const Cmpnt* component, const Pin* pin)
{
    const PlaceScope at(pin->mapping);
    if (s_countBuses(pin->mapping) > 0) ERRLOG_ErrorNew(1313, component->name, pin->name);
}

// A bus must be fed by a supply pin; told once for each bus.
static void s_testBuses(const Cmpnt* component)
{
    SecSet fed;
    SecSet told;
    for (const Pin* pin = component->pins; pin != nullptr; pin = pin->next)
        if (pin->mapping != nullptr && (pin->kind == PIN_POWER || pin->kind == PIN_GND))
            for (const auto& bus : pin->mapping->bus)
                SEC_SetAdd(&fed, bus);
    const char* previous[PINMAP_COLUMNS] = {"", "", "", "", ""};
    for (const Pin* pin = component->pins; pin != nullptr; pin = pin->next)
        for (int i = 0; pin->mapping != nullptr && i < PINMAP_COLUMNS; ++i) {
            const char* bus = pin->mapping->bus[i];
            // Neighbours often hang on the same bus.
            if (std::strcmp(bus, previous[i]) == 0) continue;
            previous[i] = bus;
            const PlaceScope at(SUBJECT_BUS, bus, PLACE_Of(pin->mapping));
            if (s_hasBus(pin->mapping, i) && !SEC_SetHas(&fed, bus) && SEC_SetAdd(&told, bus))
                ERRLOG_ErrorNew(1310, component->name, bus);
        }
}

void PINMAP_Test(const Cmpnt* component, const CmpntNames& names)
{
    if (component->pinMap == nullptr) return;
    for (const Pin* pin = component->pins; pin != nullptr; pin = pin->next) {
        if (pin->repeated) continue;
        const PlaceScope at(SUBJECT_PIN, pin);
        if (pin->mapping == nullptr)
            ERRLOG_ErrorNew(1309, component->name, pin->name);
        else if (pin->kind == PIN_GND)
            s_testSupply(component, pin, PINMAP_PULLDOWN, PINMAP_PULLUP);
        else if (pin->kind == PIN_POWER)
            s_testSupply(component, pin, PINMAP_PULLUP, PINMAP_PULLDOWN);
        else if (pin->kind == PIN_NC)
            s_testUnconnected(component, pin);
        else if (pin->kind == PIN_MODEL) {
            const Mdl* model = names.Resolve(pin->model);
            if (model != nullptr) s_testNeeds(component, pin, model);
        }
    }
    s_testBuses(component);
}

// [Diff Pin].

static const Mdl* s_testPairPin(const Cmpnt* component, const Pin* pin, const CmpntNames& names)
{
    if (pin == nullptr) return nullptr;
    // The pair's line stays.
    const PlaceScope at(SUBJECT_PIN, pin->name, {0, 0});
    if (pin->kind == PIN_POWER || pin->kind == PIN_GND || pin->kind == PIN_NC)
        ERRLOG_ErrorNew(1511, component->name, pin->name, pin->model);
    return pin->kind == PIN_MODEL ? names.Resolve(pin->model) : nullptr;
}

void DIFFPIN_Test(const Cmpnt* component, const CmpntNames& names)
{
    for (const DiffPin* pair = component->diffPins; pair != nullptr; pair = pair->next) {
        const PlaceScope at(SUBJECT_PIN, pair);
        const Mdl* model = s_testPairPin(component, pair->pins[0], names);
        const Mdl* inverse = s_testPairPin(component, pair->pins[1], names);
        if (model == nullptr) continue;
        const MdlTypeInfo* type = MDL_TypeInfo(model->type);
        if (type == nullptr) continue;
        const MdlTypeInfo* inverseType = inverse != nullptr ? MDL_TypeInfo(inverse->type) : nullptr;
        if (inverseType != nullptr && inverseType != type)
            ERRLOG_WarnNew(1512, component->name, pair->name, pair->invPin, type->name,
                           inverseType->name);
        if (type->receives && pair->vdiff.state == CELL_NA)
            ERRLOG_NoteNew(1513, component->name, pair->name);
    }
}

// [Series Pin Mapping].

static void s_testSeries(const Cmpnt* component, const SerMap* row, const CmpntNames& names,
                         const SecSet* switched)
{
    const Mdl* model = names.Resolve(row->model);
    if (model == nullptr) {
        if (names.Selector(row->model) == nullptr)
            ERRLOG_ErrorNew(1716, component->name, row->name, row->model);
        return;
    }
    if (model->type == MDL_TYPE_UNSET) return;
    const bool hasGroup = row->group[0] != '\0';
    if (model->type != MDL_SERIES && model->type != MDL_SERIES_SWITCH)
        ERRLOG_ErrorNew(1717, component->name, row->model, row->name, CMPNT_TypeName(model));
    else if (model->type == MDL_SERIES_SWITCH && !hasGroup)
        ERRLOG_ErrorNew(1718, component->name, row->name);
    else if (model->type == MDL_SERIES && hasGroup)
        ERRLOG_WarnNew(1720, component->name, row->group, row->name, "belongs to a Series model");
    else if (hasGroup && !SEC_SetHas(switched, row->group))
        ERRLOG_WarnNew(1720, component->name, row->group, row->name, "is in no switch state");
}

void SERMAP_Test(const Cmpnt* component, const CmpntNames& names)
{
    SecSet used;
    SecSet switched;
    for (const SerMap* row = component->seriesPins; row != nullptr; row = row->next)
        if (row->group[0] != '\0') SEC_SetAdd(&used, row->group);
    for (const SerState* state = component->switchStates; state != nullptr; state = state->next)
        for (const SerGroup* group = state->groups; group != nullptr; group = group->next)
            SEC_SetAdd(&switched, group->name);

    for (const SerMap* row = component->seriesPins; row != nullptr; row = row->next) {
        const PlaceScope at(SUBJECT_PIN, row);
        s_testSeries(component, row, names, &switched);
    }
    for (const SerState* state = component->switchStates; state != nullptr; state = state->next)
        for (const SerGroup* group = state->groups; group != nullptr; group = group->next) {
            const PlaceScope at(SUBJECT_GROUP, group);
            if (SEC_SetAdd(&used, group->name)) ERRLOG_ErrorNew(1719, component->name, group->name);
        }
}
