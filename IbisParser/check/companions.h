// Files that stand beside the one being checked and are named by it.
#ifndef IBISPARSER_CHECK_COMPANIONS_H
#define IBISPARSER_CHECK_COMPANIONS_H

#include <cstdio>

#include "IbisParser/pkgmdl.h"
#include "IbisParser/store/section.h"

// Opens the companion of that name; null when there is none, or no plain file.
std::FILE* COMPANION_Open(const char* name);
bool COMPANION_Exists(const char* name);

enum PkgWhere { PKG_NO_FILE, PKG_NOT_IN_FILE, PKG_FOUND };
struct PkgPlace {
    PkgWhere where;
    const PkgMdl* package;         // when found
    char fileName[SIZE_NAME + 5];  // of the package file, without its folder
};

// Where package models are looked for: the document, then a package file of the model's name. Each
// file is read once.
struct PkgFile;
struct PkgName;
struct PkgFinder {
    explicit PkgFinder(const PkgMdl* packages);
    ~PkgFinder();
    PkgFinder(const PkgFinder&) = delete;
    PkgFinder& operator=(const PkgFinder&) = delete;

    SecScopedIndex document;  // its package models by name
    PkgFile* files = nullptr;
    SecScopedIndex fileIndex;
    bool wasScanned = false;   // the folder
    PkgName* names = nullptr;  // what the files of the folder define
    SecScopedIndex nameIndex;
};
PkgPlace PKGFINDER_Find(PkgFinder* finder, const char* name);

#endif
