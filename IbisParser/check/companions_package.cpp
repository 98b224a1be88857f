// Finds package models: in the document, else in the package files beside the file being checked.
// The file that has the model's name in lower case goes first; the others follow by the alphabet,
// and only their keyword lines are looked at before one of them is read.
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <new>

#include "IbisParser/base/position.h"
#include "IbisParser/base/raise.h"
#include "IbisParser/check/companions.h"
#include "IbisParser/parse.h"
#include "IbisParser/store/section.h"

static const char s_Module[] = "IbisParser/pkgfinder";

// A package file in the folder.
struct PkgFile {
    PkgFile* next;
    char* name;  // owned, without the folder
    bool wasFound;
    bool wasRead;
    PkgMdl* packages;
    IdxTable byName;  // of the packages
};

// A package model that a file defines, noted before the file is read.
struct PkgName {
    PkgName* next;
    char name[SIZE_NAME + 1];
    PkgFile* file;
};

// The path of a file in the folder; false when it is too long or no plain file (a pipe that nobody
// writes to would be waited for).
static bool s_path(const char* name, char path[CMN_PATH_MAX + 1])
{
    CMN_GetIbsPath(path);
    const std::size_t length = std::strlen(path);
    if (length + std::strlen(name) > CMN_PATH_MAX) return false;
    CMN_strncpy(path + length, name, CMN_PATH_MAX - length);
    std::error_code error;
    return std::filesystem::is_regular_file(path, error);
}

// Of equal names the first in the list answers.
static void s_index(IdxTable* index, const PkgMdl* packages)
{
    for (; packages != nullptr; packages = packages->next) {
        void** value = nullptr;
        if (IDX_SlotName(index, packages->name, &value) && *value == nullptr)
            *value = const_cast<PkgMdl*>(packages);
    }
}

// Reads the file into a document of its own and keeps the package models.
static void s_readFile(PkgFile* file)
{
    char path[CMN_PATH_MAX + 1];
    IbisRoot* root = nullptr;
    if (file->wasRead || !s_path(file->name, path)) return;
    file->wasRead = true;
    if (!IBIS_New() || !IBIS_GetIBIS(&root)) return;
    const PositionKeeper position;
    PARSE(path, FILE_PKG);
    PKGMDL_Close();
    file->packages = root->pkgMdls;
    root->pkgMdls = nullptr;
    IBIS_Free(root);
    s_index(&file->byName, file->packages);
}

static void s_free(PkgFile* file)
{
    PKGMDL_FreeList(file->packages);
    IDX_Clear(&file->byName);
    SEC_FreeText(&file->name);
    SEC_FreeRecord(file);
}

// The record of a file name, made at its first use; null without memory.
static PkgFile* s_file(PkgFinder* finder, const char* name)
{
    PkgFile* file = static_cast<PkgFile*>(IDX_FindName(&finder->fileIndex, name));
    if (file != nullptr) return file;
    file = static_cast<PkgFile*>(SEC_NewPart(1908, s_Module, __LINE__, sizeof(PkgFile)));
    if (file == nullptr) return nullptr;
    void** value = nullptr;
    file->name = CMN_StrMake(name);
    if (file->name == nullptr || !IDX_SlotName(&finder->fileIndex, file->name, &value)) {
        s_free(file);
        return nullptr;
    }
    *value = file;
    SEC_AddLink(&finder->files, file);
    char path[CMN_PATH_MAX + 1];
    // A name with a folder in it would leave the folder of the file.
    file->wasFound = std::strchr(name, '/') == nullptr && s_path(name, path);
    return file;
}

static void s_addName(PkgFinder* finder, PkgFile* file, const char* text)
{
    PkgName* name = static_cast<PkgName*>(SEC_NewPart(1908, s_Module, __LINE__, sizeof(PkgName)));
    if (name == nullptr) return;
    name->file = file;
    SEC_CopyName(name->name, text, SIZE_NAME);
    SEC_AddLink(&finder->names, name);
    void** value = nullptr;
    if (IDX_SlotName(&finder->nameIndex, name->name, &value) && *value == nullptr) *value = name;
}

static void s_scanLine(PkgFinder* finder, PkgFile* file, char* line, char* comment)
{
    char* end = line[0] == '[' ? std::strchr(line, ']') : nullptr;
    if (end == nullptr) return;
    char* text = SEC_Argument(line);
    *end = '\0';
    if (CMN_MatchKeyword("COMMENT_CHAR", line + 1) && *text != '\0') *comment = *text;
    if (!CMN_MatchKeyword("DEFINE_PACKAGE_MODEL", line + 1)) return;
    const char comments[] = {*comment, '\0'};
    text[std::strcspn(text, comments)] = '\0';
    CMN_TerminateEnd(text);
    s_addName(finder, file, text);
}

// Notes what the file defines.
static void s_scanFile(PkgFinder* finder, PkgFile* file)
{
    char line[CMN_PATH_MAX + 1];
    std::FILE* stream = s_path(file->name, line) ? CMN_fopen(line, "r") : nullptr;
    if (stream == nullptr) return;
    char comment = '|';
    bool isStart = true;  // of a line; longer ones come in pieces
    while (std::fgets(line, sizeof line, stream) != nullptr) {
        const bool isLast = std::strchr(line, '\n') != nullptr;
        if (isStart) s_scanLine(finder, file, line, &comment);
        isStart = isLast;
    }
    std::fclose(stream);
}

// The names of the package files in a folder, each owned by the list.
struct PkgFolder {
    char** names;
    std::size_t count;
    std::size_t room;
};

static int s_addToFolder(PkgFolder* folder, const char* name)
{
    if (folder->count == folder->room) {
        void* block = folder->names;
        folder->room = 2 * folder->room + 16;
        const std::size_t size = folder->room * sizeof(char*);
        if (block == nullptr ? !CMN_malloc(&block, size) : !CMN_realloc(&block, size)) return 0;
        folder->names = static_cast<char**>(block);
    }
    char* copy = CMN_StrMake(name);
    if (copy != nullptr) folder->names[folder->count++] = copy;
    return copy != nullptr;
}

static void s_listFolder(PkgFolder* folder)
{
    char path[CMN_PATH_MAX + 1];
    CMN_GetIbsPath(path);
    std::error_code error;
    std::filesystem::directory_iterator entry(*path != '\0' ? path : ".", error);
    for (; !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
        const std::filesystem::path name = entry->path().filename();
        if (CMN_StrSameIC(name.extension().c_str(), ".pkg") && !s_addToFolder(folder, name.c_str()))
            return;
    }
}

static void s_scanFolder(PkgFinder* finder)
{
    finder->wasScanned = true;
    PkgFolder folder = {nullptr, 0, 0};
    try {
        s_listFolder(&folder);
    } catch (const std::bad_alloc&) {
        ERRLOG_BugNew(1908, s_Module, __LINE__);
    }
    std::sort(folder.names, folder.names + folder.count,
              [](const char* a, const char* b) { return std::strcmp(a, b) < 0; });
    for (std::size_t i = 0; i < folder.count; ++i) {
        PkgFile* file = s_file(finder, folder.names[i]);
        if (file != nullptr) s_scanFile(finder, file);
        SEC_FreeText(&folder.names[i]);
    }
    if (folder.names != nullptr) SEC_FreeRecord(folder.names);
}

// Blanks become "_", letters lower case.
static void s_makeFileName(char (&fileName)[sizeof PkgPlace::fileName], const char* name)
{
    std::snprintf(fileName, sizeof fileName, "%.*s.pkg", static_cast<int>(SIZE_NAME), name);
    for (char* c = fileName; *c != '\0'; ++c)
        if (*c == ' ' || *c == '\t') *c = '_';
    CMN_ConvertToLower(fileName);
}

static const PkgMdl* s_inFile(PkgFile* file, const char* name)
{
    if (file == nullptr || !file->wasFound) return nullptr;
    s_readFile(file);
    return static_cast<const PkgMdl*>(IDX_FindName(&file->byName, name));
}

PkgFinder::PkgFinder(const PkgMdl* packages)
{
    s_index(&document, packages);
}

PkgFinder::~PkgFinder()
{
    SEC_FreeList(files, s_free);
    SEC_FreeList(names, SEC_FreeRecord<PkgName>);
}

PkgPlace PKGFINDER_Find(PkgFinder* finder, const char* name)
{
    PkgPlace place = {PKG_FOUND, nullptr, ""};
    s_makeFileName(place.fileName, name);
    place.package = static_cast<const PkgMdl*>(IDX_FindName(&finder->document, name));
    if (place.package != nullptr) return place;
    PkgFile* file = s_file(finder, place.fileName);
    place.package = s_inFile(file, name);
    if (place.package != nullptr) return place;

    if (!finder->wasScanned) s_scanFolder(finder);
    const PkgName* noted = static_cast<PkgName*>(IDX_FindName(&finder->nameIndex, name));
    if (noted != nullptr) place.package = s_inFile(noted->file, name);
    if (place.package == nullptr)
        place.where = file != nullptr && file->wasFound ? PKG_NOT_IN_FILE : PKG_NO_FILE;
    return place;
}
