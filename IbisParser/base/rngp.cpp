// Reading and linking of range-table lines.
#include "IbisParser/rngp.h"

#include "IbisParser/base/corner.h"
#include "IbisParser/base/raise.h"
#include "IbisParser/base/rngp.h"
#include "IbisParser/cmn.h"

static const char s_Module[] = "IbisParser/rngp";

enum { COLUMNS = 4 };

static void s_checkCount(int found, const char* keyword)
{
    if (found == 0 || found > COLUMNS) {
        ERRLOG_LineErrorNew(1402, found, keyword, COLUMNS);
        return;
    }
    for (int i = found; i < COLUMNS; ++i)
        ERRLOG_LineErrorNew(1401, CORNER_Name(i - 1), keyword);
}

static void s_reportRepeated(double x)
{
    ERRLOG_LineWarnNew(1403, x);
}

static void s_linkAfter(RngpLine* tail, RngpLine* line)
{
    tail->next = line;
    line->prev = tail;
}

// Reports the value once for each earlier line that holds it, and counts the new one.
static void s_countValue(IdxTable* values, const RngpLine* line)
{
    static const double zero = 0.0;
    if (line->x != line->x) return;  // NaN equals nothing
    // Equal values must have equal bytes, and the two zeros do not.
    const double* key = line->x == 0.0 ? &zero : &line->x;
    void** slot = nullptr;
    if (!IDX_Slot(values, key, sizeof *key, &slot)) return;
    const std::uintptr_t earlier = reinterpret_cast<std::uintptr_t>(*slot);
    for (std::uintptr_t i = 0; i < earlier; ++i)
        s_reportRepeated(line->x);
    // NOLINTNEXTLINE(performance-no-int-to-ptr): the slot holds a count, nothing follows it.
    *slot = reinterpret_cast<void*>(earlier + 1);
}

int RNGP_New(RngpLine** out)
{
    CMN_ASSERT(out != nullptr);
    void* block = nullptr;
    if (!CMN_malloc(&block, sizeof(RngpLine))) {
        ERRLOG_BugNew(1404, s_Module, __LINE__);
        return 0;
    }
    *out = static_cast<RngpLine*>(block);
    return 1;
}

int RNGP_ParseLine(const char* text, const char* keyword, const char* label, RngpLine** out)
{
    CmnArgs args = {};
    if (!CMN_ArgParse(text, COLUMNS, &args)) {
        ERRLOG_LineBugNew(1400, keyword);
        if (args.argv != nullptr) CMN_ArgFree(&args);
        return 0;
    }
    s_checkCount(args.argc, keyword);
    const int made = RNGP_New(out);
    if (made) {
        RngpLine* line = *out;
        // A bad cell is logged and keeps state 0; the line is made all the same.
        CMN_GetColValue(args.argv[0], label, keyword, &line->x, &line->xState);
        CMN_GetColValue(args.argv[1], "Typical", keyword, &line->typ, &line->typState);
        CMN_GetColValue(args.argv[2], "Minimum", keyword, &line->min, &line->minState);
        CMN_GetColValue(args.argv[3], "Maximum", keyword, &line->max, &line->maxState);
    }
    CMN_ArgFree(&args);
    return made;
}

int RNGP_LinkLine(RngpLine** head, RngpLine* line, int* count, int checkDuplicates)
{
    CMN_ASSERT(head != nullptr && line != nullptr && count != nullptr);
    int lines = 1;
    if (*head == nullptr) {
        line->prev = nullptr;
        *head = line;
    } else {
        RngpLine* tail = *head;
        for (RngpLine* at = *head; at != nullptr; at = at->next) {
            if (checkDuplicates && at->x == line->x) s_reportRepeated(line->x);
            tail = at;
            ++lines;
        }
        s_linkAfter(tail, line);
    }
    *count = lines;
    return lines;
}

int RNGP_Prev(RngpLine* line, RngpLine** out)
{
    CMN_ASSERT(line != nullptr && out != nullptr);
    if (line->prev == nullptr) return 0;
    *out = line->prev;
    return 1;
}

void RNGP_FreeList(RngpLine* head)
{
    while (head != nullptr) {
        void* line = head;
        head = head->next;
        CMN_freeSetNull(&line);
    }
}

int RNGP_Append(RngpList* list, RngpLine* line, int checkDuplicates)
{
    CMN_ASSERT(list != nullptr && line != nullptr);
    if (checkDuplicates) s_countValue(&list->firstColumn, line);
    if (list->tail == nullptr) {
        line->prev = nullptr;
        list->head = line;
    } else {
        s_linkAfter(list->tail, line);
    }
    list->tail = line;
    return ++list->count;
}

void RNGP_EndList(RngpList* list)
{
    CMN_ASSERT(list != nullptr);
    IDX_Clear(&list->firstColumn);
}
