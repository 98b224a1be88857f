// The command: finds the subcommand, and turns what it throws into one line and an exit code.
#include <cstdio>
#include <iostream>

#include "quell/base/errors.h"
#include "quell/command/commands.h"

namespace {

constexpr quell::AddCommand Commands[] = {
#define SUBCOMMAND(name) quell::Add##name,
#include "quell/command/commands.inc"
#undef SUBCOMMAND
};

int Fail(const char* text, int code)
{
    quell::PrintError(text);
    return code;
}

int ParseAndRun(int argc, char** argv)
{
    CLI::App app("Runs AMI models over real channels and checks IBIS files.", "quell");
    app.set_version_flag("--version", "quell " QUELL_VERSION);
    app.require_subcommand(1);
    app.get_formatter()->column_width(34);
    int exitCode = quell::EXIT_DONE;
    for (const quell::AddCommand add : Commands)
        add(app, exitCode);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        // --help and --version come this way, too.
        if (error.get_exit_code() != 0)
            throw quell::InputError(std::string(error.what()) + " (see quell --help)");
        exitCode = app.exit(error);
    }
    std::cout.flush();
    if (!std::cout || std::fflush(stdout) != 0)
        throw quell::InputError("standard output cannot be written");
    return exitCode;
}

}  // namespace

int main(int argc, char** argv)
{
    try {
        return ParseAndRun(argc, argv);
    } catch (const quell::CommandError& error) {
        return Fail(error.what(), error.Code());
    } catch (const std::bad_alloc&) {
        return Fail("out of memory", quell::EXIT_BAD_INPUT);
    } catch (const std::exception& error) {
        return Fail(error.what(), quell::EXIT_BAD_INPUT);
    }
}
