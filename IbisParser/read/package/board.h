// What the checks of boards ask of their records.
#ifndef IBISPARSER_READ_PACKAGE_BOARD_H
#define IBISPARSER_READ_PACKAGE_BOARD_H

#include "IbisParser/ebdmdl.h"

// The board has pins, but none of them carries a signal.
bool EBDMDL_HasNoSignal(const EbdMdl* board);
// The FileType that a reference designator names by its file's extension; 0 for any other.
int REFDES_FileType(const char* name);

#endif
