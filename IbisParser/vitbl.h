/* V-I tables: [Pulldown], [Pullup], the clamps, the ISSO tables, [Series Current] and [Series
 * MOSFET] of models and submodels. Voltages in volt, currents in ampere, positive into the
 * component. A line holds a voltage and the currents of the typical, minimum and maximum corner; a
 * column is present when one of its cells is a number. */
#ifndef IBISPARSER_VITBL_H
#define IBISPARSER_VITBL_H

#include "IbisParser/ibis.h"
#include "IbisParser/rng.h"
#include "IbisParser/rngp.h"

IBIS_BEGIN_DECLS

enum { VITBL_MAX_MOSFETS = 100 /* [Series MOSFET] tables of one model and state */ };

typedef struct Vitbl Vitbl;
struct Vitbl {
    Vitbl* next;        /* following [Series MOSFET] table, in file order */
    Vitbl* prev;        /* preceding one */
    const char* name;   /* keyword without brackets; a literal */
    const char* owner;  /* name of the model or submodel; kept by that record */
    unsigned long line; /* of the keyword */
    RngpLine* head;     /* the lines in file order */
    int count;
    int direction; /* of the voltages: 1 ascending, -1 descending, 0 not known */
    int carries;   /* some typical current is not 0; zero tables stand for what is not there */
    int mosfet;    /* 1 for [Series MOSFET] */
    RngSingle vds; /* there only; CELL_NA when it was given but is of no use */
    void* reading; /* state of the line linker until VITBL_Fini */
};

/* Makes an empty table in a slot that holds none. name is the keyword as users write it ("GND
 * Clamp") and must be a literal; owner must outlive the table. 1 done, 0 no memory (reported). */
int VITBL_New(Vitbl** slot, const char* name, const char* owner);
/* The same for one more [Series MOSFET] table at the end of a list; stores the table. Beyond the
 * first surplus table of a list none is made: null is stored and the result is 0. */
int VITBL_NewMosfet(Vitbl** list, const char* owner, Vitbl** out);
/* One data line of the table. A null table takes the line without a word. */
int VITBL_ReceiveLine(Vitbl* table, const char* line);
/* The keyword's lines have ended: counts, end cells and Vds are judged. Null is ignored. */
int VITBL_Fini(Vitbl* table);
/* Frees a table or a list of them; null is ignored. */
void VITBL_Free(Vitbl* table);

/* State of the corner's cell, CELL_NUMBER with *value set, CELL_NA or CELL_ABSENT. */
int VITBL_Cell(const RngpLine* line, int corner, double* value);
/* Number of numeric cells of the corner. */
int VITBL_CountNumbers(const Vitbl* table, int corner);

IBIS_END_DECLS

#endif
