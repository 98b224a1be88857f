/* Package models: [Define Package Model] in component and package files. A package is described
 * either by sections for each pin or by matrices over all pins. */
#ifndef IBISPARSER_PKGMDL_H
#define IBISPARSER_PKGMDL_H

#include "IbisParser/ibis.h"
#include "IbisParser/mtx.h"
#include "IbisParser/sect.h"
#include "IbisParser/sizes.h"

IBIS_BEGIN_DECLS

typedef struct PkgPin PkgPin;
struct PkgPin {
    PkgPin* next;
    char name[SIZE_PIN + 1];
    char* longName; /* the whole name when it is longer than that; else null */
    unsigned long line;
    int index;     /* place in [Pin Numbers] from 0, which is its row of the matrices */
    SectPath path; /* empty when the package is described by matrices */
};

struct IdxTable;

struct PkgMdl {
    PkgMdl* next;
    char name[SIZE_NAME + 1];
    unsigned long line;
    char manufacturer[SIZE_NAME + 1];
    char oem[SIZE_NAME + 1];
    char description[SIZE_DESCRIPTION + 1];
    int numberOfSections; /* -1 when not given */
    int numberOfPins;     /* as declared; -1 when not given */
    PkgPin* pins;         /* file order */
    PkgPin* lastPin;
    int pinCount;
    struct IdxTable* pinIndex;
    Mtx* resistance;
    Mtx* inductance;
    Mtx* capacitance;
    Mtx* reading;      /* matrix being read, one of the three, or null */
    int skipMatrix;    /* the matrix being read is not kept */
    int modelDataOpen; /* between [Model Data] and [End Model Data] */
    int ended;         /* [End Package Model] was read */
    unsigned found;    /* bit (code - 74) of each keyword met */
    unsigned reported; /* mistakes that are reported once */
};

int PKGMDL_Init(void);
int PKGMDL_ReceiveLine(int kind, int code, char* line);
int PKGMDL_Fini(int nextCode);
void PKGMDL_FreeList(PkgMdl* head);
int PKGMDL_AddLink(PkgMdl** head, PkgMdl* item);
PkgMdl* PKGMDL_FindByName(PkgMdl* head, const char* name);
/* The pin of that name under [Pin Numbers], or null. */
PkgPin* PKGMDL_FindPin(const PkgMdl* package, const char* name);
int PKGMDL_HasPin(const PkgMdl* package, const char* name);
/* The record being read, or null. */
PkgMdl* PKGMDL_GetOpen(void);
/* Closes the record that the file left open, its end-of-record checks included. */
void PKGMDL_Close(void);
/* Names that occur twice and, in component files, package models that no component uses. */
int PKGMDL_TestList(PkgMdl* packages);

IBIS_END_DECLS

#endif
