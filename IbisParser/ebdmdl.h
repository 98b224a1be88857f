/* Board descriptions: [Begin Board Description] in board files. */
#ifndef IBISPARSER_EBDMDL_H
#define IBISPARSER_EBDMDL_H

#include "IbisParser/ibis.h"
#include "IbisParser/refdes.h"
#include "IbisParser/sect.h"
#include "IbisParser/sizes.h"

IBIS_BEGIN_DECLS

typedef enum EbdPinKind {
    EBDPIN_SIGNAL = 0,
    EBDPIN_SUPPLY = 1, /* the signal name begins with GND or POWER */
    EBDPIN_NC = 2
} EbdPinKind;

typedef struct EbdPath EbdPath;
struct EbdPath {
    EbdPath* next; /* file order */
    char name[SIZE_NAME + 1];
    unsigned long line;
    SectPath path;
};

typedef struct EbdPin EbdPin;
struct EbdPin {
    EbdPin* next; /* file order */
    char name[SIZE_BOARD_PIN + 1];
    char* longName; /* the whole name when it is longer than that; else null */
    char signal[SIZE_NAME + 1];
    unsigned long line;
    int kind;      /* EbdPinKind */
    EbdPath* path; /* first path that it is in, or null */
};

struct IdxTable;

struct EbdMdl {
    EbdMdl* next;
    char name[SIZE_NAME + 1];
    unsigned long line;
    char manufacturer[SIZE_NAME + 1];
    int numberOfPins; /* as declared; -1 when not given */
    EbdPin* pins;
    EbdPin* lastPin;
    int pinCount;
    struct IdxTable* pinIndex;
    EbdPath* paths;
    EbdPath* lastPath;
    struct IdxTable* pathIndex;
    RefDes* map;
    RefDes* lastRefDes;
    int refDesCount;
    struct IdxTable* refDesIndex;
    int ended;      /* [End Board Description] was read */
    unsigned found; /* bit (code - 89) of each keyword met */
};

int EBDMDL_Init(void);
int EBDMDL_ReceiveLine(int kind, int code, char* line);
int EBDMDL_Fini(int nextCode);
void EBDMDL_FreeList(EbdMdl* head);
int EBDMDL_AddLink(EbdMdl** head, EbdMdl* item);
EbdMdl* EBDMDL_FindByName(EbdMdl* head, const char* name);
/* The pin of that name under [Pin List], or null. */
EbdPin* EBDMDL_FindPin(const EbdMdl* board, const char* name);
/* Closes the record that the file left open, its end-of-record checks included. */
void EBDMDL_Close(void);
/* Checks what only the whole board shows. With deep non-zero the files that its reference
 * designators name are read as well. */
int EBDMDL_TestList(EbdMdl* boards, int deep);

IBIS_END_DECLS

#endif
