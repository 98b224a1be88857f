// Shape rules of single V-I tables.
#include <algorithm>
#include <cmath>

#include "IbisParser/base/corner.h"
#include "IbisParser/base/place.h"
#include "IbisParser/base/raise.h"
#include "IbisParser/check/curve.h"
#include "IbisParser/check/table.h"
#include "IbisParser/cmn.h"
#include "IbisParser/read/model/table.h"

static const char s_Module[] = "IbisParser/vitbl_check";

#define LARGE_CURRENT 1000.0  // ampere
#define LARGE_VOLTAGE 100.0   // volt
#define ZERO_SLACK 10e-3      // volt between 0 and the nearest end of a table
#define SAME_CURRENT 1e-6     // relative, and SAME_FLOOR ampere
#define SAME_FLOOR 1e-12

// The corner over all voltages, its main direction and the limit of its runs.
class Column {
public:
    Column(const Vitbl* table, int corner, const VitblContext* context)
    {
        m_Built = CURVE_Prepare(table, corner, 0, &curve) == CURVE_BUILT;
        if (!m_Built) return;
        direction = curve.points[curve.count - 1].i < curve.points[0].i ? -1 : 1;
        limit = context->supply.known[corner]
                    ? CURVE_RunLimit(&curve, 0.0, context->supply.volts[corner])
                    : CURVE_RunLimit(&curve, curve.points[0].v, curve.points[curve.count - 1].v);
    }
    ~Column() { CURVE_Free(&curve); }
    Column(const Column&) = delete;
    Column& operator=(const Column&) = delete;
    bool Built() const { return m_Built; }

    Curve curve = {nullptr, 0, 0.0, 0.0};
    int direction = 1;
    double limit = 0.0;

private:
    bool m_Built;
};

static void s_checkMonotonic(const Vitbl* table, const VitblContext* context)
{
    CurveRun worst = {0.0, 0.0, 0.0};
    int worstCorner = CORNER_COUNT;
    for (int corner = 0; corner < CORNER_COUNT; ++corner) {
        const Column column(table, corner, context);
        CurveRun run;
        if (column.Built() && CURVE_WorstRun(&column.curve, column.direction, 0, 0.0, 0.0, &run) &&
            run.loss > column.limit && run.loss > worst.loss) {
            worst = run;
            worstCorner = corner;
        }
    }
    if (worstCorner == CORNER_COUNT) return;
    const PlaceScope at(worstCorner);
    if (context->shape == VITBL_OWN_SHAPE) {
        ERRLOG_WarnNew(3211, table->name, table->owner, CORNER_Name(worstCorner), worst.from);
    } else if (!*context->soundSaid) {
        ERRLOG_NoteNew(4718, table->owner, CORNER_Short(worstCorner), table->name);
        *context->soundSaid = true;
    }
}

static void s_checkSize(const Vitbl* table)
{
    double largest = 0.0;
    double farthest = 0.0;
    int corner = CORNER_TYP;
    for (const RngpLine* line = table->head; line != nullptr; line = line->next) {
        if (std::fabs(line->x) > std::fabs(farthest)) farthest = line->x;
        for (int each = 0; each < CORNER_COUNT; ++each) {
            double current = 0.0;
            if (VITBL_Cell(line, each, &current) == CELL_NUMBER &&
                std::fabs(current) > std::fabs(largest)) {
                largest = current;
                corner = each;
            }
        }
    }
    if (std::fabs(largest) > LARGE_CURRENT) {
        const PlaceScope at(corner);
        ERRLOG_WarnNew(3212, table->name, table->owner, CORNER_Name(corner), largest);
    }
    if (std::fabs(farthest) > LARGE_VOLTAGE)
        ERRLOG_WarnNew(3213, table->name, table->owner, farthest);
}

static void s_checkZero(const Vitbl* table, const VitblContext* context)
{
    const PlaceScope at(CORNER_TYP);
    int numbers = 0;
    double current = 0.0;
    for (const RngpLine* line = table->head; line != nullptr; line = line->next) {
        if (VITBL_Cell(line, CORNER_TYP, &current) != CELL_NUMBER) continue;
        ++numbers;
        if (current != 0.0) return;
    }
    if (context->mustConduct && numbers > 0)
        ERRLOG_WarnNew(3214, table->name, table->owner, CORNER_Name(CORNER_TYP));
}

// The largest step among points of one voltage, which stand side by side in [first, last).
static void s_largestStep(const CurvePoint* first, const CurvePoint* last, CurvePoint* step)
{
    for (const CurvePoint* p = first; p != last;) {
        const CurvePoint* end = p;
        while (end != last && end->v == p->v)
            ++end;
        const double lowest = p->i;
        const double highest = end[-1].i;
        const double slack =
            std::max(SAME_FLOOR, SAME_CURRENT * std::max(std::fabs(lowest), std::fabs(highest)));
        if (highest - lowest > slack && highest - lowest > step->i)
            *step = {p->v, highest - lowest};
        p = end;
    }
}

// Points of one voltage were merged when the curve has fewer points than the column has numbers.
static void s_checkSteps(const Vitbl* table, const VitblContext* context)
{
    CurvePoint worst = {0.0, 0.0};
    int worstCorner = CORNER_COUNT;
    for (int corner = 0; corner < CORNER_COUNT; ++corner) {
        const Column column(table, corner, context);
        const int numbers = VITBL_CountNumbers(table, corner);
        if (!column.Built() || column.curve.count == numbers) continue;
        const SecArray<CurvePoint> array(static_cast<std::size_t>(numbers));
        if (!array) {
            ERRLOG_BugNew(3201, s_Module, __LINE__);
            return;
        }
        CurvePoint* const points = array.Get();
        CurvePoint* end = points;
        for (const RngpLine* line = table->head; line != nullptr; line = line->next) {
            end->v = line->x;
            end += VITBL_Cell(line, corner, &end->i) == CELL_NUMBER;
            if (end == points + numbers) break;
        }
        std::sort(points, end, [](const CurvePoint& a, const CurvePoint& b) {
            return a.v != b.v ? a.v < b.v : a.i < b.i;
        });
        const double before = worst.i;
        s_largestStep(points, end, &worst);
        if (worst.i > before) worstCorner = corner;
    }
    if (worstCorner == CORNER_COUNT) return;
    const PlaceScope at(worstCorner);
    ERRLOG_WarnNew(3215, table->name, table->owner, CORNER_Name(worstCorner), worst.i, worst.v);
}

// Both columns hold the same numbers, and not only zeros.
static bool s_sameCorners(const Vitbl* table)
{
    bool carries = false;
    for (const RngpLine* line = table->head; line != nullptr; line = line->next) {
        if (line->minState != line->maxState ||
            (line->minState == CELL_NUMBER && line->min != line->max))
            return false;
        carries = carries || (line->minState == CELL_NUMBER && line->min != 0.0);
    }
    return carries;
}

static void s_checkCorners(const Vitbl* table, const VitblContext* context)
{
    for (int corner = CORNER_MIN; corner <= CORNER_MAX; ++corner) {
        const PlaceScope at(corner);
        if (table->head != nullptr && context->hasCorner[corner] &&
            VITBL_CountNumbers(table, corner) == 0)
            ERRLOG_NoteNew(3217, table->name, table->owner, CORNER_Name(corner));
    }
    if (!context->comparesCorners) return;
    if (s_sameCorners(table)) ERRLOG_NoteNew(3226, table->name, table->owner);
    if (CURVE_MinIsStronger(table, &context->supply))
        ERRLOG_CautionNew(3216, table->name, table->owner);
}

static void s_checkReach(const Vitbl* table)
{
    if (table->head == nullptr) return;
    double low = table->head->x;
    double high = low;
    for (const RngpLine* line = table->head; line != nullptr; line = line->next) {
        low = std::min(low, line->x);
        high = std::max(high, line->x);
    }
    if (low > ZERO_SLACK || high < -ZERO_SLACK) ERRLOG_CautionNew(3225, table->name, table->owner);
}

void VITBL_Check(const Vitbl* table, const VitblContext* context)
{
    CMN_ASSERT(context != nullptr);
    if (table == nullptr) return;
    const PlaceScope at(table);
    if (context->shape != VITBL_ANY_SHAPE) s_checkMonotonic(table, context);
    s_checkSize(table);
    s_checkZero(table, context);
    s_checkSteps(table, context);
    s_checkCorners(table, context);
    s_checkReach(table);
}

// Where one of the two has a point and both are known.
static bool s_fallsShort(const Column& smaller, const Column& larger, const Curve& points)
{
    const Curve& a = smaller.curve;
    const Curve& b = larger.curve;
    for (int k = 0; k < points.count; ++k) {
        const double v = points.points[k].v;
        int outsideA = 0;
        int outsideB = 0;
        const double before = std::fabs(CURVE_At(&a, v, &outsideA));
        const double after = std::fabs(CURVE_At(&b, v, &outsideB));
        if (!outsideA && !outsideB && before - after > std::max(smaller.limit, larger.limit))
            return true;
    }
    return false;
}

// The larger Vds must carry at least the current of the smaller one.
static bool s_carriesLess(const Vitbl* smaller, const Vitbl* larger, const VitblContext* context)
{
    const Column a(smaller, CORNER_TYP, context);
    const Column b(larger, CORNER_TYP, context);
    return a.Built() && b.Built() && (s_fallsShort(a, b, a.curve) || s_fallsShort(a, b, b.curve));
}

void VITBL_CheckMosfets(const Vitbl* list, const VitblContext* context)
{
    // A list is longer than this only when it was reported for it.
    const Vitbl* byVds[VITBL_MAX_MOSFETS];
    int count = 0;
    for (const Vitbl* table = list; table != nullptr; table = table->next) {
        VITBL_Check(table, context);
        if (table->vds.state == CELL_NUMBER && count < VITBL_MAX_MOSFETS) byVds[count++] = table;
    }
    std::sort(byVds, byVds + count, [](const Vitbl* a, const Vitbl* b) {
        return a->vds.value != b->vds.value ? a->vds.value < b->vds.value : a->line < b->line;
    });
    for (int k = 1; k < count; ++k) {
        if (s_carriesLess(byVds[k - 1], byVds[k], context)) {
            const PlaceScope at(byVds[k]);
            const PlaceScope typ(CORNER_TYP);
            ERRLOG_WarnNew(3211, byVds[k]->name, byVds[k]->owner, CORNER_Name(CORNER_TYP),
                           byVds[k]->vds.value);
            return;
        }
    }
}

VitblShape VITBL_ShapeBy(const CurveFalls* falls, const bool* holds)
{
    bool any = false;
    bool beyond = false;
    for (int state = 0; state < CURVE_STATES; ++state) {
        if (!holds[state] || !falls->checked[state]) continue;
        if (falls->falls[state]) return VITBL_OWN_SHAPE;
        any = true;
        beyond = beyond || falls->beyond[state];
    }
    return beyond ? VITBL_ANY_SHAPE : any ? VITBL_SOUND : VITBL_OWN_SHAPE;
}
