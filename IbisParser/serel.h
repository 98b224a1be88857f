/* Series elements: what a Series model, or one state of a Series_switch model, puts between its
 * two pins. All elements of a state are in parallel; Rl with L, Lc and Rc with C in series. */
#ifndef IBISPARSER_SEREL_H
#define IBISPARSER_SEREL_H

#include "IbisParser/ibis.h"
#include "IbisParser/keyword.h"
#include "IbisParser/rng.h"

IBIS_BEGIN_DECLS

typedef struct Vitbl Vitbl;

/* Index of Mdl.series. */
typedef enum SerElState { SEREL_PLAIN, SEREL_ON, SEREL_OFF, SEREL_STATES } SerElState;

typedef struct SerEl {
    RngRange* R;  /* ohm */
    RngRange* L;  /* henry */
    RngRange* Rl; /* ohm */
    RngRange* C;  /* farad */
    RngRange* Lc; /* henry */
    RngRange* Rc; /* ohm */
    Vitbl* current;
    Vitbl* mosfets; /* list, file order */
} SerEl;

/* The keyword lines 56-65 of a model; text is what follows the keyword. */
int SEREL_KeywordLine(Mdl* model, int code, const char* text);
/* A data line under [Series Current] or [Series MOSFET]. */
int SEREL_ReceiveLine(Mdl* model, const char* line);
/* The current keyword ends. */
int SEREL_Fini(Mdl* model);
/* The model ends: rules between its elements. */
int SEREL_EndOfModel(const Mdl* model);
void SEREL_Free(SerEl* elements); /* null is ignored */

IBIS_END_DECLS

#endif
