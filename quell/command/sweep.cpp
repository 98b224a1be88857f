// quell sweep: which setting of a model opens the eye most.
#include "quell/link/sweep.h"

#include <iostream>
#include <thread>

#include "quell/base/errors.h"
#include "quell/base/files.h"
#include "quell/base/json.h"
#include "quell/base/progress.h"
#include "quell/command/commands.h"
#include "quell/link/sweep_text.h"
#include "quell/report/sweep_report.h"

namespace quell {

namespace {

struct SweepOptions {
    std::vector<std::string> channels;
    LinkOptions link;
    unsigned workers = std::max(1u, std::thread::hardware_concurrency());
    bool json = false;
    std::string htmlFile;
};

// One object per line, so that the lines of many runs can be put together.
void PrintJson(const SweepResult& result)
{
    for (size_t c = 0; c < result.channels.size(); ++c)
        for (size_t i = 0; i < result.grid.size(); ++i)
            std::cout << JsonLine(SweepPointJson(result, c, i)) << '\n';
}

int Sweep(SweepOptions options)
{
    FinishLinkOptions(options.link);
    std::vector<SweptParameter> parameters;
    for (const std::string& text : options.link.settings)
        parameters.push_back(ParseSweptParameter(text));

    std::optional<Progress> bar;
    const auto progress = [&bar](size_t done, size_t all) {
        if (!bar) bar.emplace(all, "points");
        bar->Show(done);
    };
    const SweepResult result =
        RunSweep(options.channels, parameters, options.link, options.workers, progress);
    bar.reset();

    int exitCode = EXIT_DONE;
    for (const SweepChannel& channel : result.channels)
        for (size_t i = 0; i < result.grid.size(); ++i) {
            const SweepPoint& point = channel.points[i];
            exitCode = std::max(exitCode, point.exitCode);
            if (!point.failure.empty())
                PrintWarning(channel.name + ", " + SettingText(result, i) + ": " + point.failure);
        }
    if (!options.htmlFile.empty())
        WriteWholeFile(options.htmlFile, SweepReportHtml(result, options.link));
    if (options.json)
        PrintJson(result);
    else
        std::cout << SweepText(result) << std::flush;
    return exitCode;
}

}  // namespace

void AddSweep(CLI::App& app, int& exitCode)
{
    CLI::App& sweep =
        *app.add_subcommand("sweep", "Find the settings of a model that open the eye most");
    const auto options = std::make_shared<SweepOptions>();
    sweep.add_option("channels", options->channels, "Channels, as for quell run")
        ->required()
        ->type_name("CHANNEL");
    AddLinkOptions(sweep, options->link,
                   "A parameter and its values: START:STOP:STEP, or A,B,C, or one; several make a "
                   "grid")
        ->type_name("NAME=VALUES");
    const char* output = "Output";
    sweep.add_option("-j", options->workers, "Points to run at once (default: one per processor)")
        ->check(CLI::Range(1u, 1024u))
        ->type_name("N")
        ->group(output);
    sweep.add_flag("--json", options->json, "Print one JSON object per line and point")
        ->group(output);
    sweep
        .add_option("--html", options->htmlFile,
                    "Write a report with the table and its curves: one page that needs no network")
        ->type_name("FILE")
        ->group(output);
    sweep.footer(
        std::string(NumberHelp) +
        "Exit code: 0 done, 2 wrong usage or unreadable input, 3 the model reported failure at "
        "some\npoint, 4 it crashed or took too long at some point.\n\n"
        "  quell sweep loss:8dB@2.5GHz thru.s4p --set de_emphasis=0:9.5:0.5");
    sweep.callback([options, &exitCode] { exitCode = Sweep(*options); });
}

}  // namespace quell
