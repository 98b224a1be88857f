// quell view: the models of a component file as a page to look at.
#include <filesystem>
#include <iostream>
#include <memory>
#include <string>

#include "quell/base/errors.h"
#include "quell/base/files.h"
#include "quell/base/printable.h"
#include "quell/command/commands.h"
#include "quell/view/view_file.h"

namespace quell {

namespace {

struct ViewOptions {
    std::string file;
    std::string model;
    std::string out;
};

// NAME.html in the working folder, from the file's name.
std::string PageName(const std::string& file)
{
    return std::filesystem::path(file).stem().string() + ".html";
}

int RunView(const ViewOptions& options)
{
    const ViewedFile viewed = ViewFile(options.file, options.model);
    for (const std::string& warning : viewed.warnings)
        PrintWarning(warning);
    if (options.out == "-") {
        std::cout << viewed.page;
        return EXIT_DONE;
    }
    const std::string out = options.out.empty() ? PageName(options.file) : options.out;
    WriteWholeFile(out, viewed.page);
    std::cout << Printable(out) << '\n';
    return EXIT_DONE;
}

}  // namespace

void AddView(CLI::App& app, int& exitCode)
{
    CLI::App& view = *app.add_subcommand("view", "Draw the models of an IBIS file on a page");
    const auto options = std::make_shared<ViewOptions>();
    view.add_option("file", options->file, "FILE.ibs")->required()->type_name("FILE");
    view.add_option("--model", options->model, "Show this model only")->type_name("NAME");
    view.add_option("-o,--out", options->out,
                    "The page (default: FILE.html in the working folder), or - for standard output")
        ->type_name("FILE.html");
    view.footer(
        "The page has the V-I tables by corner at the pin, the combined curves with the load\n"
        "lines of the fixtures and their operating points, the waveforms with the ends that the\n"
        "tables give, and the findings of quell check beside the pictures that show them.\n"
        "Exit code: 0 done, 2 wrong usage or unreadable input, 3 the file stopped the reader.\n\n"
        "  quell view buffer.ibs --model DQ_34 -o dq.html");
    view.callback([options, &exitCode] { exitCode = RunView(*options); });
}

}  // namespace quell
