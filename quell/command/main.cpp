// The command: finds the subcommand, and turns what it throws into one line and an exit code.
#include <algorithm>
#include <cstdio>
#include <iostream>

#include "quell/base/errors.h"
#include "quell/base/lines.h"
#include "quell/base/nearest.h"
#include "quell/command/commands.h"
#include "quell/report/assets.h"

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

// The first word must name a subcommand; the parser would only say that one is missing.
void CheckSubcommand(const CLI::App& app, const char* word)
{
    if (word == nullptr || *word == '-') return;
    std::vector<std::string> names;
    for (const CLI::App* command : app.get_subcommands({}))
        names.push_back(command->get_name());
    if (std::find(names.begin(), names.end(), word) != names.end()) return;
    const std::optional<std::string> meant = quell::Nearest(word, names);
    throw quell::InputError("unknown subcommand " + quell::Quoted(word) +
                            (meant ? ", did you mean '" + *meant + "'?" : "") +
                            " (see quell --help)");
}

// The command whose help tells about a mistake.
std::string HelpCommand(const CLI::App& app)
{
    const auto used = app.get_subcommands();
    return "quell " + (used.empty() ? "" : used.front()->get_name() + " ") + "--help";
}

void PrintLicences()
{
    std::cout << quell::Licences();
    throw CLI::Success();
}

int ParseAndRun(int argc, char** argv)
{
    CLI::App app("Runs AMI models over real channels and checks IBIS files.", "quell");
    app.set_version_flag("--version", "quell " QUELL_VERSION);
    app.add_flag_callback("--licences", PrintLicences,
                          "Print the licences of what is built into the command, and end")
        ->trigger_on_parse();
    app.require_subcommand(1);
    app.get_formatter()->column_width(34);
    int exitCode = quell::EXIT_DONE;
    for (const quell::AddCommand add : Commands)
        add(app, exitCode);
    CheckSubcommand(app, argv[1]);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        // --help and --version come this way, too.
        if (error.get_exit_code() != 0)
            throw quell::InputError(std::string(error.what()) + " (see " + HelpCommand(app) + ")");
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
