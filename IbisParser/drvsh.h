/* [Driver Schedule]: models that a model switches on and off at set delays after its edges. */
#ifndef IBISPARSER_DRVSH_H
#define IBISPARSER_DRVSH_H

#include "IbisParser/ibis.h"
#include "IbisParser/rng.h"

IBIS_BEGIN_DECLS

enum { DRVSH_NAME_MAX = 40 };

typedef enum DrvShDelay {
    DELAY_RISE_ON,
    DELAY_RISE_OFF,
    DELAY_FALL_ON,
    DELAY_FALL_OFF,
    DELAY_COUNT
} DrvShDelay;

/* One line, in file order. */
typedef struct DrvSh DrvSh;
struct DrvSh {
    DrvSh* next;
    char model[DRVSH_NAME_MAX + 1];
    RngSingle delay[DELAY_COUNT]; /* second, from the internal edge */
};

int DRVSH_KeywordLine(Mdl* model);
int DRVSH_ReceiveLine(Mdl* model, const char* line);
int DRVSH_Fini(Mdl* model);
void DRVSH_FreeList(DrvSh* head); /* null is ignored */

/* The scheduled models exist, drive, and return to their starting state. */
int DRVSH_Test(const Mdl* models);

IBIS_END_DECLS

#endif
