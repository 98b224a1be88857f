/* Plausibility of components. */
#ifndef IBISPARSER_CHKCMPNT_H
#define IBISPARSER_CHKCMPNT_H

#include "IbisParser/ibis.h"

IBIS_BEGIN_DECLS

int chk_CheckAllComponents(Cmpnt* components);

IBIS_END_DECLS

#endif
