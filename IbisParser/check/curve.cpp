// Preparing, adding and evaluating piecewise linear curves.
#include "IbisParser/curve.h"

#include <algorithm>
#include <cmath>

#include "IbisParser/base/raise.h"
#include "IbisParser/check/curve.h"
#include "IbisParser/cmn.h"

static const char s_Module[] = "IbisParser/curve";

static int s_newPoints(Curve* curve, int capacity)
{
    void* block = nullptr;
    if (!CMN_malloc(&block, static_cast<size_t>(capacity) * sizeof(CurvePoint))) {
        ERRLOG_BugNew(4700, s_Module, __LINE__);
        return 0;
    }
    *curve = {static_cast<CurvePoint*>(block), 0, 0.0, 0.0};
    return 1;
}

static bool s_before(const CurvePoint& a, const CurvePoint& b)
{
    return a.v != b.v ? a.v < b.v : a.i < b.i;
}

// Tables are written in order nearly always, up or down.
static void s_sort(CurvePoint* first, CurvePoint* last)
{
    if (std::is_sorted(first, last, s_before)) return;
    std::reverse(first, last);
    if (!std::is_sorted(first, last, s_before)) std::sort(first, last, s_before);
}

// Points of one voltage become one point with their mean current.
static int s_mergeEqual(CurvePoint* points, int count)
{
    int kept = 0;
    for (int k = 0; k < count;) {
        double sum = 0.0;
        int end = k;
        while (end < count && points[end].v == points[k].v)
            sum += points[end++].i;
        points[kept++] = {points[k].v, end - k == 1 ? sum : sum / (end - k)};
        k = end;
    }
    return kept;
}

static double s_slope(const CurvePoint& a, const CurvePoint& b)
{
    return (b.i - a.i) / (b.v - a.v);
}

// Weighted by the distances, so that steps of round numbers give round numbers.
static double s_between(const CurvePoint& a, const CurvePoint& b, double v)
{
    return (a.i * (b.v - v) + b.i * (v - a.v)) / (b.v - a.v);
}

int CURVE_Prepare(const Vitbl* table, int corner, int hold, Curve* out)
{
    CMN_ASSERT(out != nullptr);
    *out = {nullptr, 0, 0.0, 0.0};
    const int numbers = table != nullptr ? VITBL_CountNumbers(table, corner) : 0;
    if (numbers < 2) return CURVE_NO_CORNER;
    if (!s_newPoints(out, numbers)) return CURVE_NO_MEMORY;
    for (const RngpLine* line = table->head; line != nullptr; line = line->next) {
        double current = 0.0;
        if (VITBL_Cell(line, corner, &current) == CELL_NUMBER)
            out->points[out->count++] = {line->x, current};
    }
    s_sort(out->points, out->points + out->count);
    out->count = s_mergeEqual(out->points, out->count);
    if (out->count < 2) {
        CURVE_Free(out);
        return CURVE_NO_CORNER;
    }
    const CurvePoint* p = out->points;
    out->slopeBelow = s_slope(p[0], p[1]);
    out->slopeAbove = hold ? 0.0 : s_slope(p[out->count - 2], p[out->count - 1]);
    return CURVE_BUILT;
}

// From table voltage to pin voltage.
static void s_place(Curve* curve, const CurvePart* part)
{
    for (int k = 0; k < curve->count; ++k) {
        CurvePoint& p = curve->points[k];
        p.v = part->falling ? part->reference - p.v : part->reference + p.v;
    }
    if (part->falling) {
        std::reverse(curve->points, curve->points + curve->count);
        const double below = curve->slopeBelow;
        curve->slopeBelow = -curve->slopeAbove;
        curve->slopeAbove = -below;
    }
    // Voltages that differ in their last places may meet once the reference is added.
    curve->count = s_mergeEqual(curve->points, curve->count);
}

// The current at v; next is the first point at or behind v, count when there is none.
static double s_at(const Curve* curve, int next, double v)
{
    const CurvePoint* p = curve->points;
    if (next < curve->count && p[next].v == v) return p[next].i;
    if (next == 0) return p[0].i + curve->slopeBelow * (v - p[0].v);
    if (next == curve->count) return p[next - 1].i + curve->slopeAbove * (v - p[next - 1].v);
    return s_between(p[next - 1], p[next], v);
}

// a becomes a + b, with a point wherever one of them has one; b is released.
static int s_add(Curve* a, Curve* b)
{
    Curve sum;
    if (!s_newPoints(&sum, a->count + b->count)) return 0;
    int ka = 0;
    int kb = 0;
    while (ka < a->count || kb < b->count) {
        const bool fromA = kb == b->count || (ka < a->count && a->points[ka].v <= b->points[kb].v);
        const double v = fromA ? a->points[ka].v : b->points[kb].v;
        sum.points[sum.count++] = {v, s_at(a, ka, v) + s_at(b, kb, v)};
        if (ka < a->count && a->points[ka].v == v) ++ka;
        if (kb < b->count && b->points[kb].v == v) ++kb;
    }
    sum.slopeBelow = a->slopeBelow + b->slopeBelow;
    sum.slopeAbove = a->slopeAbove + b->slopeAbove;
    CURVE_Free(a);
    CURVE_Free(b);
    *a = sum;
    return 1;
}

int CURVE_Sum(const CurvePart* parts, int count, int corner, int hold, Curve* out)
{
    CMN_ASSERT(out != nullptr && (parts != nullptr || count == 0));
    *out = {nullptr, 0, 0.0, 0.0};
    if (count == 0) return CURVE_NO_TABLE;
    const SecArray<Curve> curves(static_cast<std::size_t>(count));
    if (!curves) {
        ERRLOG_BugNew(4700, s_Module, __LINE__);
        return CURVE_NO_MEMORY;
    }
    int result = CURVE_BUILT;
    for (int k = 0; k < count && result == CURVE_BUILT; ++k) {
        result = CURVE_Prepare(parts[k].table, corner, hold && parts[k].clamp, &curves[k]);
        if (result == CURVE_BUILT) s_place(&curves[k], &parts[k]);
    }
    // Neighbours are added in pairs, so many parts cost no more than a sort of all their points.
    for (int step = 1; step < count && result == CURVE_BUILT; step *= 2) {
        for (int k = 0; k + step < count && result == CURVE_BUILT; k += 2 * step)
            if (!s_add(&curves[k], &curves[k + step])) result = CURVE_NO_MEMORY;
    }
    if (result == CURVE_BUILT) {
        *out = curves[0];
        curves[0] = {nullptr, 0, 0.0, 0.0};
    }
    for (int k = 0; k < count; ++k)
        CURVE_Free(&curves[k]);
    return result;
}

double CURVE_At(const Curve* curve, double v, int* outside)
{
    CMN_ASSERT(curve != nullptr);
    if (outside != nullptr) *outside = 0;
    if (curve->count == 0) return 0.0;
    const CurvePoint* begin = curve->points;
    const CurvePoint* end = begin + curve->count;
    const CurvePoint* next = std::lower_bound(
        begin, end, v, [](const CurvePoint& p, double value) { return p.v < value; });
    if (outside != nullptr) *outside = v < begin[0].v || v > end[-1].v;
    return s_at(curve, static_cast<int>(next - begin), v);
}

void CURVE_Free(Curve* curve)
{
    CMN_ASSERT(curve != nullptr);
    if (curve->points != nullptr) {
        void* block = curve->points;
        CMN_freeSetNull(&block);
    }
    *curve = {nullptr, 0, 0.0, 0.0};
}

int CURVE_Eval(const Vitbl* table, int corner, double x, int hold, double* current, int* outside)
{
    CMN_ASSERT(current != nullptr);
    Curve curve;
    if (CURVE_Prepare(table, corner, hold, &curve) != CURVE_BUILT) return 0;
    *current = CURVE_At(&curve, x, outside);
    CURVE_Free(&curve);
    return 1;
}

int CURVE_Total(const Mdl* model, int state, int corner, double v, int hold, double* current)
{
    CMN_ASSERT(current != nullptr);
    Curve curve;
    const int result = CURVE_Combine(model, state, corner, hold, &curve);
    if (result != CURVE_BUILT && result != CURVE_NO_TABLE) return 0;
    *current = CURVE_At(&curve, v, nullptr);
    CURVE_Free(&curve);
    return 1;
}
