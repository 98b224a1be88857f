/* [Submodel]: clamps, bus holders and fall-back drivers that models add. */
#ifndef IBISPARSER_SUBMDL_H
#define IBISPARSER_SUBMDL_H

#include "IbisParser/ibis.h"
#include "IbisParser/keyword.h"
#include "IbisParser/ramp.h"
#include "IbisParser/rng.h"

IBIS_BEGIN_DECLS

typedef struct Vitbl Vitbl;
typedef struct Wvfrm Wvfrm;

enum { SUBMDL_NAME_MAX = 40 };

typedef enum SubMdlType {
    SUBMDL_UNSET,
    SUBMDL_DYNAMIC_CLAMP,
    SUBMDL_BUS_HOLD,
    SUBMDL_FALL_BACK
} SubMdlType;

struct SubMdl {
    SubMdl* next;
    char name[SUBMDL_NAME_MAX + 1];
    unsigned long line;    /* of its keyword */
    int type;              /* SubMdlType */
    RngRange* V_trigger_r; /* volt */
    RngRange* V_trigger_f;
    RngRange* Off_delay; /* second */
    Wvfrm* gndPulse;
    Wvfrm* powerPulse;
    Vitbl* pulldown;
    Vitbl* pullup;
    Vitbl* gndClamp;
    Vitbl* powerClamp;
    Ramp* ramp;
    Wvfrm* rising; /* list, file order */
    Wvfrm* falling;
    unsigned found; /* bit (code - KEY_SUBMODEL) for each keyword that occurred */
};

int SUBMDL_Init(void);
int SUBMDL_ReceiveLine(int kind, int code, char* line);
int SUBMDL_Fini(int nextCode);
void SUBMDL_FreeList(SubMdl* head); /* null is ignored */
int SUBMDL_AddLink(SubMdl** head, SubMdl* item);
/* By exact name; null when absent. Linear: many look-ups go through an index of their own. */
SubMdl* SUBMDL_FindByName(const SubMdl* head, const char* name);
/* The type as the file writes it, or null for SUBMDL_UNSET. */
const char* SUBMDL_TypeOf(const SubMdl* submodel);
/* Closes the record that the file left open. */
void SUBMDL_Close(void);

IBIS_END_DECLS

#endif
