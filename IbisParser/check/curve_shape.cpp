// Where combined curves fall that should rise.
#include <algorithm>
#include <cmath>

#include "IbisParser/base/corner.h"
#include "IbisParser/base/place.h"
#include "IbisParser/base/raise.h"
#include "IbisParser/check/curve.h"
#include "IbisParser/cmn.h"
#include "IbisParser/mdl.h"
#include "IbisParser/read/model/table.h"

bool CURVE_WorstRun(const Curve* curve, int direction, int inside, double low, double high,
                    CurveRun* out)
{
    bool found = false;
    const CurvePoint* p = curve->points;
    for (int k = 0; k + 1 < curve->count;) {
        // The stretch begins at the last point before its first step against the direction and
        // ends behind its last one.
        if (!(direction * (p[k + 1].i - p[k].i) < 0.0)) {
            ++k;
            continue;
        }
        int end = k + 1;
        for (int next = end + 1;
             next < curve->count && direction * (p[next].i - p[next - 1].i) <= 0.0; ++next) {
            if (p[next].i != p[next - 1].i) end = next;
        }
        const CurveRun run = {p[k].v, p[end].v, std::fabs(p[k].i - p[end].i)};
        const bool overlaps = run.to > low && run.from < high;
        if ((inside == 0 || overlaps == (inside > 0)) && (!found || run.loss > out->loss)) {
            *out = run;
            found = true;
        }
        k = end;
    }
    return found;
}

double CURVE_LargestCurrent(const Curve* curve, double low, double high, double* at)
{
    double largest = 0.0;
    const auto look = [&](double v, double i) {
        if (!(std::fabs(i) > largest)) return;
        largest = std::fabs(i);
        if (at != nullptr) *at = v;
    };
    if (curve->count == 0) return largest;
    low = std::max(low, curve->points[0].v);
    high = std::min(high, curve->points[curve->count - 1].v);
    if (low > high) return largest;
    look(low, CURVE_At(curve, low, nullptr));
    look(high, CURVE_At(curve, high, nullptr));
    for (int k = 0; k < curve->count; ++k) {
        if (curve->points[k].v > low && curve->points[k].v < high)
            look(curve->points[k].v, curve->points[k].i);
    }
    return largest;
}

double CURVE_RunLimit(const Curve* curve, double low, double high)
{
    return std::max(CURVE_RUN_FLOOR,
                    CURVE_RUN_SHARE * CURVE_LargestCurrent(curve, low, high, nullptr));
}

bool CURVE_TakesState(const Mdl* model, int state)
{
    const MdlTypeInfo* info = MDL_TypeInfo(model->type);
    if (info == nullptr) return false;
    switch (state) {
        case CURVE_LOW:
            return info->drives && model->pulldown != nullptr;
        case CURVE_HIGH:
            return info->drives && model->pullup != nullptr;
        default:
            return info->receives || info->floats || info->type == MDL_TERMINATOR;
    }
}

// The worst run of one state over its corners.
struct Worst {
    CurveRun run;
    int corner;
    bool found;
};

static void s_keep(Worst* worst, const CurveRun* run, double limit, int corner)
{
    if (run->loss > limit && (!worst->found || run->loss > worst->run.loss))
        *worst = {*run, corner, true};
}

static void s_reportInside(const Mdl* model, int state, const Worst* worst)
{
    const PlaceScope at(worst->corner);
    const char* corner = CORNER_Short(worst->corner);
    if (state == CURVE_HIGH)
        ERRLOG_WarnNew(4702, model->name, corner, worst->run.from);
    else if (state == CURVE_LOW)
        ERRLOG_WarnNew(4703, model->name, corner, worst->run.from);
    else
        ERRLOG_WarnNew(4704, model->name, corner, worst->run.from);
}

void CURVE_CheckShape(const Mdl* model, const CurveSet* set, CurveFalls* falls, bool report)
{
    static const char* const names[CURVE_STATES] = {"low", "high", "receive"};
    *falls = {};
    for (int state = 0; state < CURVE_STATES; ++state) {
        if (!CURVE_TakesState(model, state)) continue;
        Worst inside = {};
        Worst beyond = {};
        for (int corner = 0; corner < CORNER_COUNT; ++corner) {
            const CurveCase* each = &set->cases[state][corner];
            CurveRails rails;
            if (each->result != CURVE_BUILT || !CURVE_Rails(model, corner, &rails)) continue;
            falls->checked[state] = true;
            const double low = std::min(rails.pulldown, rails.gndClamp);
            const double high = std::max(rails.pullup, rails.powerClamp);
            const double limit = CURVE_RunLimit(&each->held, low, high);
            CurveRun run;
            if (CURVE_WorstRun(&each->held, 1, 1, low, high, &run))
                s_keep(&inside, &run, limit, corner);
            if (CURVE_WorstRun(&each->held, 1, -1, low, high, &run))
                s_keep(&beyond, &run, limit, corner);
        }
        falls->falls[state] = inside.found;
        falls->beyond[state] = !inside.found && beyond.found;
        if (!report) continue;
        if (inside.found) {
            s_reportInside(model, state, &inside);
        } else if (beyond.found) {
            const PlaceScope at(beyond.corner);
            ERRLOG_CautionNew(4723, model->name, CORNER_Short(beyond.corner), names[state],
                              beyond.run.loss, beyond.run.from, beyond.run.to);
        }
    }
}
