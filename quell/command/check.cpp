// quell check: files against the rules of the IBIS standard.
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <thread>
#include <utility>
#include <vector>

#include "IbisParser/base/version.h"
#include "quell/base/errors.h"
#include "quell/check/check_files.h"
#include "quell/check/formats.h"
#include "quell/command/commands.h"
#include "quell/process/queue.h"

namespace quell {

namespace {

enum class ColourUse { Auto, Always, Never };

constexpr size_t MostJobs = 256;

constexpr std::pair<const char*, ColourUse> ColourUses[] = {
    {"auto", ColourUse::Auto}, {"always", ColourUse::Always}, {"never", ColourUse::Never}};

// Version texts that are legal in a file.
const std::vector<std::pair<const char*, const char*>>& Versions()
{
    static const auto versions = [] {
        std::vector<std::pair<const char*, const char*>> rows;
        for (const VersionRow& row : VERSION_Rows())
            rows.emplace_back(row.text, row.text);
        return rows;
    }();
    return versions;
}

struct CheckOptions {
    std::vector<std::string> arguments;
    FileType type = FILE_IBS;
    bool typeGiven = false;
    std::string stdinName;
    const char* version = "";
    MakeFormat format = Make<TextFormat>;
    ColourUse colour = ColourUse::Auto;
    size_t jobs = 0;  // 0: one for each core
};

bool UseColour(ColourUse use)
{
    if (use != ColourUse::Auto) return use == ColourUse::Always;
    const char* noColour = std::getenv("NO_COLOR");
    const char* terminal = std::getenv("TERM");
    return isatty(STDOUT_FILENO) == 1 && (noColour == nullptr || *noColour == '\0') &&
           (terminal == nullptr || std::string_view(terminal) != "dumb");
}

size_t Jobs(const CheckOptions& options)
{
    if (options.jobs != 0) return options.jobs;
    return std::clamp<size_t>(std::thread::hardware_concurrency(), 1, MostJobs);
}

int RunCheck(const CheckOptions& options)
{
    FileSearch search;
    search.arguments = options.arguments;
    if (options.typeGiven) search.type = options.type;
    search.stdinName = options.stdinName;
    std::unique_ptr<PrivateFolder> spool;
    if (std::find(search.arguments.begin(), search.arguments.end(), "-") !=
        search.arguments.end()) {
        spool = std::make_unique<PrivateFolder>();
        search.spool = spool.get();
    } else if (!options.stdinName.empty()) {
        throw InputError("--stdin-name names standard input, which is given as '-'");
    }
    CheckRequest request;
    request.files = FindFiles(search);
    request.version = options.version;
    request.jobs = Jobs(options);
    FormatOptions shown;
    shown.colour = UseColour(options.colour);
    return CheckFiles(request, *options.format(shown), std::cout).ExitCode();
}

}  // namespace

void AddCheck(CLI::App& app, int& exitCode)
{
    CLI::App& check = *app.add_subcommand("check", "Check IBIS and AMI parameter files");
    const auto options = std::make_shared<CheckOptions>();
    check
        .add_option("files", options->arguments,
                    "Files, folders (walked for .ibs, .pkg, .ebd and .ami files), or - for "
                    "standard input")
        ->required()
        ->type_name("FILE...");

    const char* input = "Input";
    AddChoice(check, "--type", options->type, FileTypes,
              "What the files are, whatever their extensions; of folders, what is checked")
        ->group(input);
    check
        .add_option("--stdin-name", options->stdinName,
                    "Name of standard input in the findings. The files that it names are looked "
                    "for in the folder of this name; without a folder, in the current one")
        ->type_name("NAME")
        ->group(input);
    AddChoice(check, "--as", options->version, Versions(),
              "Check as if the files declared this version")
        ->group(input);
    check.add_option("-j,--jobs", options->jobs, "Files read at once (default: number of cores)")
        ->check(CLI::Range(size_t{1}, MostJobs))
        ->type_name("N")
        ->group(input);

    const char* output = "Output";
    AddChoice(check, "--format", options->format, Formats,
              "text (default) shows the first 20 findings of a number in a file; classic is the "
              "reader's own output")
        ->group(output);
    AddChoice(check, "--color", options->colour, ColourUses,
              "Colours (default auto: on a terminal, unless NO_COLOR is set)")
        ->group(output);
    check.footer(
        "Exit code: 0 no errors, 1 errors found, 2 wrong usage or a file that could not be read "
        "or\n"
        "declares a version after " +
        std::string(VERSION_Latest()->text) +
        ", 3 a file stopped the reader.\n\n"
        "  quell check models/\n"
        "  quell check - --stdin-name models/tx.ibs <tx.ibs --format json");
    check.callback([options, &check, &exitCode] {
        options->typeGiven = check.count("--type") != 0;
        try {
            exitCode = RunCheck(*options);
        } catch (const Interruption& interruption) {
            EndBySignal(interruption.signal);
        }
    });
}

}  // namespace quell
