// quell info: what a file holds, for people and for programs.
#include <iostream>
#include <memory>

#include "quell/base/errors.h"
#include "quell/base/json.h"
#include "quell/command/commands.h"
#include "quell/info/describe.h"
#include "quell/info/screen.h"

namespace quell {

void AddInfo(CLI::App& app, int& exitCode)
{
    struct Options {
        std::string file;
        bool json = false;
    };
    const auto options = std::make_shared<Options>();
    CLI::App* command =
        app.add_subcommand("info", "Show what an IBIS, package, board or AMI parameter file holds");
    command->add_option("FILE", options->file, "a .ibs, .pkg, .ebd or .ami file")->required();
    command->add_flag("--json", options->json, "everything, as JSON");
    command->callback([options, &exitCode] {
        const nlohmann::ordered_json file = DescribeFile(options->file);
        std::cout << (options->json ? JsonText(file) : InfoScreen(file));
        exitCode = EXIT_DONE;
    });
}

}  // namespace quell
