/* Resistance, inductance and capacitance matrices of a package model. A matrix is symmetric; only
 * its upper half with the diagonal is given and kept. Indices count from 0 in the order of
 * [Pin Numbers]. */
#ifndef IBISPARSER_MTX_H
#define IBISPARSER_MTX_H

#include <stddef.h>

#include "IbisParser/ibis.h"
#include "IbisParser/linkage.h"

IBIS_BEGIN_DECLS

typedef enum MtxKind { MTX_UNKNOWN = 0, MTX_BANDED = 1, MTX_SPARSE = 2, MTX_FULL = 3 } MtxKind;

/* One element of a sparse matrix; row <= col. */
typedef struct MtxCell {
    int row;
    int col;
    double value;
} MtxCell;

/* One [Row]: columns i, i + 1, ... of row i in full and banded matrices. */
typedef struct MtxRow {
    double* values; /* owned */
    int count;      /* elements given */
    int capacity;
    int given; /* 1 after its [Row] */
} MtxRow;

typedef struct MtxReading MtxReading; /* what only the reading of a matrix needs */

typedef struct Mtx {
    int kind;       /* MtxKind; unknown: nothing is kept */
    int code;       /* keyword code 81, 82 or 83 */
    int n;          /* pins under [Pin Numbers] */
    int bandwidth;  /* -1 before [Bandwidth] */
    MtxRow* rows;   /* n rows */
    MtxCell* cells; /* sparse: sorted by row, then column, once the matrix is complete */
    size_t cellCount;
    size_t cellCapacity;
    int rowCount;        /* rows given */
    int lastRow;         /* highest row given so far, -1 before the first */
    int outOfOrder;      /* a row out of order was reported */
    MtxReading* reading; /* null when the matrix is complete */
} Mtx;

/* Allocates an empty matrix of a MtxKind. */
int MTX_New(Mtx** slot, int kind) IBIS_CHECK_RESULT;
/* Begins a matrix: text is what follows the keyword of that code on its line. */
int MTX_KeywordLine(PkgMdl* package, int code, char* text);
/* Texts of a [Bandwidth] and a [Row] keyword, and a line of elements, for the matrix being read. */
int MTX_Bandwidth(PkgMdl* package, char* text);
int MTX_Row(PkgMdl* package, char* text);
int MTX_ReceiveLine(PkgMdl* package, char* line);
/* Ends the matrix being read, if there is one, and checks that its rows are complete. */
int MTX_Fini(PkgMdl* package);
/* Judges the values of a complete matrix. */
int MTX_Check(const Mtx* matrix, const PkgMdl* package);
/* Stores element (i, j), 0 when it was not given; 1 when it was. */
int MTX_Get(const Mtx* matrix, int i, int j, double* value);
void MTX_Free(Mtx* matrix); /* null is ignored */

IBIS_END_DECLS

#endif
