/* Checks of models and submodels after a file was read: completeness by type, plausibility, and the
 * shape rules of every table. Lists are the store's, newest first; messages follow the file. */
#ifndef IBISPARSER_CHK_H
#define IBISPARSER_CHK_H

#include "IbisParser/ibis.h"

IBIS_BEGIN_DECLS

int chk_CheckAllModels(const Mdl* models);
int chk_CheckAllSubModels(const SubMdl* submodels);

IBIS_END_DECLS

#endif
