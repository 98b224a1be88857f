/* Piecewise linear V-I curves: the corners of V-I tables and their sums at the pin of a buffer.
 *
 * Currents are positive into the component, in ampere; pin voltages count from the simulator's
 * ground, in volt. With the reference voltages Vpd, Vpu, Vgc, Vpc of the corner a table voltage x
 * belongs to the pin voltage v by
 *     [Pulldown]    x = v - Vpd    (ECL types: x = Vpu - v)
 *     [Pullup]      x = Vpu - v
 *     [GND Clamp]   x = v - Vgc
 *     [POWER Clamp] x = Vpc - v
 * and a combined curve is the sum of the tables that conduct in a state of the buffer,
 *     low   pulldown + clamps      high  pullup + clamps      off  clamps,
 * with the static clamps of the Dynamic_clamp submodels that the state switches in. It rises with v
 * in a passive, well-formed buffer.
 *
 * NA cells are skipped, so a curve is linear across them; cells of one voltage count with their
 * mean. Beyond its ends a table goes on with the slope of its last segment; with hold, a clamp
 * stays at its last value beyond its highest x, where its diode is off. A sum has a point at every
 * voltage where one of its tables has one, so it is exact, not sampled. */
#ifndef IBISPARSER_CURVE_H
#define IBISPARSER_CURVE_H

#include "IbisParser/ibis.h"
#include "IbisParser/rng.h"
#include "IbisParser/vitbl.h"

IBIS_BEGIN_DECLS

typedef enum CurveState { CURVE_LOW = 0, CURVE_HIGH = 1, CURVE_OFF = 2 } CurveState;

typedef enum CurveResult {
    CURVE_NO_TABLE = 0, /* nothing conducts in this state: an empty curve */
    CURVE_BUILT = 1,
    CURVE_NO_REFERENCE = 2, /* a table's reference voltage is not given */
    CURVE_NO_CORNER = 3,    /* a table lacks the corner */
    CURVE_NO_MEMORY = 4     /* reported */
} CurveResult;

typedef struct CurvePoint {
    double v;
    double i;
} CurvePoint;

/* All zero is the curve of an open pin, which carries no current and owns nothing. */
typedef struct Curve {
    CurvePoint* points; /* none, or at least two with v strictly ascending */
    int count;
    double slopeBelow; /* A/V before the first and behind the last point */
    double slopeAbove;
} Curve;

/* One corner of one table over its own voltage. hold keeps the curve level above its last point.
 * CURVE_BUILT, CURVE_NO_CORNER (fewer than two voltages with numbers) or CURVE_NO_MEMORY. */
int CURVE_Prepare(const Vitbl* table, int corner, int hold, Curve* out);
/* The combined curve of a model over the pin voltage; empty unless the result is CURVE_BUILT. */
int CURVE_Combine(const Mdl* model, int state, int corner, int hold, Curve* out);
/* Current at v; outside (may be null) tells whether v lies beyond the points. */
double CURVE_At(const Curve* curve, double v, int* outside);
void CURVE_Free(Curve* curve);

/* One value of a table or of a combined curve. 1 stored, 0 when there is no curve; for many values
 * prepare the curve once. */
int CURVE_Eval(const Vitbl* table, int corner, double x, int hold, double* current, int* outside);
int CURVE_Total(const Mdl* model, int state, int corner, double v, int hold, double* current);

/* A counter-run: a stretch in which a curve that should rise falls. */
typedef struct CurveRun {
    double from, to; /* volt */
    double loss;     /* ampere, above 0 */
} CurveRun;

/* Shape, coverage, signs and zero crossings of a model's tables and combined curves.
 *
 * Shape: a counter-run counts when its loss exceeds max(CURVE_RUN_FLOOR, CURVE_RUN_SHARE of the
 * largest current between the rails), the rails being min(Vpd, Vgc) and max(Vpu, Vpc); the worst
 * corner is reported. All other rules look at the typical corner.
 * Coverage, over the table's own voltage, 5 % of Vcc short being enough:
 *     drive tables  0 to Vcc needed, -Vcc to 2 Vcc usual; ECL 0 to 2.2 V
 *     GND Clamp     -Vcc to 0 needed, -Vcc to Vcc usual       POWER Clamp  -Vcc to 0
 * with Vcc = Vpu - Vpd for drive tables, Vpc - Vgc for clamps. Tables below 1 uA carry nothing.
 * Zero: a drive table carries at most max(50 uA, 5 % of its largest current) at its reference.
 * Signs: it sinks (pulldown) or sources (pullup) at the other rail; a clamp beyond its rail does
 * not drive 1 mA the wrong way. Clamps that carry the same current within 1 % between the rails,
 * and drive tables that equal their clamp within 5 % where both begin, count a current twice. */
#define CURVE_RUN_FLOOR 1e-3
#define CURVE_RUN_SHARE 0.02
int CURVE_Check(const Mdl* model);

IBIS_END_DECLS

#endif
