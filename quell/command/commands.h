// The subcommands, and what their command lines share.
#ifndef QUELL_COMMAND_COMMANDS_H
#define QUELL_COMMAND_COMMANDS_H

#include <CLI/CLI.hpp>
#include <functional>
#include <string>
#include <utility>

namespace quell {

// Adds a subcommand to the application. Parsing a command line that names it runs it and stores
// its exit code; a CommandError passes through.
using AddCommand = void (*)(CLI::App& app, int& exitCode);

#define SUBCOMMAND(name) void Add##name(CLI::App& app, int& exitCode);
#include "quell/command/commands.inc"
#undef SUBCOMMAND

// An option with a number in a unit, "5e9", "5Gbit/s" or "2.5 GHz", in any locale. Its range is
// open at the low end: value > least.
CLI::Option* AddNumber(CLI::App& command, const std::string& name, const std::string& unit,
                       double least, std::function<void(double)> store,
                       const std::string& description);

// An option that takes one of a table's words. A row is a pair, the word first; the table must
// outlive the command.
template <typename T, typename Table>
CLI::Option* AddChoice(CLI::App& command, const std::string& name, T& value, const Table& choices,
                       const std::string& description)
{
    std::string words;
    for (const auto& choice : choices)
        words += (words.empty() ? "" : ", ") + std::string(choice.first);
    const auto parse = [name, words, &value, &choices](const std::string& text) {
        for (const auto& choice : choices) {
            if (text != choice.first) continue;
            value = choice.second;
            return;
        }
        throw CLI::ValidationError(name, "'" + text + "' is none of " + words);
    };
    return command.add_option_function<std::string>(name, parse, description + ": " + words)
        ->type_name("WORD");
}

}  // namespace quell

#endif
