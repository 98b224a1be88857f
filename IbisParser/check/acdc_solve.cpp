// The operating point of a piecewise linear curve on a load line.
#include <cmath>

#include "IbisParser/acdc.h"
#include "IbisParser/cmn.h"

static const char s_Module[] = "IbisParser/acdc_solve";

// What the walk over the breakpoints has seen.
struct Walk {
    double near;
    AcdcPoint* out;
    double v, f;  // last breakpoint, when there was one
    bool begun;
};

static void s_solution(Walk* walk, double v)
{
    AcdcPoint* out = walk->out;
    if (out->count == 0 || std::fabs(v - walk->near) < std::fabs(out->v - walk->near)) out->v = v;
    ++out->count;
}

// f is linear from the last breakpoint to this one.
static void s_step(Walk* walk, double v, double f)
{
    if (f == 0.0) {
        s_solution(walk, v);
    } else if (walk->begun && ((walk->f < 0.0 && f > 0.0) || (walk->f > 0.0 && f < 0.0))) {
        s_solution(walk, walk->v - walk->f * ((v - walk->v) / (f - walk->f)));
    }
    walk->v = v;
    walk->f = f;
    walk->begun = true;
}

// Beyond an end of the breakpoints; direction is -1 before the first, 1 behind the last. A falling
// line, or one that leads back inside, meets nothing.
static bool s_beyond(double v, double f, double slope, int direction, AcdcPoint* out)
{
    if (!(slope > 0.0) || direction * f > 0.0) return false;
    const double solution = v - f / slope;
    if (!std::isfinite(solution)) return false;
    *out = {solution, 1, 1};
    return true;
}

int ACDC_Solve(const Curve* curve, double r, double vf, double near, AcdcPoint* out)
{
    CMN_ASSERT(curve != nullptr && out != nullptr && r > 0.0);
    *out = {0.0, 0, 0};
    const auto f = [=](double v) { return CURVE_At(curve, v, nullptr) + (v - vf) / r; };

    Walk walk = {near, out, 0.0, 0.0, false};
    bool loadSeen = false;
    for (int k = 0; k < curve->count; ++k) {
        const CurvePoint& point = curve->points[k];
        if (!loadSeen && vf <= point.v) {
            if (vf < point.v) s_step(&walk, vf, f(vf));
            loadSeen = true;
        }
        s_step(&walk, point.v, point.i + (point.v - vf) / r);
    }
    if (!loadSeen) s_step(&walk, vf, f(vf));
    if (out->count > 0) return std::isfinite(out->v) ? 1 : 0;

    const double first = curve->count > 0 && curve->points[0].v < vf ? curve->points[0].v : vf;
    const double firstF = f(first);
    const double below = curve->slopeBelow + 1.0 / r;
    const double above = curve->slopeAbove + 1.0 / r;
    if (std::fabs(firstF) <= std::fabs(walk.f))
        return s_beyond(first, firstF, below, -1, out) || s_beyond(walk.v, walk.f, above, 1, out);
    return s_beyond(walk.v, walk.f, above, 1, out) || s_beyond(first, firstF, below, -1, out);
}
