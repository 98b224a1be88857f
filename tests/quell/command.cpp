// Runs the built command as a user does, and files for it.
#include "tests/quell/command.h"

#include <sys/wait.h>

#include <cstdlib>
#include <fstream>
#include <sstream>

CommandResult RunQuell(const std::string& arguments, const std::string& input)
{
    const ScratchFolder scratch;
    const std::string line = QUELL_BINARY_DIR "/bin/quell " + arguments + " >" +
                             scratch.Path("out") + " 2>" + scratch.Path("err") + " <" + input;
    const int status = std::system(line.c_str());
    CommandResult result;
    result.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    result.out = ReadFile(scratch.Path("out"));
    result.err = ReadFile(scratch.Path("err"));
    return result;
}

std::string ReadFile(const std::filesystem::path& path)
{
    const std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

ScratchFolder::ScratchFolder()
{
    std::string name = (std::filesystem::temp_directory_path() / "quell_test_XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) std::abort();
    m_Folder = name;
}

ScratchFolder::~ScratchFolder()
{
    std::error_code error;
    std::filesystem::remove_all(m_Folder, error);
}

std::string ScratchFolder::Write(const std::string& name, const std::string& text) const
{
    std::ofstream(m_Folder / name, std::ios::binary) << text;
    return Path(name);
}
