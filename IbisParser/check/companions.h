// Files that stand beside the one being checked and are named by it.
#ifndef IBISPARSER_CHECK_COMPANIONS_H
#define IBISPARSER_CHECK_COMPANIONS_H

#include "IbisParser/pkgmdl.h"

// Where package models are looked for: the document, then a package file of the model's name. Each
// file is read once.
struct PkgFinder;
enum PkgWhere { PKG_NO_FILE, PKG_NOT_IN_FILE, PKG_FOUND };
struct PkgPlace {
    PkgWhere where;
    const PkgMdl* package;         // when found
    char fileName[SIZE_NAME + 5];  // of the package file, without its folder
};
PkgFinder* PKGFINDER_New(const PkgMdl* packages);
void PKGFINDER_Free(PkgFinder* finder);
PkgPlace PKGFINDER_Find(PkgFinder* finder, const char* name);

#endif
