/* [Reference Designator Map] of a board: which component or board each designator stands for. */
#ifndef IBISPARSER_REFDES_H
#define IBISPARSER_REFDES_H

#include "IbisParser/ibis.h"
#include "IbisParser/sizes.h"

IBIS_BEGIN_DECLS

typedef struct RefDes RefDes;
struct RefDes {
    RefDes* next; /* file order */
    char name[SIZE_REFDES + 1];
    unsigned long line;
    int index;                     /* place in the map from 0 */
    char* file;                    /* owned; in the folder of the board file */
    char component[SIZE_NAME + 1]; /* component or board of that file */
};

int REFDES_ReceiveLine(EbdMdl* board, char* line);
/* The row of the designator, or null. */
RefDes* REFDES_Find(const EbdMdl* board, const char* name);
/* Of every board: designators that no path uses, and files that do not exist. With deep non-zero
 * each file is read once, board files of it as well down to eight levels, and the components,
 * boards and pins that the designators and nodes name are looked up. */
int REFDES_Test(const EbdMdl* boards, int deep);
void REFDES_FreeList(RefDes* head);

IBIS_END_DECLS

#endif
