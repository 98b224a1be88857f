/* [Ramp]: the slopes of an edge between 20 and 80 percent of its swing. */
#ifndef IBISPARSER_RAMP_H
#define IBISPARSER_RAMP_H

#include "IbisParser/rng.h"

IBIS_BEGIN_DECLS

/* state is a CellState: CELL_ABSENT where the file gives no slope of the edge at all, CELL_NA for
 * NA and for what cannot be used (reported while reading). */
typedef struct RampSlope {
    double dV; /* volt, above 0 */
    double dt; /* second, above 0 */
    int state;
} RampSlope;

typedef struct Ramp {
    RampSlope rise[CORNER_COUNT]; /* by RngCorner */
    RampSlope fall[CORNER_COUNT];
    RngSingle R_load; /* ohm; 50 when the file gives none (state CELL_ABSENT) */
} Ramp;

/* Makes the record in an empty slot. 1 done, 0 no memory (reported). */
int RAMP_KeywordLine(Ramp** slot);
int RAMP_ReceiveLine(Ramp* ramp, const char* line);
void RAMP_Free(Ramp* ramp); /* null is ignored */

IBIS_END_DECLS

#endif
