// Reading of typ, min, max triples.
#include "IbisParser/rng.h"

#include "IbisParser/base/corner.h"
#include "IbisParser/base/place.h"
#include "IbisParser/base/raise.h"
#include "IbisParser/cmn.h"

static const char s_Module[] = "IbisParser/rng";

enum { CELLS = 3 };

static void s_checkCount(int found, const char* keyword)
{
    if (found == 0 || found > CELLS) {
        ERRLOG_LineErrorNew(3902, found, keyword, CELLS);
        return;
    }
    for (int i = found; i < CELLS; ++i)
        ERRLOG_LineErrorNew(3901, CORNER_Name(i), keyword);
}

// min above max is not looked at: which corner is the larger depends on the quantity.
static void s_checkOrder(const RngRange* range)
{
    if (range->typState != CELL_NUMBER || range->minState != CELL_NUMBER ||
        range->maxState != CELL_NUMBER)
        return;
    if ((range->typ < range->min && range->typ < range->max) ||
        (range->typ > range->min && range->typ > range->max))
        ERRLOG_LineWarnNew(3903);
}

int RNG_ParseRange(const char* text, const char* keyword, RngRange** out)
{
    CmnArgs args = {};
    if (!CMN_ArgParse(text, CELLS, &args)) {
        ERRLOG_LineBugNew(3900, keyword, s_Module, __LINE__);
        if (args.argv != nullptr) CMN_ArgFree(&args);
        return 0;
    }
    s_checkCount(args.argc, keyword);
    CMN_ASSERT(out != nullptr);
    int ok = 0;
    void* block = nullptr;
    if (!CMN_malloc(&block, sizeof(RngRange))) {
        ERRLOG_BugNew(3904, s_Module, __LINE__);
    } else {
        RngRange* range = static_cast<RngRange*>(block);
        *out = range;
        PLACE_Remember(range);
        // Every cell is read, also after a bad one.
        ok = CMN_GetColValue(args.argv[0], CORNER_Title(CORNER_TYP), keyword, &range->typ,
                             &range->typState);
        ok &= CMN_GetColValue(args.argv[1], CORNER_Title(CORNER_MIN), keyword, &range->min,
                              &range->minState);
        ok &= CMN_GetColValue(args.argv[2], CORNER_Title(CORNER_MAX), keyword, &range->max,
                              &range->maxState);
        s_checkOrder(range);
    }
    CMN_ArgFree(&args);
    return ok;
}

void RNG_Free(RngRange* range)
{
    if (range == nullptr) return;
    void* block = range;
    CMN_freeSetNull(&block);
}
