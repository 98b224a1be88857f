// [Pin]: the pin list of a component.
#include "IbisParser/pin.h"

#include "IbisParser/base/place.h"
#include "IbisParser/base/raise.h"
#include "IbisParser/read/component/cmpnt.h"

static const char s_Module[] = "IbisParser/pin";
static const PartFailure s_failure = {s_Module, 1200};

enum { PIN_COLUMNS = 6, FIRST_VALUE = 3, VALUE_COLUMNS = 3, NUMBER_LENGTH = 9 };

// Above the bound a value is legal but hardly a pin's.
static const struct PinColumn {
    const char* name;
    RngSingle Pin::*slot;
    double bound;
} s_columns[VALUE_COLUMNS] = {
    {"R_pin", &Pin::R, 10.0},
    {"L_pin", &Pin::L, 100e-9},
    {"C_pin", &Pin::C, 100e-12},
};

static const struct PinWord {
    const char* name;
    PinKind kind;
} s_words[] = {
    {"POWER", PIN_POWER},
    {"GND", PIN_GND},
    {"NC", PIN_NC},
    {"NA", PIN_NA},
    {"CIRCUITCALL", PIN_CIRCUITCALL},
};

// The value columns that the header names, in its order.
static void s_readValueColumns(CmpntReading* reading, const CmpntItems* args)
{
    unsigned named = 0;
    for (int i = 2; i < args->nStored; ++i) {
        const PinColumn* column = SEC_FindRow(s_columns, args->argv[i]);
        if (column == nullptr) {
            ERRLOG_LineErrorNew(1204, args->argv[i]);
            continue;
        }
        const int index = static_cast<int>(column - s_columns);
        if (SEC_MarkFound(&named, index))
            reading->valueOrder[reading->valueColumns++] = index;
        else
            ERRLOG_LineWarnNew(1217, args->argv[i]);
    }
    if (reading->valueColumns != 0 && reading->valueColumns != VALUE_COLUMNS)
        ERRLOG_LineErrorNew(1205, reading->valueColumns);
}

int PIN_KeywordLine(Cmpnt* component, const char* line)
{
    CMN_ASSERT(component != nullptr && line != nullptr);
    CmpntReading* reading = component->reading;
    CmpntItems args;
    if (!CMPNT_SplitLine(&s_failure, __LINE__, "Pin", line, PIN_COLUMNS + 1, &args)) return 0;
    reading->valueColumns = 0;
    if (args.nStored < 2 || !CMN_StrSameIC(args.argv[0], "signal_name") ||
        !CMN_StrSameIC(args.argv[1], "model_name"))
        ERRLOG_LineErrorNew(1203);
    s_readValueColumns(reading, &args);
    if (reading->valueColumns != VALUE_COLUMNS)
        for (int i = 0; i < VALUE_COLUMNS; ++i)
            reading->valueOrder[i] = i;
    return 1;
}

static void s_readNames(Pin* pin, const CmpntItems* args)
{
    const unsigned limit = SEC_Limit(LIMIT_SIGNAL);
    const char* name = args->argv[0];
    if (!SEC_KeepName(pin, name, SIZE_PIN)) ERRLOG_LineErrorNew(1206, name, SIZE_PIN);
    if (!CMN_ReservedWord(name)) ERRLOG_LineErrorNew(1216, name);
    if (!SEC_CopyName(pin->signal, args->argv[1], limit))
        ERRLOG_LineErrorNew(1207, args->argv[1], pin->name, limit);
    if (!SEC_CopyName(pin->model, args->argv[2], limit))
        ERRLOG_LineErrorNew(1208, args->argv[2], pin->name, limit);
    const PinWord* word = SEC_FindRow(s_words, pin->model);
    pin->kind = word != nullptr ? word->kind : PIN_MODEL;
    if (pin->kind == PIN_CIRCUITCALL && SEC_Version() < 4) ERRLOG_LineErrorNew(1214, pin->name);
    if (pin->kind == PIN_NA) ERRLOG_LineWarnNew(5902, pin->name);
}

static void s_readValue(CmpntReading* reading, Pin* pin, int index, const char* text)
{
    const PinColumn& column = s_columns[index];
    RngSingle* cell = &(pin->*column.slot);
    if (std::strlen(text) > NUMBER_LENGTH &&
        SEC_MarkFound(&reading->reported, REPORTED_LONG_NUMBER))
        ERRLOG_LineWarnNew(1210, column.name, text, pin->name);
    if (!KRNG_ReadCell(text, column.name, 1, cell) || cell->state != CELL_NUMBER) return;
    if (cell->value < 0.0) ERRLOG_LineErrorNew(1211, column.name, pin->name);
    if (SEC_Exceeds(cell->value, column.bound) &&
        SEC_MarkFound(&reading->reported, REPORTED_UNUSUAL_VALUE + index))
        ERRLOG_LineWarnNew(1212, column.name, cell->value, pin->name);
}

static void s_readValues(CmpntReading* reading, Pin* pin, const CmpntItems* args)
{
    if (reading->valueColumns == 0) ERRLOG_LineErrorNew(1213, pin->name);
    int numbers = 0;
    int missing = 0;
    for (int i = 0; i < VALUE_COLUMNS; ++i) {
        const int index = reading->valueOrder[i];
        s_readValue(reading, pin, index, args->argv[FIRST_VALUE + i]);
        const int state = (pin->*s_columns[index].slot).state;
        numbers += state == CELL_NUMBER;
        missing += state == CELL_NA;
    }
    if (numbers > 0 && missing > 0 && SEC_MarkFound(&reading->reported, REPORTED_PARTIAL_VALUES))
        ERRLOG_LineNoteNew(1215, pin->name);
}

static void s_index(Cmpnt* component, Pin* pin)
{
    if (component->pinIndex == nullptr)
        component->pinIndex =
            static_cast<IdxTable*>(SEC_NewPart(1201, s_Module, __LINE__, sizeof(IdxTable)));
    void** value = nullptr;
    if (component->pinIndex == nullptr ||
        !IDX_SlotName(component->pinIndex, SEC_WholeName(pin), &value))
        return;
    if (*value == nullptr) {
        *value = pin;
        return;
    }
    pin->repeated = 1;
    ERRLOG_LineErrorNew(1209, SEC_WholeName(pin));
}

int PIN_ReceiveLine(Cmpnt* component, const char* line)
{
    CMN_ASSERT(component != nullptr && line != nullptr);
    CmpntReading* reading = component->reading;
    CmpntItems args;
    if (!CMPNT_SplitLine(&s_failure, __LINE__, "Pin", line, PIN_COLUMNS, &args)) return 0;
    if (args.argc != FIRST_VALUE && args.argc != PIN_COLUMNS) ERRLOG_LineErrorNew(1202, args.argc);
    Pin* pin = args.argc < FIRST_VALUE
                   ? nullptr
                   : static_cast<Pin*>(SEC_NewPart(1201, s_Module, __LINE__, sizeof(Pin)));
    if (pin != nullptr) {
        const PlaceScope at(SUBJECT_PIN, pin->name, {0, 0});
        pin->line = PARSE_GetLineNum();
        s_readNames(pin, &args);
        if (args.nStored == PIN_COLUMNS) s_readValues(reading, pin, &args);
        s_index(component, pin);
        SEC_Append(&component->pins, &reading->pinTail, pin);
    }
    return pin != nullptr;
}

Pin* PIN_Find(Pin* head, const char* name)
{
    CMN_ASSERT(name != nullptr);
    return SEC_FindByName(head, name);
}

int PIN_Count(const Pin* head)
{
    int count = 0;
    for (; head != nullptr; head = head->next)
        ++count;
    return count;
}

void PIN_FreeList(Pin* head)
{
    SEC_FreeList(head, SEC_FreeNamed<Pin>);
}
