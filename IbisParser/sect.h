/* The path language of package pins and board paths: sections of transmission line or lumped
 * elements, forks, and on boards the pins and nodes that they connect. */
#ifndef IBISPARSER_SECT_H
#define IBISPARSER_SECT_H

#include "IbisParser/rng.h"
#include "IbisParser/sizes.h"

IBIS_BEGIN_DECLS

typedef enum SectKind {
    SECT_SECTION = 1,
    SECT_FORK = 2,
    SECT_ENDFORK = 3,
    SECT_PIN = 4,
    SECT_NODE = 5
} SectKind;

typedef struct SectItem SectItem;
struct SectItem {
    SectItem* next;
    int kind;  /* SectKind */
    int depth; /* open forks around the item, 0 on the trunk */
    /* Section: Len in no fixed unit; L, R, C (henry, ohm, farad) per unit of Len, or totals when
     * Len is 0. What was not given is 0. */
    RngSingle Len;
    RngSingle L;
    RngSingle R;
    RngSingle C;
    char text[SIZE_NAME + 1]; /* pin, or node "refdes.pin" */
    unsigned long line;
};

typedef enum SectOwner { SECT_PACKAGE_PIN = 0, SECT_BOARD_PATH = 1 } SectOwner;

/* Items in file order. All zero is an empty path. */
typedef struct SectPath {
    SectItem* head;
    SectItem* tail;
    int count;        /* sections, those inside forks included */
    int depth;        /* forks open */
    int owner;        /* SectOwner */
    SectItem* open;   /* section that waits for its "/"; not in the list yet */
    const char* name; /* of the owner, for messages; kept by the owner */
} SectPath;

/* Begins a path of the named owner. */
int SECT_Begin(SectPath* path, int owner, const char* name);
/* Reads the items of one line, which may begin or end inside a section. */
int SECT_ReceiveLine(SectPath* path, char* text);
/* Ends the path: drops an unfinished section and checks forks and ends. */
int SECT_End(SectPath* path);
/* 1 when the text begins with a word of the path language and not with a name. */
int SECT_IsItem(const char* text);
/* Sections of the path, those inside forks included. */
int SECT_Count(const SectPath* path);
void SECT_FreeList(SectPath* path);

IBIS_END_DECLS

#endif
