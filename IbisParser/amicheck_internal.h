// The rules that the tree of an AMI parameter file must keep.
#ifndef IBISPARSER_AMICHECK_INTERNAL_H
#define IBISPARSER_AMICHECK_INTERNAL_H

#include "IbisParser/amitree.h"

void AMICHECK_Tree(const _tagTreeStruct* tree);

#endif
