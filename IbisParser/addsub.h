/* [Add Submodel]: the submodels that a model adds, and when each is active. */
#ifndef IBISPARSER_ADDSUB_H
#define IBISPARSER_ADDSUB_H

#include "IbisParser/ibis.h"

IBIS_BEGIN_DECLS

enum { ADDSUB_NAME_MAX = 40 };

typedef enum AddSubMode {
    ADDSUB_DRIVING = 1,
    ADDSUB_NON_DRIVING = 2,
    ADDSUB_ALL = 3 /* the two above as bits */
} AddSubMode;

/* One line, newest first. */
typedef struct AddSub AddSub;
struct AddSub {
    AddSub* next;
    char submodel[ADDSUB_NAME_MAX + 1];
    int mode;     /* AddSubMode; 0 when the word was not legal */
    int allModes; /* in the first row of a submodel the modes of all its rows, else 0 */
};

int ADDSUB_KeywordLine(Mdl* model);
int ADDSUB_ReceiveLine(Mdl* model, const char* line);
int ADDSUB_Fini(Mdl* model);
void ADDSUB_FreeList(AddSub* head); /* null is ignored */
/* The mode as the file writes it. */
const char* ADDSUB_ModeName(int mode);

IBIS_END_DECLS

#endif
