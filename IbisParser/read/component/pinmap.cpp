// [Pin Mapping]: the buses that supply each pin.
#include "IbisParser/pinmap.h"

#include "IbisParser/errlog.h"
#include "IbisParser/read/component/cmpnt.h"
#include "IbisParser/vitbl.h"

static const char s_Module[] = "IbisParser/pinmap";
static const PartFailure s_failure = {s_Module, 1300, 1301};

static const char* const s_columns[PINMAP_COLUMNS] = {"pulldown_ref", "pullup_ref", "gnd_clamp_ref",
                                                      "power_clamp_ref", "ext_ref"};

int PINMAP_KeywordLine(Cmpnt* component, const char* line)
{
    CMN_ASSERT(component != nullptr && line != nullptr);
    CmpntItems args;
    if (!CMPNT_SplitLine(&s_failure, __LINE__, "Pin Mapping", line, PINMAP_COLUMNS + 1, &args))
        return 0;
    int drives = 0;
    for (int i = 0; i < args.nStored; ++i) {
        if (i >= PINMAP_COLUMNS || !CMN_StrSameIC(args.argv[i], s_columns[i]))
            ERRLOG_LineErrorNew(1303, args.argv[i]);
        else if (i == PINMAP_EXT && SEC_Version() < 4)
            ERRLOG_LineErrorNew(1308);
        else
            drives += i <= PINMAP_PULLUP;
    }
    if (drives < 2) ERRLOG_LineErrorNew(1304);
    return 1;
}

static void s_link(Cmpnt* component, PinMap* row)
{
    Pin* pin = CMPNT_FindPin(component, row->name);
    if (pin == nullptr) {
        if (component->pins != nullptr) ERRLOG_LineErrorNew(1306, row->name);
        return;
    }
    if (pin->mapping != nullptr)
        ERRLOG_LineErrorNew(1307, row->name);
    else
        pin->mapping = row;
}

int PINMAP_ReceiveLine(Cmpnt* component, const char* line)
{
    CMN_ASSERT(component != nullptr && line != nullptr);
    CmpntItems args;
    if (!CMPNT_SplitLine(&s_failure, __LINE__, "Pin Mapping", line, PINMAP_COLUMNS + 1, &args))
        return 0;
    const int takesExt = SEC_Version() >= 4;
    if (args.argc != 3 && args.argc != 5 && !(args.argc == 6 && takesExt))
        ERRLOG_LineErrorNew(1302, args.argc, takesExt ? "three, five or six" : "three or five");
    PinMap* row = args.argc < 3
                      ? nullptr
                      : static_cast<PinMap*>(SEC_NewPart(1301, s_Module, __LINE__, sizeof(PinMap)));
    if (row != nullptr) {
        row->line = PARSE_GetLineNum();
        SEC_CopyName(row->name, args.argv[0], SIZE_PIN);
        for (int i = 1; i < args.nStored; ++i)
            if (!SEC_CopyName(row->bus[i - 1], args.argv[i], SIZE_BUS))
                ERRLOG_LineErrorNew(1305, args.argv[i], row->name);
        s_link(component, row);
        SEC_Append(&component->pinMap, &component->reading->mapTail, row);
    }
    return row != nullptr;
}

PinMap* PINMAP_Find(PinMap* head, const char* pin)
{
    CMN_ASSERT(pin != nullptr);
    return SEC_FindByName(head, pin);
}

static int s_hasBus(const PinMap* row, int column)
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
static void s_checkSupply(const Cmpnt* component, const Pin* pin, int ownColumn, int otherColumn)
{
    const PinMap* row = pin->mapping;
    const int buses = s_countBuses(row);
    if (buses == 1 && s_hasBus(row, ownColumn)) return;
    const int isSwapped = buses == 1 && s_hasBus(row, otherColumn);
    if (pin->kind == PIN_GND && isSwapped)
        ERRLOG_WarnNew(1311, component->name, pin->name);
    else if (pin->kind == PIN_GND)
        ERRLOG_ErrorNew(1311, component->name, pin->name);
    else if (isSwapped)
        ERRLOG_WarnNew(1312, component->name, pin->name);
    else
        ERRLOG_ErrorNew(1312, component->name, pin->name);
}

static int s_carriesCurrent(const Vitbl* table)
{
    return table != nullptr && table->carries;
}

// The supplies that a model draws on, one for each column.
static void s_findNeeds(const Mdl* model, const PinMap* row, int needs[PINMAP_COLUMNS])
{
    const MdlTypeInfo* type = MDL_TypeInfo(model->type);
    const int isEcl = type != nullptr && type->ecl;
    const int pulldown = isEcl ? PINMAP_PULLUP : PINMAP_PULLDOWN;
    // Without a column of their own, clamps work on the buses of the drivers.
    const int gndClamp = row->bus[PINMAP_GND_CLAMP][0] != '\0' ? PINMAP_GND_CLAMP : PINMAP_PULLDOWN;
    const int powerClamp =
        row->bus[PINMAP_POWER_CLAMP][0] != '\0' ? PINMAP_POWER_CLAMP : PINMAP_PULLUP;
    const struct {
        int column;
        int isUsed;
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

static void s_checkNeeds(const Cmpnt* component, const Pin* pin, const Mdl* model)
{
    int needs[PINMAP_COLUMNS] = {};
    s_findNeeds(model, pin->mapping, needs);
    for (int i = 0; i < PINMAP_COLUMNS; ++i)
        if (needs[i] && !s_hasBus(pin->mapping, i))
            ERRLOG_WarnNew(1314, component->name, pin->name, s_columns[i], model->name);
}

// A bus must be fed by a supply pin; told once for each bus.
static void s_checkBuses(const Cmpnt* component)
{
    SecSet fed = {};
    SecSet told = {};
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
            if (s_hasBus(pin->mapping, i) && !SEC_SetHas(&fed, bus) && SEC_SetAdd(&told, bus))
                ERRLOG_ErrorNew(1310, component->name, bus);
        }
    SEC_SetClear(&fed);
    SEC_SetClear(&told);
}

void PINMAP_Test(const Cmpnt* component, const CmpntNames& names)
{
    if (component->pinMap == nullptr) return;
    for (const Pin* pin = component->pins; pin != nullptr; pin = pin->next) {
        if (pin->repeated) continue;
        if (pin->mapping == nullptr)
            ERRLOG_ErrorNew(1309, component->name, pin->name);
        else if (pin->kind == PIN_GND)
            s_checkSupply(component, pin, PINMAP_PULLDOWN, PINMAP_PULLUP);
        else if (pin->kind == PIN_POWER)
            s_checkSupply(component, pin, PINMAP_PULLUP, PINMAP_PULLDOWN);
        else if (pin->kind == PIN_NC && s_countBuses(pin->mapping) > 0)
            ERRLOG_ErrorNew(1313, component->name, pin->name);
        else if (pin->kind == PIN_MODEL) {
            const Mdl* model = names.Resolve(pin->model);
            if (model != nullptr) s_checkNeeds(component, pin, model);
        }
    }
    s_checkBuses(component);
}

void PINMAP_FreeList(PinMap* head)
{
    SEC_FreeList(head, SEC_FreeRecord<PinMap>);
}
