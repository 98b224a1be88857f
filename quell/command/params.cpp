// quell params: what an AMI parameter file describes.
#include <iostream>
#include <memory>

#include "quell/base/errors.h"
#include "quell/base/json.h"
#include "quell/command/commands.h"
#include "quell/params/listing.h"

namespace quell {

namespace {

struct ParamsOptions {
    std::string file;
    bool json = false;
};

int RunParams(const ParamsOptions& options)
{
    const AmiFile file = ReadAmiFile(options.file);
    if (file.parameters.empty() && !file.problems.empty())
        throw InputError(options.file, 0, "no parameter tree: " + file.problems.front());
    for (const std::string& problem : file.problems)
        PrintWarning(options.file + ": " + problem);
    std::cout << (options.json ? JsonText(ParamsJson(file)) : ParamsTable(file));
    return EXIT_DONE;
}

}  // namespace

void AddParams(CLI::App& app, int& exitCode)
{
    CLI::App& params = *app.add_subcommand("params", "Show what an AMI parameter file describes");
    const auto options = std::make_shared<ParamsOptions>();
    params.add_option("file", options->file, "The parameter file, .ami")
        ->required()
        ->type_name("FILE");
    params.add_flag("--json", options->json, "Print the parameters as JSON");
    params.footer("Exit code: 0 done, 2 wrong usage, or a file without a parameter tree.");
    params.callback([options, &exitCode] { exitCode = RunParams(*options); });
}

}  // namespace quell
