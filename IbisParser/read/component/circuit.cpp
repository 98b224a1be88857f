// [Circuit Call]: external circuits on the die.
#include "IbisParser/circuit.h"

#include "IbisParser/base/raise.h"
#include "IbisParser/ext.h"
#include "IbisParser/read/component/cmpnt.h"

static const char s_Module[] = "IbisParser/circuit";
static const PartFailure s_failure = {s_Module, 3700};

enum CircuitItem { ITEM_SIGNAL, ITEM_DIFF, ITEM_SERIES, ITEM_PORT };

static const struct CircuitRow {
    const char* name;
    CircuitItem item;
    int pins;
} s_rows[] = {
    {"Signal_pin", ITEM_SIGNAL, 1},
    {"Diff_signal_pins", ITEM_DIFF, 2},
    {"Series_pins", ITEM_SERIES, 2},
    {"Port_map", ITEM_PORT, 2},
};

int CIRCUIT_New(Cmpnt* component, const char* line)
{
    CMN_ASSERT(component != nullptr && line != nullptr);
    CmpntReading* reading = component->reading;
    CmpntItems args;
    if (!CMPNT_SplitLine(&s_failure, __LINE__, "Circuit Call", line, 2, &args)) return 0;
    Circuit* call = static_cast<Circuit*>(SEC_NewPart(3701, s_Module, __LINE__, sizeof(Circuit)));
    if (call != nullptr) {
        const char* name = args.nStored > 0 ? args.argv[0] : "";
        call->line = PARSE_GetLineNum();
        if (*name == '\0') ERRLOG_LineErrorNew(1913, "Circuit Call");
        if (!SEC_CopyName(call->name, name, SIZE_NAME)) ERRLOG_LineErrorNew(3712, name, SIZE_NAME);
        CMN_ReservedWordErr(name);
        if (args.nStored > 1) SEC_IgnoreText(517, args.argv[1], "Circuit Call");
        SEC_Append(&component->calls, &reading->callTail, call);
        reading->portTail = nullptr;
        SEC_SetClear(&reading->names);
    }
    reading->openCall = call;
    return call != nullptr;
}

// The pins of a row as the call keeps them.
static char (*s_pinsOf(Circuit* call, CircuitItem item))[SIZE_PIN + 1]
{
    if (item == ITEM_SIGNAL) return &call->signalPin;
    return item == ITEM_DIFF ? call->diffPins : call->seriesPins;
}

static void s_readPins(const Cmpnt* component, Circuit* call, const CircuitRow* row,
                       const CmnArgs* args)
{
    char(*pins)[SIZE_PIN + 1] = s_pinsOf(call, row->item);
    if (pins[0][0] != '\0') {
        ERRLOG_LineErrorNew(3704, row->name, call->name);
        return;
    }
    if (call->signalPin[0] != '\0' || call->diffPins[0][0] != '\0' ||
        call->seriesPins[0][0] != '\0') {
        ERRLOG_LineErrorNew(3705);
        return;
    }
    if (args->argc - 1 != row->pins) {
        ERRLOG_LineErrorNew(3703, row->name, row->pins, args->argc - 1);
        return;
    }
    for (int i = 0; i < row->pins; ++i) {
        SEC_CopyName(pins[i], args->argv[1 + i], SIZE_PIN);
        call->pins[i] = CMPNT_FindPin(component, args->argv[1 + i]);
        if (!CMPNT_HasPin(component, args->argv[1 + i]))
            ERRLOG_LineErrorNew(3706, args->argv[1 + i]);
    }
}

static void s_readPort(CmpntReading* reading, Circuit* call, const CmnArgs* args)
{
    if (args->argc != 3) {
        ERRLOG_LineErrorNew(3707, args->argc - 1);
        return;
    }
    CircuitPort* port =
        static_cast<CircuitPort*>(SEC_NewPart(3701, s_Module, __LINE__, sizeof(CircuitPort)));
    if (port == nullptr) return;
    if (!SEC_SetAdd(&reading->names, args->argv[1])) {
        ERRLOG_LineErrorNew(3708, args->argv[1], call->name);
        SEC_FreeRecord(port);
        return;
    }
    if (!SEC_CopyName(port->port, args->argv[1], SIZE_NAME))
        port->longPort = CMN_StrMake(args->argv[1]);
    SEC_CopyName(port->node, args->argv[2], SIZE_NAME);
    SEC_Append(&call->ports, &reading->portTail, port);
}

int CIRCUIT_ReceiveLine(Cmpnt* component, const char* line)
{
    CMN_ASSERT(component != nullptr && line != nullptr);
    Circuit* call = component->reading->openCall;
    if (call == nullptr) return 0;
    SecArgs args;
    if (!KRNG_Split(line, 3, &args)) {
        ERRLOG_LineBugNew(3700, "Circuit Call", s_Module, __LINE__);
        return 0;
    }
    const CircuitRow* row = args.nStored > 0 ? SEC_FindRow(s_rows, args.argv[0]) : nullptr;
    if (row == nullptr)
        ERRLOG_LineErrorNew(3702, args.nStored > 0 ? args.argv[0] : line);
    else if (row->item == ITEM_PORT)
        s_readPort(component->reading, call, &args);
    else
        s_readPins(component, call, row, &args);
    return row != nullptr;
}

int CIRCUIT_End(Cmpnt* component)
{
    CMN_ASSERT(component != nullptr);
    CmpntReading* reading = component->reading;
    Circuit* call = reading->openCall;
    reading->openCall = nullptr;
    SEC_SetClear(&reading->names);
    if (call == nullptr) return 0;
    call->ended = 1;
    if (call->ports == nullptr) ERRLOG_LineErrorNew(3709, call->name);
    return call->ports != nullptr;
}

int CIRCUIT_Fini(Cmpnt* component)
{
    CMN_ASSERT(component != nullptr);
    Circuit* call = component->reading->openCall;
    if (call == nullptr) return 0;
    ERRLOG_LineErrorNew(3710, call->name);
    CIRCUIT_End(component);
    call->ended = 0;
    return 1;
}

static void s_free(Circuit* call)
{
    SEC_FreeList(call->ports, [](CircuitPort* port) {
        SEC_FreeText(&port->longPort);
        SEC_FreeRecord(port);
    });
    SEC_FreeRecord(call);
}

void CIRCUIT_FreeList(Circuit* head)
{
    SEC_FreeList(head, s_free);
}
