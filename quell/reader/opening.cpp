// How a file comes before the reader of the parser library.
#include "quell/reader/opening.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "IbisParser/parse.h"
#include "quell/base/errors.h"
#include "quell/base/file_pointer.h"
#include "quell/reader/version.h"

namespace quell {

namespace {

[[noreturn]] void Fail(const std::string& file)
{
    throw InputError(file, 0, std::strerror(errno));
}

// False when there is no version to be replaced.
bool Copy(const Opening& opening, const std::string& target)
{
    const FilePointer from = OpenFile(opening.path, "rbe");
    if (!from) Fail(opening.name);
    const std::optional<VersionPlace> place = FindVersion(from.get());
    if (!place) return false;
    FilePointer to = OpenFile(target, "wbxe");
    if (!to || !CopyWithVersion(from.get(), to.get(), *place, opening.version) ||
        std::fclose(to.release()) != 0)
        Fail(target);
    return true;
}

// The file under a legal name in its private folder.
void Place(const Opening& opening, const std::string& legalName)
{
    const std::string target = (opening.folder / legalName).string();
    const bool copied =
        !opening.version.empty() && opening.type != FILE_AMI && Copy(opening, target);
    if (copied) return;
    const std::string source = std::filesystem::absolute(opening.path).string();
    if (symlink(source.c_str(), target.c_str()) != 0) Fail(target);
}

// The library's own idea of the file: a name, and a folder with its "/".
void SetOwnName(const std::string& name)
{
    std::string folder = FolderOf(name);
    if (folder.size() > CMN_PATH_MAX / 2) {
        // Leaves room for the names of companions.
        if (chdir(folder.c_str()) != 0) Fail(name);
        folder.clear();
    }
    CMN_strncpy(gsFilePath_ibs, folder.c_str(), CMN_PATH_MAX);
    CMN_strncpy(gsFileName, BaseName(name).c_str(), CMN_PATH_MAX);
}

}  // namespace

bool NeedsOtherName(const Opening& opening)
{
    const std::string base = BaseName(opening.name);
    return opening.path != opening.name || !opening.version.empty() ||
           LegalName(base, opening.type) != base || opening.path.size() > CMN_PATH_MAX / 2;
}

bool ParseOpened(const Opening& opening)
{
    if (opening.folder.empty()) return PARSE(opening.path.c_str(), opening.type) != 0;
    const std::string legalName = LegalName(BaseName(opening.name), opening.type);
    Place(opening, legalName);
    const int here = open(".", O_PATH | O_DIRECTORY | O_CLOEXEC);
    if (here < 0 || chdir(opening.folder.c_str()) != 0) Fail(opening.folder.string());
    const bool parsed = PARSE(legalName.c_str(), opening.type) != 0;
    if (fchdir(here) != 0) Fail(".");
    close(here);
    SetOwnName(opening.name);
    return parsed;
}

}  // namespace quell
