/* [Pin Mapping]: the buses that supply each pin. */
#ifndef IBISPARSER_PINMAP_H
#define IBISPARSER_PINMAP_H

#include "IbisParser/ibis.h"
#include "IbisParser/sizes.h"

IBIS_BEGIN_DECLS

enum {
    PINMAP_PULLDOWN = 0,
    PINMAP_PULLUP = 1,
    PINMAP_GND_CLAMP = 2,
    PINMAP_POWER_CLAMP = 3,
    PINMAP_EXT = 4,
    PINMAP_COLUMNS = 5
};

typedef struct PinMap PinMap;
struct PinMap {
    PinMap* next; /* file order */
    char name[SIZE_PIN + 1];
    unsigned long line;
    char bus[PINMAP_COLUMNS][SIZE_BUS + 1]; /* empty: the column is absent */
};

/* line is the text after the keyword or the data line. */
int PINMAP_KeywordLine(Cmpnt* component, const char* line);
int PINMAP_ReceiveLine(Cmpnt* component, const char* line);
/* The first line of that pin, or null. */
PinMap* PINMAP_Find(PinMap* head, const char* pin);
void PINMAP_FreeList(PinMap* head);

IBIS_END_DECLS

#endif
