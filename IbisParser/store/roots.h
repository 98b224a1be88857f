// The documents in use.
#ifndef IBISPARSER_STORE_ROOTS_H
#define IBISPARSER_STORE_ROOTS_H

#include "IbisParser/ibis.h"

// Takes a root out of the list of documents; what it holds stays as it is.
void ROOTS_Unlink(const IbisRoot* root);

#endif
