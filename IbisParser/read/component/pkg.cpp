// [Package]: lumped parasitics of a component.
#include "IbisParser/pkg.h"

#include "IbisParser/base/raise.h"
#include "IbisParser/krng.h"
#include "IbisParser/store/section.h"

static const char s_Module[] = "IbisParser/pkg";

// Above the bound a value is legal but hardly a package's.
static const struct PkgRow {
    const char* name;
    RngRange* Pkg::*slot;
    double bound;
} s_rows[] = {
    {"R_pkg", &Pkg::R_pkg, 10.0},
    {"L_pkg", &Pkg::L_pkg, 100e-9},
    {"C_pkg", &Pkg::C_pkg, 100e-12},
};

static void s_checkRange(const PkgRow& row, const RngRange* range)
{
    const struct {
        const char* corner;
        double value;
        int state;
    } cells[] = {{"typ", range->typ, range->typState},
                 {"min", range->min, range->minState},
                 {"max", range->max, range->maxState}};
    int isUnusual = 0;
    for (const auto& cell : cells) {
        if (cell.state != CELL_NUMBER) continue;
        if (cell.value < 0.0) ERRLOG_LineErrorNew(2505, row.name, cell.corner, cell.value);
        if (SEC_Exceeds(cell.value, row.bound) && !isUnusual) {
            ERRLOG_LineWarnNew(2506, row.name, cell.corner, cell.value, row.bound);
            isUnusual = 1;
        }
    }
    if (range->minState == CELL_NUMBER && range->maxState == CELL_NUMBER &&
        SEC_Exceeds(range->min, range->max))
        ERRLOG_LineNoteNew(2507, row.name, range->min, range->max);
}

int PKG_New(Pkg** slot)
{
    CMN_ASSERT(slot != nullptr);
    if (*slot == nullptr)
        *slot = static_cast<Pkg*>(SEC_NewPart(2501, s_Module, __LINE__, sizeof(Pkg)));
    return *slot != nullptr;
}

int PKG_ReceiveLine(Pkg* package, const char* line)
{
    CMN_ASSERT(package != nullptr && line != nullptr);
    SecArgs args;
    if (!KRNG_Split(line, 1, &args)) {
        ERRLOG_LineBugNew(2500, "Package", s_Module, __LINE__);
        return 0;
    }
    const PkgRow* row = args.nStored > 0 ? SEC_FindRow(s_rows, args.argv[0]) : nullptr;
    int done = 0;
    if (row != nullptr) SEC_MarkFound(&package->named, static_cast<int>(row - s_rows));
    if (row == nullptr)
        ERRLOG_LineErrorNew(2503, args.nStored > 0 ? args.argv[0] : line);
    else if (args.argc < 2)
        ERRLOG_LineErrorNew(2502, 0, row->name, 3);
    else {
        const int isFirst = package->*row->slot == nullptr;
        done = KRNG_SetRange(&(package->*row->slot), KRNG_Values(line), row->name);
        if (isFirst && package->*row->slot != nullptr) s_checkRange(*row, package->*row->slot);
    }
    return done;
}

int PKG_Fini(const Pkg* package, const char* owner)
{
    CMN_ASSERT(package != nullptr && owner != nullptr);
    int complete = 1;
    int allZero = 1;
    for (const PkgRow& row : s_rows) {
        const RngRange* range = package->*row.slot;
        if (range == nullptr) {
            // A line without values was reported as that.
            const auto bit = static_cast<unsigned>(&row - s_rows);
            if ((package->named >> bit & 1u) == 0) ERRLOG_LineErrorNew(2504, owner, row.name);
            complete = 0;
        }
        allZero =
            allZero && range != nullptr && range->typState == CELL_NUMBER && range->typ == 0.0;
    }
    if (allZero) ERRLOG_LineNoteNew(2508);
    return complete;
}

void PKG_Free(Pkg* package)
{
    if (package == nullptr) return;
    for (const PkgRow& row : s_rows)
        RNG_Free(package->*row.slot);
    SEC_FreeRecord(package);
}
