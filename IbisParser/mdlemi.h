/* [Begin EMI Model]: what a model tells an electromagnetic-interference tool. */
#ifndef IBISPARSER_MDLEMI_H
#define IBISPARSER_MDLEMI_H

#include "IbisParser/ibis.h"

IBIS_BEGIN_DECLS

typedef enum MdlEmiType {
    MDLEMI_TYPE_UNSET,
    MDLEMI_FERRITE,
    MDLEMI_NOT_A_FERRITE /* the default */
} MdlEmiType;

typedef enum MdlEmiDomain {
    MDLEMI_DOMAIN_UNSET, /* the component's */
    MDLEMI_DIGITAL,
    MDLEMI_ANALOG
} MdlEmiDomain;

typedef struct MdlEmi {
    int type;       /* MdlEmiType */
    int domain;     /* MdlEmiDomain */
    int open;       /* [End EMI Model] has not come yet */
    unsigned given; /* bit for each sub-parameter that occurred, in the order above */
} MdlEmi;

int MDLEMI_Begin(Mdl* model);
int MDLEMI_ReceiveLine(Mdl* model, const char* line);
/* [End EMI Model]. */
int MDLEMI_End(Mdl* model);
/* A keyword that is not [End EMI Model] begins, or the model ends: a block still open is reported
 * and closed. */
int MDLEMI_Fini(Mdl* model);
void MDLEMI_Free(MdlEmi* emi); /* null is ignored */

IBIS_END_DECLS

#endif
