// The parts of a component's check against the document.
#ifndef IBISPARSER_CHECK_COMPONENT_H
#define IBISPARSER_CHECK_COMPONENT_H

#include "IbisParser/check/companions.h"
#include "IbisParser/check/names.h"
#include "IbisParser/cmpnt.h"
#include "IbisParser/ext.h"

void PINMAP_Test(const Cmpnt* component, const CmpntNames& names);
void DIFFPIN_Test(const Cmpnt* component, const CmpntNames& names);
void SERMAP_Test(const Cmpnt* component, const CmpntNames& names);
void APKG_Test(const Cmpnt* component, PkgFinder* finder);
// True when the package model that the component names is found, or it names none.
bool PACKAGE_Test(const Cmpnt* component, PkgFinder* finder);
void CIRCUIT_Test(const Cmpnt* component, const SecNameIndex<const Ext>& externals);

#endif
