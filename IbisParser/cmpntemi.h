/* [Begin EMI Component]: data of a component for emission analysis. */
#ifndef IBISPARSER_CMPNTEMI_H
#define IBISPARSER_CMPNTEMI_H

#include "IbisParser/ibis.h"
#include "IbisParser/krng.h"
#include "IbisParser/sizes.h"

IBIS_BEGIN_DECLS

typedef enum EmiDomain {
    EMI_DOMAIN_UNSET = 0, /* means digital */
    EMI_DOMAIN_DIGITAL = 1,
    EMI_DOMAIN_ANALOG = 2,
    EMI_DOMAIN_DIGITAL_ANALOG = 3
} EmiDomain;

typedef struct EmiPin EmiPin;
struct EmiPin {
    EmiPin* next; /* file order */
    char name[SIZE_PIN + 1];
    unsigned long line;
    char domain[SIZE_GROUP + 1]; /* empty: NA */
    RngSingle clockDiv;
};

typedef struct EmiPinDomain EmiPinDomain;
struct EmiPinDomain {
    EmiPinDomain* next; /* file order */
    char name[SIZE_GROUP + 1];
    unsigned long line;
    int percent; /* -1: not legal */
};

typedef struct CmpntEmi CmpntEmi;
struct CmpntEmi {
    int domain;    /* EmiDomain */
    RngSingle Cpd; /* farad, as the next two */
    RngSingle C_Heatsink_gnd;
    RngSingle C_Heatsink_float;
    EmiPin* pins;
    EmiPinDomain* domains;
    int ended;
};

/* line is the text after the keyword or the data line; code is that of its keyword. */
int CMPNTEMI_Begin(Cmpnt* component, const char* line);
int CMPNTEMI_KeywordLine(Cmpnt* component, int code, const char* line);
int CMPNTEMI_ReceiveLine(Cmpnt* component, int code, const char* line);
int CMPNTEMI_End(Cmpnt* component);
/* The end of the block by a keyword outside it, when it is open: error 807. */
int CMPNTEMI_Fini(Cmpnt* component);
void CMPNTEMI_Free(CmpntEmi* emi);

IBIS_END_DECLS

#endif
