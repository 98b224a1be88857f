// Runs the built command as a user does.
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

#endif
