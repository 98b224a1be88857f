/* [Model Selector]: the models that a pin can be given. */
#ifndef IBISPARSER_MSEL_H
#define IBISPARSER_MSEL_H

#include "IbisParser/ibis.h"
#include "IbisParser/sizes.h"

IBIS_BEGIN_DECLS

typedef struct MselRow MselRow;
struct MselRow {
    MselRow* next; /* file order; the first is the default */
    char model[SIZE_NAME + 1];
    unsigned long line;
    char description[SIZE_SELECTION + 1];
};

struct Msel {
    Msel* next;
    char name[SIZE_NAME + 1];
    unsigned long line;
    MselRow* rows;
};

int MSEL_Init(void);
int MSEL_ReceiveLine(int kind, int code, char* line);
int MSEL_Fini(int nextCode);
void MSEL_FreeList(Msel* head);
int MSEL_AddLink(Msel** head, Msel* item);
Msel* MSEL_FindByName(Msel* head, const char* name);
int MSEL_TestList(Msel* selectors);

IBIS_END_DECLS

#endif
