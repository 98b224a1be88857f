/* Typical, minimum and maximum of one quantity. */
#ifndef IBISPARSER_RNG_H
#define IBISPARSER_RNG_H

#include "IbisParser/linkage.h"

IBIS_BEGIN_DECLS

/* The columns of every range and range table. */
typedef enum RngCorner {
    CORNER_TYP = 0,
    CORNER_MIN = 1,
    CORNER_MAX = 2,
    CORNER_COUNT = 3
} RngCorner;

/* One number that may be missing. */
typedef struct RngSingle {
    double value;
    int state; /* CellState */
} RngSingle;

typedef struct RngRange {
    double typ;
    int typState; /* CellState */
    double min;
    int minState;
    double max;
    int maxState;
} RngRange;

/* 1 when all three cells were read without error. A record is made in any case but failed
 * splitting or memory. */
int RNG_ParseRange(const char* text, const char* keyword, RngRange** out);
void RNG_Free(RngRange* range); /* null is ignored */

IBIS_END_DECLS

#endif
