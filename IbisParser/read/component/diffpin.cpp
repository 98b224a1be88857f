// [Diff Pin]: differential pairs.
#include "IbisParser/diffpin.h"

#include "IbisParser/base/place.h"
#include "IbisParser/base/raise.h"
#include "IbisParser/dly.h"
#include "IbisParser/read/component/cmpnt.h"

static const char s_Module[] = "IbisParser/diffpin";
static const PartFailure s_failure = {s_Module, 1500};

enum { DIFF_COLUMNS = 6, FIRST_VALUE = 2, NUMBER_LENGTH = 9 };

// The columns after the pin, in their order.
static const struct DiffColumn {
    const char* name;
    RngSingle DiffPin::*slot;  // null for the inverting pin
    int isDelay;
} s_columns[] = {
    {"inv_pin", nullptr, 0},
    {"vdiff", &DiffPin::vdiff, 0},
    {"tdelay_typ", &DiffPin::tdelayTyp, 1},
    {"tdelay_min", &DiffPin::tdelayMin, 1},
    {"tdelay_max", &DiffPin::tdelayMax, 1},
};

int DIFFPIN_KeywordLine(Cmpnt* component, const char* line)
{
    CMN_ASSERT(component != nullptr && line != nullptr);
    CmpntItems args;
    if (!CMPNT_SplitLine(&s_failure, __LINE__, "Diff Pin", line, DIFF_COLUMNS, &args)) return 0;
    bool isKnown = true;
    for (int i = 0; i < args.nStored; ++i)
        if (i >= DIFF_COLUMNS - 1 || !CMN_StrSameIC(args.argv[i], s_columns[i].name)) {
            ERRLOG_LineErrorNew(1503, args.argv[i]);
            isKnown = false;
        }
    if (args.argc == 0)
        ERRLOG_LineWarnNew(5900, "Diff Pin");
    else if (isKnown && args.argc != 3 && args.argc != DIFF_COLUMNS - 1)
        ERRLOG_LineWarnNew(5901, "Diff Pin", args.argc, "three or five");
    return 1;
}

// Each pin is listed and in no other pair.
static void s_link(const Cmpnt* component, DiffPin* pair, const char* const names[2])
{
    for (int i = 0; i < 2; ++i) {
        pair->pins[i] = CMPNT_FindPin(component, names[i]);
        if (pair->pins[i] == nullptr && component->pins != nullptr)
            ERRLOG_LineErrorNew(1504, names[i]);
    }
    if (std::strcmp(names[0], names[1]) == 0) {
        ERRLOG_LineErrorNew(1505, names[0]);
        return;
    }
    for (Pin* pin : pair->pins) {
        if (pin == nullptr) continue;
        if (pin->pair != nullptr)
            ERRLOG_LineErrorNew(1506, pin->name);
        else
            pin->pair = pair;
    }
}

static void s_checkValues(const DiffPin* pair)
{
    if (pair->vdiff.state == CELL_NUMBER && pair->vdiff.value < 0.0)
        ERRLOG_LineWarnNew(1508, pair->vdiff.value, pair->name);
    const RngSingle& typ = pair->tdelayTyp;
    const RngSingle& min = pair->tdelayMin;
    const RngSingle& max = pair->tdelayMax;
    if (typ.state == CELL_NA) {
        if (min.state == CELL_NUMBER) ERRLOG_LineErrorNew(1509, "tdelay_min", pair->name);
        if (max.state == CELL_NUMBER) ERRLOG_LineErrorNew(1509, "tdelay_max", pair->name);
    }
    const int allNumbers =
        typ.state == CELL_NUMBER && min.state == CELL_NUMBER && max.state == CELL_NUMBER;
    if (allNumbers && ((typ.value < min.value && typ.value < max.value) ||
                       (typ.value > min.value && typ.value > max.value)))
        ERRLOG_LineWarnNew(1510, pair->name);
}

int DIFFPIN_ReceiveLine(Cmpnt* component, const char* line)
{
    CMN_ASSERT(component != nullptr && line != nullptr);
    CmpntItems args;
    if (!CMPNT_SplitLine(&s_failure, __LINE__, "Diff Pin", line, DIFF_COLUMNS, &args)) return 0;
    if (args.argc != 4 && args.argc != DIFF_COLUMNS) ERRLOG_LineErrorNew(1502, args.argc);
    DiffPin* pair =
        args.argc < FIRST_VALUE
            ? nullptr
            : static_cast<DiffPin*>(SEC_NewPart(1501, s_Module, __LINE__, sizeof(DiffPin)));
    if (pair != nullptr) {
        const PlaceScope at(SUBJECT_PIN, pair->name, {0, 0});
        pair->line = PARSE_GetLineNum();
        SEC_CopyName(pair->name, args.argv[0], SIZE_PIN);
        SEC_CopyName(pair->invPin, args.argv[1], SIZE_PIN);
        for (int i = FIRST_VALUE; i < args.nStored; ++i) {
            const DiffColumn& column = s_columns[i - 1];
            RngSingle* cell = &(pair->*column.slot);
            if (std::strlen(args.argv[i]) > NUMBER_LENGTH)
                ERRLOG_LineWarnNew(1507, column.name, args.argv[i], pair->name);
            if (column.isDelay)
                DLY_Parse(args.argv[i], column.name, pair->name, &cell->value, &cell->state);
            else
                KRNG_ReadCell(args.argv[i], column.name, 1, cell);
        }
        s_checkValues(pair);
        s_link(component, pair, args.argv);
        SEC_Append(&component->diffPins, &component->reading->diffTail, pair);
    }
    return pair != nullptr;
}

DiffPin* DIFFPIN_Find(DiffPin* head, const char* pin)
{
    CMN_ASSERT(pin != nullptr);
    for (; head != nullptr; head = head->next)
        if (std::strcmp(head->name, pin) == 0 || std::strcmp(head->invPin, pin) == 0) return head;
    return nullptr;
}

void DIFFPIN_FreeList(DiffPin* head)
{
    SEC_FreeList(head, SEC_FreeRecord<DiffPin>);
}
