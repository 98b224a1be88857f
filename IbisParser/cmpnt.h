/* [Component] with everything that stands under it. */
#ifndef IBISPARSER_CMPNT_H
#define IBISPARSER_CMPNT_H

#include "IbisParser/apkg.h"
#include "IbisParser/circuit.h"
#include "IbisParser/cmpntemi.h"
#include "IbisParser/diffpin.h"
#include "IbisParser/ibis.h"
#include "IbisParser/node.h"
#include "IbisParser/pin.h"
#include "IbisParser/pinmap.h"
#include "IbisParser/pkg.h"
#include "IbisParser/sermap.h"
#include "IbisParser/sizes.h"

IBIS_BEGIN_DECLS

/* Where a component's timing or signal integrity is stated. */
typedef enum CmpntLocation { LOCATION_UNSET = 0, LOCATION_PIN = 1, LOCATION_DIE = 2 } CmpntLocation;

struct Cmpnt {
    Cmpnt* next;
    char name[SIZE_NAME + 1];
    unsigned long line;
    char manufacturer[SIZE_NAME + 1];
    int Si_location;     /* CmpntLocation */
    int Timing_location; /* CmpntLocation */
    Pkg* package;
    Pin* pins;
    PinMap* pinMap;
    DiffPin* diffPins;
    SerMap* seriesPins;
    SerState* switchStates;
    char packageModel[SIZE_NAME + 1];
    Apkg* alternates;
    Node* nodes;
    Circuit* calls;
    CmpntEmi* emi;
    unsigned long found;          /* a bit for each keyword that came, by code */
    struct IdxTable* pinIndex;    /* pins by name */
    struct CmpntReading* reading; /* only while the component is open */
};

int CMPNT_Init(void);
int CMPNT_ReceiveLine(int kind, int code, char* line);
int CMPNT_Fini(int nextCode);
void CMPNT_FreeList(Cmpnt* head);
int CMPNT_AddLink(Cmpnt** head, Cmpnt* item);
Cmpnt* CMPNT_FindByName(Cmpnt* head, const char* name);
/* The component that is being read, or null. */
Cmpnt* CMPNT_GetOpen(void);
/* Closes the component that the file left open, its end-of-record checks included. */
int CMPNT_Close(void);
/* The first pin of that name, or null. */
Pin* CMPNT_FindPin(const Cmpnt* component, const char* name);

/* Checks of the components of a whole file, and of the external circuits. */
int CMPNT_TestList(Cmpnt* components, Ext* externals, Mdl* models);
/* Finds the component's package model, in the store or in a package file beside the file that was
 * read, and compares the pins. */
int CMPNT_TestPkgMdl(const Cmpnt* component);

IBIS_END_DECLS

#endif
