// Runs the built command as a user does.
#include "tests/quell/command.h"

#include <sys/wait.h>

#include <cstdlib>
#include <fstream>
#include <sstream>

#include "tests/support/TempDir.h"

CommandResult RunQuell(const std::string& arguments, const std::string& input)
{
    const TempDir scratch;
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
