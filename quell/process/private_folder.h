// A temporary folder that only this user can enter.
#ifndef QUELL_PROCESS_PRIVATE_FOLDER_H
#define QUELL_PROCESS_PRIVATE_FOLDER_H

#include <filesystem>
#include <string>

namespace quell {

class PrivateFolder {
public:
    // Throws CommandError when there is none to be had.
    PrivateFolder();
    // Removes it with what is in it.
    ~PrivateFolder();
    PrivateFolder(const PrivateFolder&) = delete;
    PrivateFolder& operator=(const PrivateFolder&) = delete;

    const std::filesystem::path& Path() const { return m_Path; }

private:
    std::filesystem::path m_Path;
};

}  // namespace quell

#endif
