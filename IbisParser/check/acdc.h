// The parts of the comparison of waveforms, ramps and timing loads with the V-I tables.
#ifndef IBISPARSER_CHECK_ACDC_H
#define IBISPARSER_CHECK_ACDC_H

#include "IbisParser/acdc.h"
#include "IbisParser/base/raise.h"
#include "IbisParser/check/curve.h"
#include "IbisParser/mdl.h"

enum { ACDC_DRIVEN = 2 };  // the states CURVE_LOW and CURVE_HIGH

// The combined curves of one corner of a buffer.
struct AcdcCorner {
    int corner;
    const CurveCase* state[ACDC_DRIVEN];
    bool driven[ACDC_DRIVEN];  // the state's table is there, or the type leaves the pin free
};

// Message numbers of a kind of owner. end: edge (rising, falling), end (start, end), warning or
// error.
struct AcdcNumbers {
    ErrNumber<const char*, const char*, const char*> several;
    ErrNumber<const char*, const char*, const char*, double, double> none;
    ErrNumber<const char*, const char*, const char*, double> outside;
    ErrNumber<const char*, const char*, double, double> noSwing;
    ErrNumber<const char*, const char*, double, double, const char*, double, double> disagree;
    ErrNumber<const char*, const char*, double, double, double, double> end[2][2][2];
};
extern const AcdcNumbers acdcModelNumbers;
extern const AcdcNumbers acdcSubMdlNumbers;

// One buffer, model or submodel.
struct AcdcBuffer {
    const AcdcNumbers* numbers;
    const char* name;
    const Wvfrm* list[2];  // rising, falling
    const Mdl* model;      // the owner of the reference voltages
};

// Ends of the waveforms of one corner, and rising against falling.
void ACDC_CheckEnds(const AcdcBuffer* buffer, const AcdcCorner* corner);
// The typical ramp against the tables and the waveforms, the timing load.
void ACDC_CheckRamp(const Mdl* model, const AcdcCorner* typ);
void ACDC_CheckTimingLoad(const Mdl* model, const AcdcCorner* typ);

// The operating point of a state on a load of r ohm to vf that lies nearer to `near`: clamps may go
// on or be held. The result is that of ACDC_Solve.
int ACDC_SolveState(const CurveCase* state, double r, double vf, double near, AcdcPoint* out);

#endif
