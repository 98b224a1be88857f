/* [External Circuit], and [External Model] of a model: behaviour outside the file. */
#ifndef IBISPARSER_EXT_H
#define IBISPARSER_EXT_H

#include "IbisParser/ibis.h"
#include "IbisParser/rng.h"
#include "IbisParser/sizes.h"

IBIS_BEGIN_DECLS

typedef enum ExtLanguage {
    LANGUAGE_UNSET = 0,
    LANGUAGE_SPICE = 1,
    LANGUAGE_VHDL_AMS = 2,
    LANGUAGE_VERILOG_AMS = 3,
    LANGUAGE_VHDL_A = 4,
    LANGUAGE_VERILOG_A = 5
} ExtLanguage;

typedef struct ExtCornerRow ExtCornerRow;
struct ExtCornerRow {
    ExtCornerRow* next; /* file order */
    int corner;         /* RngCorner */
    char* file;         /* owned, as circuit */
    char* circuit;
};

/* A name under Ports or Parameters. */
typedef struct ExtName ExtName;
struct ExtName {
    ExtName* next;      /* file order */
    ExtName* nextWired; /* see Ext */
    char name[SIZE_NAME + 1];
    char* longName; /* the whole name when it is longer than that; else null */
};

/* A D_to_A or A_to_D line. */
typedef struct ExtConversion ExtConversion;
struct ExtConversion {
    ExtConversion* next; /* file order */
    int toAnalog;        /* 1 D_to_A, 0 A_to_D */
    char digital[SIZE_NAME + 1];
    char port1[SIZE_NAME + 1];
    char port2[SIZE_NAME + 1];
    double vlow;  /* volt */
    double vhigh; /* volt */
    double trise; /* second, D_to_A only */
    double tfall; /* second, D_to_A only */
    int corner;   /* RngCorner */
    unsigned long line;
};

struct Ext {
    Ext* next;
    char name[SIZE_NAME + 1]; /* of the circuit, or of the model */
    unsigned long line;
    int language; /* ExtLanguage */
    ExtCornerRow* corners;
    ExtName* parameters;
    ExtName* ports;
    ExtConversion* conversions;
    ExtName* wired; /* the ports that a call wires to the die, by nextWired; from EXT_FindWired */
    int ended;      /* its end keyword came */
    struct IdxTable* portIndex; /* ports by name */
};

int EXT_CIR_Init(void);
int EXT_ReceiveLine(int kind, int code, char* line);
void EXT_FreeList(Ext* head);
int EXT_AddLink(Ext** head, Ext* item);
Ext* EXT_FindByName(Ext* head, const char* name);
/* 1 when the circuit lists the port. */
int EXT_HasPort(const Ext* item, const char* port);
/* Finds the ports of a circuit that are neither digital nor behind a conversion. */
void EXT_FindWired(Ext* item);
/* 3600, 3408, 3418 and 3718 over the circuits of a file. */
int EXT_TestList(Ext* externals, const Cmpnt* components);

/* [External Model]. line is the text after the keyword or the data line. */
int EXT_MdlNew(Mdl* model, const char* line);
int EXT_MdlReceiveLine(Mdl* model, const char* line);
int EXT_MdlEnd(Mdl* model, const char* line);
/* Before a known keyword of any section other than the block's end, and at the end of the record:
 * an open block is error 3440 and is finished. */
int EXT_MdlFini(Mdl* model);
/* The files of the model's block exist (3418); A_extref needs [External Reference] (3447), which
 * may stand after the block. */
int EXT_MdlTest(const Mdl* model);
void EXT_Free(Ext* item);

IBIS_END_DECLS

#endif
