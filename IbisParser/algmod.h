/* [Algorithmic Model] blocks, and the checks of the code and parameter files that they name. */
#ifndef IBISPARSER_ALGMOD_H
#define IBISPARSER_ALGMOD_H

#include "IbisParser/amitree.h"
#include "IbisParser/ibis.h"

IBIS_BEGIN_DECLS

enum { ALGMOD_NAME_MAX = 44 };

/* One Executable line. */
typedef struct AlgModExec AlgModExec;
struct AlgModExec {
    AlgModExec* next; /* newest first */
    char platform[ALGMOD_NAME_MAX + 1];
    char compiler[ALGMOD_NAME_MAX + 1];
    int bits; /* -1 until parsed */
    char codeFile[ALGMOD_NAME_MAX + 1];
    char parameterFile[ALGMOD_NAME_MAX + 1];
    _tagTreeStruct* tree; /* of the parameter file; set by ALGMOD_Test */
};

typedef struct AlgMod AlgMod;
struct AlgMod {
    AlgModExec* execs;
};

/* The keyword line of a block; *slot is the model's record, replaced when there is one. */
int ALGMOD_New(char* line, AlgMod** slot);
/* A data line of the block; *head is the record's list. */
int ALGMOD_ReceiveLine(char* line, AlgModExec** head);
/* The end of the block. */
int ALGMOD_Fini(AlgModExec* head);
void ALGMOD_Free(AlgMod* record); /* null is ignored */

/* Checks that the files named by the blocks of all models exist, and the parameter files' rules. */
int ALGMOD_Test(Mdl* models);
/* Checks the parameter file last read by PARSE and releases its text. */
int AMI_Test(void);

IBIS_END_DECLS

#endif
