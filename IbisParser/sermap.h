/* [Series Pin Mapping] and [Series Switch Groups]. */
#ifndef IBISPARSER_SERMAP_H
#define IBISPARSER_SERMAP_H

#include "IbisParser/ibis.h"
#include "IbisParser/sizes.h"

IBIS_BEGIN_DECLS

typedef struct SerMap SerMap;
struct SerMap {
    SerMap* next; /* file order */
    char name[SIZE_PIN + 1];
    unsigned long line;
    char pin2[SIZE_PIN + 1];
    char model[SIZE_NAME + 1];
    char group[SIZE_GROUP + 1]; /* empty: none */
};

typedef struct SerGroup SerGroup;
struct SerGroup {
    SerGroup* next; /* file order */
    char name[SIZE_GROUP + 1];
};

/* One state of the switches; the first of a component is the default. */
typedef struct SerState SerState;
struct SerState {
    SerState* next; /* file order */
    int on;         /* 1 On, 0 Off */
    unsigned long line;
    SerGroup* groups;
};

/* line is the text after the keyword or the data line. */
int SERMAP_KeywordLine(Cmpnt* component, const char* line);
int SERMAP_ReceiveLine(Cmpnt* component, const char* line);
/* A data line of [Series Switch Groups]. gbContinue is 1 while a state is open. */
int SERMAP_GroupLine(Cmpnt* component, const char* line);
/* The end of either keyword: drops a state that was not ended. */
int SERMAP_Fini(Cmpnt* component);
/* The first line that joins the pin, in either role, or null. */
SerMap* SERMAP_Find(SerMap* head, const char* pin);
void SERMAP_FreeList(SerMap* head);
void SERMAP_FreeStates(SerState* head);

IBIS_END_DECLS

#endif
