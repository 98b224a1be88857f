/* [Receiver Thresholds]: single-ended levels as offsets from Vth, and differential levels. */
#ifndef IBISPARSER_RCVTH_H
#define IBISPARSER_RCVTH_H

#include "IbisParser/ibis.h"
#include "IbisParser/rng.h"

IBIS_BEGIN_DECLS

typedef enum RcvThItem {
    TH_VTH,     /* volt */
    TH_VTH_MIN, /* spread of Vth over process at nominal supply */
    TH_VTH_MAX,
    TH_VINH_AC, /* offsets from Vth; positive, ac at or above dc */
    TH_VINH_DC,
    TH_VINL_AC, /* negative, ac at or below dc */
    TH_VINL_DC,
    TH_TSLEW_AC,              /* second */
    TH_THRESHOLD_SENSITIVITY, /* volt of Vth per volt of the reference supply */
    TH_VCROSS_LOW,            /* crossing window of a differential input */
    TH_VCROSS_HIGH,
    TH_VDIFF_AC, /* differential levels; positive, ac at or above dc */
    TH_VDIFF_DC,
    TH_TDIFFSLEW_AC,
    TH_COUNT
} RcvThItem;

typedef enum RcvThSupply {
    TH_SUPPLY_UNSET,
    TH_SUPPLY_POWER_CLAMP,
    TH_SUPPLY_GND_CLAMP,
    TH_SUPPLY_PULLUP,
    TH_SUPPLY_PULLDOWN,
    TH_SUPPLY_EXTERNAL
} RcvThSupply;

typedef struct RcvTh {
    RngSingle item[TH_COUNT];
    int referenceSupply; /* RcvThSupply */
} RcvTh;

int RCVTH_KeywordLine(Mdl* model);
int RCVTH_ReceiveLine(Mdl* model, const char* line);
int RCVTH_Fini(Mdl* model);
void RCVTH_Free(RcvTh* thresholds); /* null is ignored */

/* Completeness, signs and order of the thresholds of every model. As the first check of a document
 * it also closes the model that the file left open. */
int RCVTH_Check(const Mdl* models);

IBIS_END_DECLS

#endif
