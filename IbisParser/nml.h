/* Uniqueness of names in a list of records. */
#ifndef IBISPARSER_NML_H
#define IBISPARSER_NML_H

#include <stddef.h>

#include "IbisParser/linkage.h"

IBIS_BEGIN_DECLS

/* Error 3600 with kindText ("Component") for every record that repeats an earlier name. The list is
 * newest first; nameOffset is the place of a character array, nextOffset of the link. Empty names
 * are passed over. 1 when every name is unique. */
int NML_CheckUnique(const void* head, size_t nameOffset, size_t nextOffset, const char* kindText);

IBIS_END_DECLS

#endif
