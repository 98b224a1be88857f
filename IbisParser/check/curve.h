// Combined curves of one buffer, prepared once for all checks that evaluate them.
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
