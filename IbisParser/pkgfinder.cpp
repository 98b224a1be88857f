// Finds package models: in the document, else in a package file that has the model's name in lower
// case and stands beside the file being checked.
#include "IbisParser/cmpnt_internal.h"
#include "IbisParser/errlog.h"

static const char s_Module[] = "IbisParser/pkgfinder";

// A package file that was looked for.
struct PkgFile {
    PkgFile* next;
    char name[SIZE_NAME + 5];
    int wasFound;
    PkgMdl* packages;
};

struct PkgFinder {
    IdxTable document;  // its package models by name
    PkgFile* files;
    IdxTable fileIndex;
};

// What reading another file changes.
struct ReadingState {
    unsigned long lineNum;
    int fileVersion;
    FileType fileType;
    KeywordCode keyword;
    char comment;
    int isEndFound;
    char fileName[CMN_PATH_MAX + 1];
    char path[CMN_PATH_MAX + 1];
};

static void s_save(ReadingState* state)
{
    *state = {
        gulLineNum, geFileVersion, geCurrFileType, geCurrentKeyword, gpcComment, gbEndFound, {},
        {}};
    std::memcpy(state->fileName, gsFileName, sizeof gsFileName);
    std::memcpy(state->path, gsFilePath_ibs, sizeof gsFilePath_ibs);
}

static void s_restore(const ReadingState* state)
{
    gulLineNum = state->lineNum;
    geFileVersion = state->fileVersion;
    geCurrFileType = state->fileType;
    geCurrentKeyword = state->keyword;
    gpcComment = state->comment;
    gbEndFound = state->isEndFound;
    std::memcpy(gsFileName, state->fileName, sizeof gsFileName);
    std::memcpy(gsFilePath_ibs, state->path, sizeof gsFilePath_ibs);
}

// Reads the file into a document of its own and keeps the package models.
static void s_readFile(PkgFile* file)
{
    char path[CMN_PATH_MAX + sizeof file->name];
    CMN_GetIbsPath(path);
    if (std::strlen(path) + std::strlen(file->name) >= CMN_PATH_MAX) return;
    std::strcat(path, file->name);
    std::FILE* stream = CMN_fopen(path, "r");
    if (stream == nullptr) return;
    std::fclose(stream);
    file->wasFound = 1;
    IbisRoot* root = nullptr;
    if (!IBIS_New() || !IBIS_GetIBIS(&root)) return;
    ReadingState state;
    s_save(&state);
    PARSE(path, FILE_PKG);
    file->packages = root->pkgMdls;
    root->pkgMdls = nullptr;
    IBIS_Free(root);
    s_restore(&state);
}

// Blanks become "_", letters lower case.
static void s_makeFileName(char* fileName, const char* name)
{
    CMN_strncpy(fileName, name, SIZE_NAME);
    for (char* c = fileName; *c != '\0'; ++c)
        if (*c == ' ' || *c == '\t') *c = '_';
    CMN_ConvertToLower(fileName);
    std::strcat(fileName, ".pkg");
}

static PkgFile* s_file(PkgFinder* finder, const char* fileName)
{
    PkgFile* file = static_cast<PkgFile*>(IDX_FindName(&finder->fileIndex, fileName));
    if (file != nullptr) return file;
    file = static_cast<PkgFile*>(SEC_NewPart(1908, s_Module, __LINE__, sizeof(PkgFile)));
    if (file == nullptr) return nullptr;
    CMN_strncpy(file->name, fileName, sizeof file->name - 1);
    SEC_AddLink(&finder->files, file);
    void** value = nullptr;
    if (IDX_SlotName(&finder->fileIndex, file->name, &value)) *value = file;
    // A name with a folder in it would leave the folder of the file.
    if (std::strchr(fileName, '/') == nullptr) s_readFile(file);
    return file;
}

PkgFinder* PKGFINDER_New(const PkgMdl* packages)
{
    PkgFinder* finder =
        static_cast<PkgFinder*>(SEC_NewPart(1908, s_Module, __LINE__, sizeof(PkgFinder)));
    for (; finder != nullptr && packages != nullptr; packages = packages->next) {
        void** value = nullptr;
        if (IDX_SlotName(&finder->document, packages->name, &value) && *value == nullptr)
            *value = const_cast<PkgMdl*>(packages);
    }
    return finder;
}

void PKGFINDER_Free(PkgFinder* finder)
{
    if (finder == nullptr) return;
    SEC_FreeList(finder->files, [](PkgFile* file) {
        PKGMDL_FreeList(file->packages);
        SEC_FreeRecord(file);
    });
    IDX_Clear(&finder->fileIndex);
    IDX_Clear(&finder->document);
    SEC_FreeRecord(finder);
}

PkgPlace PKGFINDER_Find(PkgFinder* finder, const char* name)
{
    PkgPlace place = {PKG_NO_FILE, nullptr, ""};
    place.package = static_cast<const PkgMdl*>(IDX_FindName(&finder->document, name));
    if (place.package != nullptr) {
        place.where = PKG_FOUND;
        return place;
    }
    s_makeFileName(place.fileName, name);
    const PkgFile* file = s_file(finder, place.fileName);
    if (file == nullptr || !file->wasFound) return place;
    place.package = PKGMDL_FindByName(file->packages, name);
    place.where = place.package != nullptr ? PKG_FOUND : PKG_NOT_IN_FILE;
    return place;
}
