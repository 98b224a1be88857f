/* [Ramp]: the slopes of an edge between 20 and 80 percent of its swing. */
#ifndef IBISPARSER_RAMP_H
#define IBISPARSER_RAMP_H

#include "IbisParser/rng.h"

IBIS_BEGIN_DECLS

typedef struct RampSlope {
    double dV;
    double dt;
    int state; /* CellState; a number when both dV and dt were read */
} RampSlope;

typedef struct Ramp {
    RampSlope rise[CORNER_COUNT]; /* volt, second */
    RampSlope fall[CORNER_COUNT];
    RngSingle R_load; /* ohm; a value of 50 when state is CELL_ABSENT */
} Ramp;

/* The open ramp is *slot, of a model or a submodel. */
int RAMP_KeywordLine(Ramp** slot, const char* line);
int RAMP_ReceiveLine(Ramp* ramp, const char* line);
int RAMP_Fini(Ramp* ramp);
void RAMP_Free(Ramp* ramp); /* null is ignored */

IBIS_END_DECLS

#endif
