/* [Circuit Call]: external circuits placed between the pads and nodes of a die. */
#ifndef IBISPARSER_CIRCUIT_H
#define IBISPARSER_CIRCUIT_H

#include "IbisParser/ibis.h"
#include "IbisParser/sizes.h"

IBIS_BEGIN_DECLS

typedef struct CircuitPort CircuitPort;
struct CircuitPort {
    CircuitPort* next; /* file order */
    char port[SIZE_NAME + 1];
    char* longPort;           /* the whole name when it is longer than that; else null */
    char node[SIZE_NAME + 1]; /* pin of the component or declared die node */
};

typedef struct Circuit Circuit;
struct Circuit {
    Circuit* next;            /* file order */
    char name[SIZE_NAME + 1]; /* external circuit */
    unsigned long line;
    char signalPin[SIZE_PIN + 1];
    char diffPins[2][SIZE_PIN + 1]; /* non-inverting, inverting */
    char seriesPins[2][SIZE_PIN + 1];
    struct Pin* pins[2]; /* the ones named, of the component's list, or null */
    CircuitPort* ports;
    int ended;
};

/* line is the text after the keyword or the data line. */
int CIRCUIT_New(Cmpnt* component, const char* line);
int CIRCUIT_ReceiveLine(Cmpnt* component, const char* line);
int CIRCUIT_End(Cmpnt* component);
/* The end of a call by another keyword, when one is open: error 3710. */
int CIRCUIT_Fini(Cmpnt* component);
void CIRCUIT_FreeList(Circuit* head);

IBIS_END_DECLS

#endif
