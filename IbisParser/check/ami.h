// The rules that the tree of an AMI parameter file must keep.
#ifndef IBISPARSER_CHECK_AMI_H
#define IBISPARSER_CHECK_AMI_H

#include "IbisParser/amitree.h"

void AMICHECK_Tree(const _tagTreeStruct* tree);
// Parses and checks the text of the parameter file last read and releases the text. Null when there
// is no tree.
_tagTreeStruct* AMICHECK_Parameters();
// Releases that text unread.
void AMICHECK_FreeText();

#endif
