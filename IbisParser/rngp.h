/* Range tables: lines of a first column and a typical, minimum, maximum triple, in file order. */
#ifndef IBISPARSER_RNGP_H
#define IBISPARSER_RNGP_H

#include "IbisParser/linkage.h"

IBIS_BEGIN_DECLS

typedef struct RngpLine RngpLine;
struct RngpLine {
    RngpLine* next;
    RngpLine* prev;
    double x;
    int xState; /* CellState, as the other states */
    double typ;
    int typState;
    double min;
    int minState;
    double max;
    int maxState;
};

int RNGP_New(RngpLine** out);
int RNGP_ParseLine(const char* text, const char* keyword, const char* label, RngpLine** out);
int RNGP_LinkLine(RngpLine** head, RngpLine* line, int* count, int checkDuplicates);
int RNGP_Prev(RngpLine* line, RngpLine** out);
void RNGP_FreeList(RngpLine* head); /* null is ignored */

IBIS_END_DECLS

#endif
