/* [Model]: the record of a buffer model, its type table, its life cycle while a file is read, and
 * the checks that need the whole document. */
#ifndef IBISPARSER_MDL_H
#define IBISPARSER_MDL_H

#include "IbisParser/addsub.h"
#include "IbisParser/drvsh.h"
#include "IbisParser/ibis.h"
#include "IbisParser/keyword.h"
#include "IbisParser/mdlemi.h"
#include "IbisParser/mdlspec.h"
#include "IbisParser/ramp.h"
#include "IbisParser/rcvth.h"
#include "IbisParser/rng.h"
#include "IbisParser/serel.h"

IBIS_BEGIN_DECLS

typedef struct AlgMod AlgMod;
typedef struct Vitbl Vitbl;
typedef struct Wvfrm Wvfrm;

enum { MDL_NAME_MAX = 40, MDL_WAVEFORM_MAX = 100 };

typedef enum MdlType {
    MDL_TYPE_UNSET,
    MDL_INPUT,
    MDL_OUTPUT,
    MDL_IO,
    MDL_3_STATE,
    MDL_OPEN_DRAIN,
    MDL_IO_OPEN_DRAIN,
    MDL_OPEN_SINK,
    MDL_IO_OPEN_SINK,
    MDL_OPEN_SOURCE,
    MDL_IO_OPEN_SOURCE,
    MDL_INPUT_ECL,
    MDL_OUTPUT_ECL,
    MDL_IO_ECL,
    MDL_3_STATE_ECL,
    MDL_TERMINATOR,
    MDL_SERIES,
    MDL_SERIES_SWITCH,
    MDL_INPUT_DIFF,
    MDL_OUTPUT_DIFF,
    MDL_IO_DIFF,
    MDL_3_STATE_DIFF,
    MDL_TYPE_COUNT
} MdlType;

/* What a model type says of a table or of the ramp. */
typedef enum MdlNeed {
    MDL_FORBIDDEN,
    MDL_OPTIONAL,
    MDL_REQUIRED,
    MDL_ZERO /* absent, or all currents zero */
} MdlNeed;

typedef enum MdlGroup {
    MDL_GROUP_RX,
    MDL_GROUP_TX,
    MDL_GROUP_IO,
    MDL_GROUP_TERMINATOR,
    MDL_GROUP_SERIES,
    MDL_GROUP_SERIES_SWITCH,
    MDL_GROUP_COUNT
} MdlGroup;

typedef struct MdlTypeInfo {
    const char* name; /* as the file writes it */
    int type;         /* MdlType */
    int since;        /* version class that brought it */
    int receives;
    int drives;
    int floats;   /* has a high-impedance state */
    int pullup;   /* MdlNeed */
    int pulldown; /* MdlNeed */
    int ramp;     /* MdlNeed */
    int group;    /* MdlGroup */
    int ecl;      /* pulldown voltages count from the pullup reference */
    int differential;
    int hasDefaults; /* Vinl and Vinh below are assumed when the file gives none */
    double Vinl;
    double Vinh;
} MdlTypeInfo;

typedef enum MdlPolarity { MDL_POLARITY_UNSET, MDL_NON_INVERTING, MDL_INVERTING } MdlPolarity;
typedef enum MdlEnable { MDL_ENABLE_UNSET, MDL_ACTIVE_HIGH, MDL_ACTIVE_LOW } MdlEnable;

struct Mdl {
    Mdl* next;
    char name[MDL_NAME_MAX + 1];
    unsigned long line; /* of its keyword */
    int type;           /* MdlType */
    int polarity;       /* MdlPolarity */
    int enable;         /* MdlEnable */
    RngSingle Vinl;     /* volt */
    RngSingle Vinh;
    RngSingle Vmeas;
    RngSingle Cref; /* farad */
    RngSingle Rref; /* ohm */
    RngSingle Vref; /* volt */
    RngSingle Rref_diff;
    RngSingle Cref_diff;
    RngRange* C_comp; /* farad */
    RngRange* C_comp_pullup;
    RngRange* C_comp_pulldown;
    RngRange* C_comp_power_clamp;
    RngRange* C_comp_gnd_clamp;
    RngRange* temperature;  /* degree Celsius */
    RngRange* voltageRange; /* volt */
    RngRange* pullupRef;
    RngRange* pulldownRef;
    RngRange* powerClampRef;
    RngRange* gndClampRef;
    RngRange* externalRef;
    RngRange* TTgnd; /* second */
    RngRange* TTpower;
    RngRange* Rgnd; /* ohm */
    RngRange* Rpower;
    RngRange* Rac;
    RngRange* Cac; /* farad */
    Vitbl* pulldown;
    Vitbl* pullup;
    Vitbl* gndClamp;
    Vitbl* powerClamp;
    Vitbl* issoPD;
    Vitbl* issoPU;
    Ramp* ramp;
    Wvfrm* rising; /* list, file order */
    Wvfrm* falling;
    MdlSpec* spec;
    RcvTh* thresholds;
    DrvSh* schedule; /* list, file order */
    AddSub* addSubs; /* list, newest first */
    SerEl* series[SEREL_STATES];
    Ext* external;
    AlgMod* algMod;
    MdlEmi* emi;
    /* A bit (code - KEY_EXTERNAL_MODEL) for each keyword that occurred, and for each of these that
     * was reported as not allowed for the Model_type. */
    unsigned long long found;
    unsigned long long refused;
};

/* 1 when the keyword occurred in the model, readable or not; codes 30-73. */
int MDL_Found(const Mdl* model, int code);
/* 1 when it was reported as not allowed for the Model_type. */
int MDL_Refused(const Mdl* model, int code);

/* The row of a type, or null for MDL_TYPE_UNSET and numbers that are no type. */
const MdlTypeInfo* MDL_TypeInfo(int type);
/* The row whose name is the word, exactly; failing that, ignoring case; else null. */
const MdlTypeInfo* MDL_TypeByName(const char* name);

typedef enum MdlRef {
    MDL_REF_PULLUP,
    MDL_REF_PULLDOWN,
    MDL_REF_POWER_CLAMP,
    MDL_REF_GND_CLAMP
} MdlRef;

/* The reference voltage of a table in a corner (RngCorner): its own keyword, else [Voltage Range]
 * for pullup and POWER clamp and 0 V for pulldown and GND clamp. A corner that is NA or absent
 * takes the typ value of the same keyword. 1 found and stored, 0 not: no source, *out unchanged. */
int MDL_RefVoltage(const Mdl* model, int which, int corner, double* out);

int MDL_Init(void);
int MDL_ReceiveLine(int kind, int code, char* line);
int MDL_Fini(int nextCode);
void MDL_FreeList(Mdl* head); /* null is ignored */
int MDL_AddLink(Mdl** head, Mdl* item);
/* By exact name; null when absent. Linear: many look-ups go through an index of their own. */
Mdl* MDL_FindByName(const Mdl* head, const char* name);
/* Closes the record that the file left open, its end-of-record checks included. */
void MDL_Close(void);

/* Every added submodel is defined and every submodel is added. */
int MDL_TestSubMdlReferences(const Mdl* models, const SubMdl* submodels);
/* The mode of every added submodel suits the model. Either list may be null. */
int MDL_TestSubMdls(const Mdl* models, const SubMdl* submodels);
/* Every model is used by a pin, selector, series pin, schedule or test. */
int MDL_TestMdlReference(const Mdl* models);

IBIS_END_DECLS

#endif
