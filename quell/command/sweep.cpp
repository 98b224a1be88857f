// quell sweep: which setting of a model opens the eye most.
#include "quell/link/sweep.h"

#include <cstdio>
#include <iostream>
#include <thread>

#include "quell/base/errors.h"
#include "quell/base/files.h"
#include "quell/base/json.h"
#include "quell/base/numbers.h"
#include "quell/base/progress.h"
#include "quell/command/commands.h"
#include "quell/link/json.h"
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

void PrintTable(const SweepResult& result)
{
    for (size_t c = 0; c < result.channels.size(); ++c)
        std::printf("channel %zu: %s\n", c + 1, result.channels[c].name.c_str());
    std::printf("eye height in V and width in UI at an error rate of %s\n\n",
                ShortText(result.errorRate).c_str());

    size_t settingWidth = 8;
    for (size_t i = 0; i < result.grid.size(); ++i)
        settingWidth = std::max(settingWidth, SettingText(result, i).size());
    const int width = static_cast<int>(settingWidth);
    std::printf("%-*s", width, "setting");
    for (size_t c = 0; c < result.channels.size(); ++c)
        std::printf("  %18s", ("channel " + std::to_string(c + 1)).c_str());
    std::printf("\n");
    for (size_t i = 0; i < result.grid.size(); ++i) {
        std::printf("%-*s", width, SettingText(result, i).c_str());
        for (const SweepChannel& channel : result.channels) {
            const SweepPoint& point = channel.points[i];
            if (point.height)
                std::printf("  %8.4f %7.3f %c", *point.height, point.width,
                            channel.best == i ? '*' : ' ');
            else
                std::printf("  %18s", "failed  ");
        }
        std::printf("\n");
    }

    std::printf("\n");
    for (size_t c = 0; c < result.channels.size(); ++c) {
        const SweepChannel& channel = result.channels[c];
        if (!channel.best) {
            std::printf("channel %zu: no setting worked\n", c + 1);
            continue;
        }
        std::printf("channel %zu: best with %s, %.4f V%s\n", c + 1,
                    SettingText(result, *channel.best).c_str(),
                    *channel.points[*channel.best].height,
                    EndOfRangeText(result, *channel.best).c_str());
    }
    if (result.channels.size() > 1 && result.bestWorst) {
        std::printf("all channels: best worst case with %s, %.4f V%s\n",
                    SettingText(result, *result.bestWorst).c_str(),
                    *WorstHeight(result, *result.bestWorst),
                    EndOfRangeText(result, *result.bestWorst).c_str());
    }
    std::fflush(stdout);
}

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
        PrintTable(result);
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
        "Exit code: 0 done, 2 wrong usage or unreadable input, 3 the model reported failure at "
        "some\npoint, 4 it crashed or took too long at some point.\n\n"
        "  quell sweep loss:8dB@2.5GHz thru.s4p --set de_emphasis=0:9.5:0.5");
    sweep.callback([options, &exitCode] { exitCode = Sweep(*options); });
}

}  // namespace quell
