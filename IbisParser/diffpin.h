/* [Diff Pin]: differential pairs. */
#ifndef IBISPARSER_DIFFPIN_H
#define IBISPARSER_DIFFPIN_H

#include "IbisParser/ibis.h"
#include "IbisParser/krng.h"
#include "IbisParser/sizes.h"

IBIS_BEGIN_DECLS

typedef struct DiffPin DiffPin;
struct DiffPin {
    DiffPin* next;           /* file order */
    char name[SIZE_PIN + 1]; /* non-inverting pin */
    unsigned long line;
    char invPin[SIZE_PIN + 1];
    struct Pin* pins[2]; /* the two of the component's list, or null */
    RngSingle vdiff;     /* volt */
    RngSingle tdelayTyp; /* second, of the inverting pin against the other; either sign */
    RngSingle tdelayMin;
    RngSingle tdelayMax;
};

/* line is the text after the keyword or the data line. */
int DIFFPIN_KeywordLine(Cmpnt* component, const char* line);
int DIFFPIN_ReceiveLine(Cmpnt* component, const char* line);
/* The first pair that holds the pin in either role, or null. */
DiffPin* DIFFPIN_Find(DiffPin* head, const char* pin);
void DIFFPIN_FreeList(DiffPin* head);

IBIS_END_DECLS

#endif
