// What the lines of V-I, V-T and I-T tables share: a first column and three corners.
#ifndef IBISPARSER_READ_MODEL_TABLE_H
#define IBISPARSER_READ_MODEL_TABLE_H

#include "IbisParser/cmn.h"
#include "IbisParser/rngp.h"

enum { TABLE_COLUMNS = 4, TABLE_MIN_POINTS = 2 };

// 1 when the first item of a line can be the first cell of a table line: a number or NA.
int TABLE_BeginsWithCell(const char* text);
int TABLE_CountItems(const char* text);
// The first item of a line, for messages.
struct TableItem {
    char text[CMN_PATH_MAX + 1];
};
TableItem TABLE_FirstItem(const char* text);
// The last line of a table that has lines.
const RngpLine* TABLE_Tail(const RngpLine* head);
// 1 when the corner has a number in some line from head but NA in the first or last.
int TABLE_EndIsNA(const RngpLine* head, const RngpLine* tail, int corner);
// Releases the RngpList of a table whose lines were read, but not its lines. Null is ignored.
void TABLE_EndReading(void** reading);

#endif
