// The rules that the tree of an AMI parameter file must keep.
#ifndef IBISPARSER_CHECK_AMI_H
#define IBISPARSER_CHECK_AMI_H

#include "IbisParser/amitree.h"

void AMICHECK_Tree(const _tagTreeStruct* tree);

#endif
