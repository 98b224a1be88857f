// V-I tables: their lines and the rules of their structure.
#include "IbisParser/vitbl.h"

#include "IbisParser/base/corner.h"
#include "IbisParser/base/raise.h"
#include "IbisParser/base/rngp.h"
#include "IbisParser/cmn.h"
#include "IbisParser/krng.h"
#include "IbisParser/parse.h"
#include "IbisParser/read/model/table.h"
#include "IbisParser/store/section.h"

static const char s_Module[] = "IbisParser/vitbl";

static const char s_mosfet[] = "Series MOSFET";

static int s_new(Vitbl** out, const char* name, const char* owner)
{
    Vitbl* table = static_cast<Vitbl*>(SEC_NewPart(3201, s_Module, __LINE__, sizeof(Vitbl)));
    if (table == nullptr) return 0;
    table->reading = SEC_NewPart(3201, s_Module, __LINE__, sizeof(RngpList));
    if (table->reading == nullptr) {
        SEC_FreeRecord(table);
        return 0;
    }
    table->name = name;
    table->owner = owner;
    table->line = PARSE_GetLineNum();
    *out = table;
    return 1;
}

int VITBL_New(Vitbl** slot, const char* name, const char* owner)
{
    CMN_ASSERT(slot != nullptr && *slot == nullptr && name != nullptr && owner != nullptr);
    return s_new(slot, name, owner);
}

int VITBL_NewMosfet(Vitbl** list, const char* owner, Vitbl** out)
{
    CMN_ASSERT(list != nullptr && owner != nullptr && out != nullptr);
    *out = nullptr;
    Vitbl* tail = nullptr;
    int tables = 0;
    for (Vitbl* table = *list; table != nullptr; table = table->next) {
        tail = table;
        ++tables;
    }
    // The first surplus table stays in the list, so that only it is reported.
    if (tables > VITBL_MAX_MOSFETS) return 0;
    if (tables == VITBL_MAX_MOSFETS) ERRLOG_LineErrorNew(3220, owner, VITBL_MAX_MOSFETS);
    if (!s_new(out, s_mosfet, owner)) return 0;
    (*out)->mosfet = 1;
    (*out)->prev = tail;
    if (tail != nullptr)
        tail->next = *out;
    else
        *list = *out;
    return 1;
}

static void s_checkVds(Vitbl* table)
{
    if (!(table->vds.value > 0.0)) {
        ERRLOG_LineErrorNew(3222, table->vds.value);
        table->vds.state = CELL_NA;
        return;
    }
    for (const Vitbl* earlier = table->prev; earlier != nullptr; earlier = earlier->prev) {
        if (earlier->vds.state == CELL_NUMBER && earlier->vds.value == table->vds.value) {
            ERRLOG_LineWarnNew(3221, table->vds.value, table->owner);
            return;
        }
    }
}

// 1 when the line gives Vds.
static int s_receiveVds(Vitbl* table, const char* line)
{
    static const char* const names[] = {"Vds", nullptr};
    SecArgs args;
    if (!KRNG_Split(line, 3, &args)) {
        ERRLOG_LineBugNew(3200, table->name, s_Module, __LINE__);
        return 1;
    }
    const int given = args.argc > 0 && KRNG_Word(args.argv[0], names) == 1;
    if (given && table->vds.state != CELL_ABSENT) {
        ERRLOG_LineErrorNew(3219, table->owner);
    } else if (given) {
        if (KRNG_SetSingle(&table->vds, &args, names[0]))
            s_checkVds(table);
        else
            table->vds.state = CELL_NA;
        if (args.argc > 2) ERRLOG_LineErrorNew(3223, args.argv[2], table->name);
    }
    return given;
}

// The order is that of the first two distinct voltages.
static void s_checkOrder(Vitbl* table, double previous, double voltage)
{
    if (voltage == previous) return;
    const int direction = voltage > previous ? 1 : -1;
    if (table->direction == 0)
        table->direction = direction;
    else if (direction != table->direction)
        ERRLOG_LineErrorNew(3208, table->name, voltage,
                            table->direction > 0 ? "ascending" : "descending");
}

static void s_receiveCells(Vitbl* table, const char* text)
{
    RngpLine* line = nullptr;
    if (!RNGP_ParseLine(text, table->name, "Voltage", &line)) return;
    if (TABLE_CountItems(text) > TABLE_COLUMNS) ERRLOG_LineWarnNew(3210, table->name);
    KRNG_CleanLine(line, text, table->name);
    if (line->xState != CELL_NUMBER) {
        ERRLOG_LineErrorNew(3207, table->name);
        RNGP_FreeList(line);
        return;
    }
    RngpList* list = static_cast<RngpList*>(table->reading);
    if (list->tail != nullptr) s_checkOrder(table, list->tail->x, line->x);
    if (line->typState == CELL_NUMBER && line->typ != 0.0) table->carries = 1;
    // Lines beyond the limit are an error of their own, and each could repeat all lines before it.
    table->count =
        RNGP_Append(list, line, list->count < static_cast<int>(SEC_Limit(LIMIT_CURVE_POINTS)));
    table->head = list->head;
}

int VITBL_ReceiveLine(Vitbl* table, const char* line)
{
    CMN_ASSERT(line != nullptr);
    if (table == nullptr) return 1;
    CMN_ASSERT(table->reading != nullptr);
    if (TABLE_BeginsWithCell(line)) {
        s_receiveCells(table, line);
    } else if (!(table->mosfet && table->count == 0 && s_receiveVds(table, line))) {
        ERRLOG_LineErrorNew(3223, TABLE_FirstItem(line).text, table->name);
    }
    return 1;
}

int VITBL_Cell(const RngpLine* line, int corner, double* value)
{
    CMN_ASSERT(line != nullptr && value != nullptr);
    switch (corner) {
        case CORNER_TYP:
            *value = line->typ;
            return line->typState;
        case CORNER_MIN:
            *value = line->min;
            return line->minState;
        case CORNER_MAX:
            *value = line->max;
            return line->maxState;
        default:
            CMN_AssertFailed(s_Module, __LINE__);
    }
}

int VITBL_CountNumbers(const Vitbl* table, int corner)
{
    CMN_ASSERT(table != nullptr);
    int numbers = 0;
    double current = 0.0;
    for (const RngpLine* line = table->head; line != nullptr; line = line->next)
        numbers += VITBL_Cell(line, corner, &current) == CELL_NUMBER;
    return numbers;
}

static void s_checkEnds(const Vitbl* table, const RngpLine* tail)
{
    if (table->head->typState == CELL_NA) ERRLOG_LineErrorNew(3204, table->name, table->owner);
    if (tail->typState == CELL_NA) ERRLOG_LineErrorNew(3205, table->name, table->owner);
    for (int corner = CORNER_MIN; corner <= CORNER_MAX; ++corner) {
        if (TABLE_EndIsNA(table->head, tail, corner))
            ERRLOG_LineErrorNew(3206, table->name, table->owner, CORNER_Name(corner));
    }
    int missing = 0;
    for (const RngpLine* line = table->head; line != nullptr; line = line->next)
        missing += line->typState == CELL_NA;
    if (2LL * missing > table->count)
        ERRLOG_LineWarnNew(3209, table->name, table->owner, missing, table->count);
}

int VITBL_Fini(Vitbl* table)
{
    if (table == nullptr || table->reading == nullptr) return 1;
    const RngpList* list = static_cast<const RngpList*>(table->reading);
    const int limit = static_cast<int>(SEC_Limit(LIMIT_CURVE_POINTS));
    if (table->count < TABLE_MIN_POINTS) {
        ERRLOG_LineErrorNew(3202, table->name, table->owner, table->count);
    } else {
        if (table->count > limit)
            ERRLOG_LineErrorNew(3203, table->name, table->owner, table->count, limit);
        s_checkEnds(table, list->tail);
    }
    if (table->mosfet && table->vds.state == CELL_ABSENT) ERRLOG_LineErrorNew(3218, table->owner);
    TABLE_EndReading(&table->reading);
    return 1;
}

void VITBL_Free(Vitbl* table)
{
    SEC_FreeList(table, [](Vitbl* each) {
        TABLE_EndReading(&each->reading);
        RNGP_FreeList(each->head);
        SEC_FreeRecord(each);
    });
}
