/* Waveform ends, ramps and timing loads against the operating points that the V-I tables give.
 *
 * A buffer that drives a fixture of R_fixture to V_fixture through R_dut settles where its combined
 * curve I(v) meets the load line,
 *     f(v) = I(v) + (v - Vf) / Rt = 0,    Rt = R_fixture + R_dut,
 * and the waveform shows u = Vf + (v - Vf) R_fixture / Rt. I(v) is piecewise linear, so f is too:
 * the crossing of a segment is computed, not iterated.
 *
 * With sw = |u(high) - u(low)| and d = |end of the waveform - u|, d / sw above ACDC_WARN is a
 * warning (a settled edge is normally within two percent), above ACDC_ERR an error: tables and
 * waveforms describe different buffers. Volt, ampere, ohm, second. */
#ifndef IBISPARSER_ACDC_H
#define IBISPARSER_ACDC_H

#include "IbisParser/curve.h"
#include "IbisParser/ibis.h"
#include "IbisParser/wvfrm.h"

IBIS_BEGIN_DECLS

#define ACDC_WARN 0.02
#define ACDC_ERR 0.10
#define ACDC_MIN_SWING 5e-3      /* volt; a smaller swing is no base for a comparison */
#define ACDC_RAMP_TOLERANCE 0.25 /* dV of a ramp against 0.6 of the swing */
#define ACDC_RAMP_SLOPE 0.5      /* with dV above the supplies: written as a slope */
#define ACDC_EDGE_TOLERANCE 0.3  /* dt of a ramp against the 20-80 % time of a waveform */
#define ACDC_SAME_LOAD 0.01      /* relative difference of loads that count as one */

typedef struct AcdcPoint {
    double v;    /* pin voltage */
    int count;   /* solutions; above 1 v is the one nearest to the voltage asked for */
    int outside; /* v lies beyond the points of the curve and the load */
} AcdcPoint;

/* The operating point of a curve on a load of r ohm (above 0) to vf; near chooses among several.
 * 1 found, 0 when the load line never meets the curve. */
int ACDC_Solve(const Curve* curve, double r, double vf, double near, AcdcPoint* out);
/* The voltage that the model's tables give for the first or last point of one of its waveforms, as
 * the check compares it. 1 stored, 0 when there is none. */
int ACDC_EndPoint(const Mdl* model, const Wvfrm* waveform, int corner, int last, double* volts);

int acdc_CheckAllModels(const Mdl* models);
int acdc_CheckAllSubModels(const SubMdl* submodels);

IBIS_END_DECLS

#endif
