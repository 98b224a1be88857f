/* [Alternate Package Models]. */
#ifndef IBISPARSER_APKG_H
#define IBISPARSER_APKG_H

#include "IbisParser/ibis.h"
#include "IbisParser/sizes.h"

IBIS_BEGIN_DECLS

typedef struct Apkg Apkg;
struct Apkg {
    Apkg* next; /* file order */
    char name[SIZE_NAME + 1];
    unsigned long line;
};

/* line is the text after the keyword or the data line. */
int APKG_Begin(Cmpnt* component, const char* line);
int APKG_ReceiveLine(Cmpnt* component, const char* line);
int APKG_End(Cmpnt* component);
/* The end of the block by another keyword, when it is open: error 606. */
int APKG_Fini(Cmpnt* component);
void APKG_FreeList(Apkg* head);

IBIS_END_DECLS

#endif
