// How a file comes before the reader of the parser library.
#include "quell/reader/opening.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <memory>

#include "IbisParser/parse.h"
#include "quell/base/errors.h"
#include "quell/reader/version.h"

namespace quell {

namespace {

using File = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

[[noreturn]] void Fail(const std::string& file)
{
    throw InputError(file, 0, std::strerror(errno));
}

// False when there is no version to be replaced.
bool Copy(const Opening& opening, const std::string& target)
{
    const File from(std::fopen(opening.path.c_str(), "rbe"), std::fclose);
    if (!from) Fail(opening.name);
    const std::optional<VersionPlace> place = FindVersion(from.get());
    if (!place) return false;
    File to(std::fopen(target.c_str(), "wbxe"), std::fclose);
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

std::string WhyNotReadable(const std::string& path, unsigned long long& size)
{
    std::error_code error;
    const std::filesystem::file_status status = std::filesystem::status(path, error);
    if (status.type() == std::filesystem::file_type::not_found) return "no such file";
    if (error) return error.message();
    if (!std::filesystem::is_regular_file(status)) return "not a regular file";
    if (access(path.c_str(), R_OK) != 0) return std::strerror(errno);
    size = std::filesystem::file_size(path, error);
    return error ? error.message() : "";
}

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
