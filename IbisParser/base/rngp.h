// Appending to a range table in constant time, for the sections that read long tables.
#ifndef IBISPARSER_BASE_RNGP_H
#define IBISPARSER_BASE_RNGP_H

#include "IbisParser/base/index.h"
#include "IbisParser/rngp.h"

// A range table while it is read. All zero is an empty one. head and count may be copied to the
// owner's record at any time; the lines belong to whoever releases the head.
struct RngpList {
    RngpLine* head;
    RngpLine* tail;
    int count;
    IdxTable firstColumn;  // first-column value to the number of lines that hold it
};

// As RNGP_LinkLine, without its walk. Returns the number of lines. A table whose lines are not
// always checked must not be checked later: lines linked without the check are not in the index.
int RNGP_Append(RngpList* list, RngpLine* line, int checkDuplicates);
// Releases what was needed for reading. The lines stay.
void RNGP_EndList(RngpList* list);

#endif
