/* [Pin]: the pin list of a component. */
#ifndef IBISPARSER_PIN_H
#define IBISPARSER_PIN_H

#include "IbisParser/ibis.h"
#include "IbisParser/krng.h"
#include "IbisParser/sizes.h"

IBIS_BEGIN_DECLS

struct PinMap;
struct DiffPin;

/* What stands in the model column. */
typedef enum PinKind {
    PIN_MODEL = 0, /* a model or a selector */
    PIN_POWER = 1,
    PIN_GND = 2,
    PIN_NC = 3,
    PIN_CIRCUITCALL = 4,
    PIN_NA = 5
} PinKind;

typedef struct Pin Pin;
struct Pin {
    Pin* next; /* file order */
    char name[SIZE_PIN + 1];
    char* longName; /* the whole name when it is longer than that; else null */
    unsigned long line;
    char signal[SIZE_NAME + 1];
    char model[SIZE_NAME + 1];
    RngSingle R;  /* ohm */
    RngSingle L;  /* henry */
    RngSingle C;  /* farad */
    int kind;     /* PinKind */
    int repeated; /* the name stands in an earlier line: counted, else passed over */
    const struct PinMap* mapping; /* line under [Pin Mapping], or null */
    const struct DiffPin* pair;   /* line under [Diff Pin], in either role, or null */
};

/* line is the text after the keyword or the data line. */
int PIN_KeywordLine(Cmpnt* component, const char* line);
int PIN_ReceiveLine(Cmpnt* component, const char* line);
/* The first pin of that name, or null. CMPNT_FindPin does not walk the list. */
Pin* PIN_Find(Pin* head, const char* name);
int PIN_Count(const Pin* head);
void PIN_FreeList(Pin* head);

IBIS_END_DECLS

#endif
