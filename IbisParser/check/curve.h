// Combined curves of one buffer, prepared once for all checks that evaluate them.
//
// How curves are combined. A buffer conducts through several tables at once: a pulldown or a pullup
// that the state drives, its own clamps, and those of dynamic clamps that the state switches in.
// Each table counts its voltage from a rail of its own; what a simulator sees, and what the checks
// judge, is their sum over the voltage of the pin. It is made in four steps, for one state (low,
// high, off) and one corner:
//
//   collect   CURVE_Collect lists the tables that conduct, each with its reference voltage in the
//             corner and its direction: v = reference + x for what hangs on a lower rail, and
//             v = reference - x for what hangs on an upper one. A reference that the file does not
//             give ends it; nothing is assumed.
//   prepare   Each table becomes a curve of its own: cells without a number are left out, points
//             are sorted, those of one voltage become one with their mean current, and both ends
//             get a slope to go on with. A table needs two points in the corner.
//   place     The curve is moved to its reference, and turned round when its voltage falls as the
//             pin's rises; then its ends change places and its slopes their sign.
//   add       Neighbours are merged in pairs. A sum has a point at every voltage where one of the
//             two has one, and the other is read there along its line, so nothing is sampled.
//             n points in m tables take n log m steps.
//
// Two sums are kept of each case, because files leave open what a clamp does beyond its table.
// `free` goes on with the last slope everywhere. `held` keeps a clamp at its last value beyond its
// highest x, where its diode is off: a table that stops early in its blocking range would otherwise
// grow a current that the part does not have. Shapes and spans are judged by `held`; where a ramp
// or the end of a waveform is compared with the curves, the sum that comes closer to the file
// counts.
//
// A CurveSet holds all nine cases of a model for the checks that share them: no sum is made twice.
// Where the sums of a model were judged, they tell whether the shape of a single table is a fault;
// a table that stands in no sum is judged by itself (check/table.h).
#ifndef IBISPARSER_CHECK_CURVE_H
#define IBISPARSER_CHECK_CURVE_H

#include "IbisParser/curve.h"
#include "IbisParser/store/section.h"
#include "IbisParser/submdl.h"

enum { CURVE_STATES = 3 };

// The submodels of the store by name.
using CurveSubMdls = SecNameIndex<SubMdl>;
SubMdl* CURVE_StoredSubMdls();

// 1 when the model's type drives both levels with tables of its own.
bool CURVE_IsPushPull(const Mdl* model);
bool CURVE_IsEcl(const Mdl* model);

// The reference voltages of a corner. False when one is not given.
struct CurveRails {
    double pullup, pulldown, powerClamp, gndClamp;
};
bool CURVE_Rails(const Mdl* model, int corner, CurveRails* out);

// The voltage between the rails of a model's drive or clamp tables.
struct CurveSupply {
    bool known[CORNER_COUNT];
    double volts[CORNER_COUNT];
};
CurveSupply CURVE_DriveSupply(const Mdl* model);
CurveSupply CURVE_ClampSupply(const Mdl* model);

// Where a table of a sum stands at the pin.
struct CurvePart {
    const Vitbl* table;
    double reference;
    bool falling;  // v = reference - x, else v = reference + x
    bool clamp;    // may be held
};

struct CurveParts {
    CurveParts() = default;
    ~CurveParts();
    CurveParts(const CurveParts&) = delete;
    CurveParts& operator=(const CurveParts&) = delete;

    CurvePart* parts = nullptr;
    int count = 0;
};

// The tables that conduct in a state. CURVE_BUILT when there is one and all references are given.
int CURVE_Collect(const Mdl* model, const CurveSubMdls* submodels, int state, int corner,
                  CurveParts* out);
// The sum of the parts, as CURVE_Combine.
int CURVE_Sum(const CurvePart* parts, int count, int corner, int hold, Curve* out);
int CURVE_CombineWith(const Mdl* model, const CurveSubMdls* submodels, int state, int corner,
                      int hold, Curve* out);

struct CurveCase {
    int result = CURVE_NO_TABLE;      // CurveResult of both curves
    Curve free = {nullptr, 0, 0, 0};  // clamps go on with their last slope
    Curve held = {nullptr, 0, 0, 0};  // clamps are held
};

// Every combined curve of a model.
class CurveSet {
public:
    CurveSet(const Mdl* model, const CurveSubMdls* submodels);
    ~CurveSet();
    CurveSet(const CurveSet&) = delete;
    CurveSet& operator=(const CurveSet&) = delete;

    CurveCase cases[CURVE_STATES][CORNER_COUNT];
};

// The worst stretch that moves against direction (1: the curve should rise, -1: it should fall).
// Flat pieces inside a stretch belong to it. With inside != 0 only stretches count that overlap
// (1) or lie wholly outside (-1) the open interval from low to high. False when there is none.
bool CURVE_WorstRun(const Curve* curve, int direction, int inside, double low, double high,
                    CurveRun* out);
// Largest magnitude of the current from low to high, where the curve has points.
double CURVE_LargestCurrent(const Curve* curve, double low, double high, double* at);
// The loss that a run must exceed.
double CURVE_RunLimit(const Curve* curve, double low, double high);

// The states that the model's type takes and whose curve has a table of its own to judge.
bool CURVE_TakesState(const Mdl* model, int state);

// Which combined curves fall in some corner: the table's own shape is judged by them. checked: the
// state belongs to the type and was built in some corner; beyond: it falls outside the rails only.
struct CurveFalls {
    bool checked[CURVE_STATES];
    bool falls[CURVE_STATES];
    bool beyond[CURVE_STATES];
};
// The rules of CURVE_Check on curves that are built already.
void CURVE_CheckShape(const Mdl* model, const CurveSet* set, CurveFalls* falls, bool report);
void CURVE_CheckTables(const Mdl* model, const CurveSet* set);

// True when the current at half the supply in the minimum corner exceeds that in the maximum
// corner by more than a tenth.
bool CURVE_MinIsStronger(const Vitbl* table, const CurveSupply* supply);

#endif
