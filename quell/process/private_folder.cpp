// A temporary folder that only this user can enter.
#include "quell/process/private_folder.h"

#include <stdlib.h>

#include <cerrno>
#include <cstring>

#include "quell/base/errors.h"

namespace quell {

PrivateFolder::PrivateFolder()
{
    std::error_code error;
    const std::filesystem::path parent = std::filesystem::temp_directory_path(error);
    if (error) throw InputError("no folder for temporary files: " + error.message());
    std::string name = (std::filesystem::absolute(parent) / "quell-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) throw InputError(name, 0, std::strerror(errno));
    m_Path = name;
}

PrivateFolder::~PrivateFolder()
{
    std::error_code error;
    std::filesystem::remove_all(m_Path, error);
}

}  // namespace quell
