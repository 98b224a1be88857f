// The subcommands, and what their command lines share.
#ifndef QUELL_COMMANDS_H
#define QUELL_COMMANDS_H

#include <CLI/CLI.hpp>
#include <string>

namespace quell {

// Adds a subcommand to the application. Parsing a command line that names it runs it and stores
// its exit code; a CommandError passes through.
using AddCommand = void (*)(CLI::App& app, int& exitCode);

void AddRun(CLI::App& app, int& exitCode);

// An option with a number in a unit, "5e9", "5Gbit/s" or "2.5 GHz", in any locale. Its range is
// open at the low end: value > least.
CLI::Option* AddNumber(CLI::App& command, const std::string& name, const std::string& unit,
                       double least, std::function<void(double)> store,
                       const std::string& description);

// Prints "warning: TEXT" on standard error, one line.
void PrintWarning(const std::string& text);

}  // namespace quell

#endif
