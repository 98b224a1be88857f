// Where the files that come with the command lie.
#include "quell/base/paths.h"

#include <filesystem>

namespace quell {

namespace {

constexpr const char* KitFolders[] = {"../kit", QUELL_INSTALLED_KIT};

}  // namespace

std::string KitFile(const std::string& name)
{
    std::error_code error;
    const std::filesystem::path folder =
        std::filesystem::read_symlink("/proc/self/exe", error).parent_path();
    std::filesystem::path first;
    for (const char* kit : KitFolders) {
        const std::filesystem::path file = (folder / kit / name).lexically_normal();
        if (std::filesystem::exists(file, error)) return file.string();
        if (first.empty()) first = file;
    }
    return first.string();
}

}  // namespace quell
