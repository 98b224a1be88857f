// The parameter tree of the file that was read last.
#ifndef IBISPARSER_READ_AMITREE_H
#define IBISPARSER_READ_AMITREE_H

#include "IbisParser/amitree.h"

// As GetParsedTree of gsBuffer, and the place in the file of each node's detail is remembered.
int AMITREE_ParseFile(_tagTreeStruct** out);

#endif
