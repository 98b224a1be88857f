// The kinds of file that the reader knows, by their extensions.
#include "quell/reader/file_types.h"

#include "quell/base/lines.h"

namespace quell {

bool TypeOfName(const std::string& name, FileType& type)
{
    const size_t period = name.rfind('.');
    if (period == std::string::npos) return false;
    const std::string extension = Lower(name.substr(period + 1));
    for (const auto& row : FileTypes) {
        if (extension != row.first) continue;
        type = row.second;
        return true;
    }
    return false;
}

const char* TypeWord(FileType type)
{
    for (const auto& row : FileTypes)
        if (row.second == type) return row.first;
    return "";
}

std::string FolderOf(const std::string& path)
{
    return path.substr(0, path.size() - BaseName(path).size());
}

std::string BaseName(const std::string& path)
{
    const size_t slash = path.rfind('/');
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

std::string LegalName(const std::string& baseName, FileType type)
{
    FileType own = FILE_IBS;
    if (TypeOfName(baseName, own) && own == type) return baseName;
    std::string stem = baseName.substr(0, baseName.rfind('.'));
    // "tx.ibs.old" keeps the name that it had.
    if (TypeOfName(stem, own) && own == type) return stem;
    return (stem.empty() ? "file" : stem) + "." + TypeWord(type);
}

}  // namespace quell
