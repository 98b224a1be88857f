// Runs the built command as a user does, and files for it.
#ifndef TESTS_QUELL_COMMAND_H
#define TESTS_QUELL_COMMAND_H

#include <filesystem>
#include <string>

struct CommandResult {
    int exitCode = -1;  // 128 + signal when a signal ended it
    std::string out;
    std::string err;
};

// Runs build/bin/quell with the arguments as a shell takes them, with a file as standard input.
CommandResult RunQuell(const std::string& arguments, const std::string& input = "/dev/null");

std::string ReadFile(const std::filesystem::path& path);

// A folder of its own for one test, removed at the end.
class ScratchFolder {
public:
    ScratchFolder();
    ~ScratchFolder();
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    std::string Path(const std::string& name) const { return (m_Folder / name).string(); }
    // Writes a file and returns its path.
    std::string Write(const std::string& name, const std::string& text) const;

private:
    std::filesystem::path m_Folder;
};

#endif
