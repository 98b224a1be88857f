// quell run: any AMI model over any channel.
#include <filesystem>
#include <iostream>

#include "quell/base/errors.h"
#include "quell/base/files.h"
#include "quell/base/json.h"
#include "quell/command/commands.h"
#include "quell/link/json.h"
#include "quell/link/options.h"
#include "quell/link/text.h"
#include "quell/report/link_report.h"

namespace quell {

namespace {

struct RunOptions {
    std::string channel;
    LinkOptions link;
    std::string outFolder;
    std::string htmlFile;
    std::string svgFolder;
    bool json = false;
    bool dryRun = false;
};

std::filesystem::path MakeFolder(const std::string& folder)
{
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (error) throw InputError(folder, 0, error.message());
    return folder;
}

void WriteResult(const LinkResult& result, const std::string& folder)
{
    const std::filesystem::path out = MakeFolder(folder);
    for (const auto& [name, response] :
         {std::pair("impulse.csv", ResponseTable::Impulse), {"pulse.csv", ResponseTable::Pulse}})
        WriteWholeFile(out / name, [&result, response = response](const TextSink& sink) {
            WriteResponses(result, response, sink);
        });
    WriteWholeFile(out / "result.json", JsonText(ResultJson(result)));
}

void WritePictures(const std::vector<NamedPicture>& pictures, const std::string& folder)
{
    const std::filesystem::path out = MakeFolder(folder);
    for (const NamedPicture& picture : pictures)
        WriteWholeFile(out / picture.name, picture.svg);
}

int Run(RunOptions options)
{
    LinkOptions& link = options.link;
    FinishLinkOptions(link);
    for (const std::string& text : link.settings)
        link.model.settings.push_back(ParseSetting(text));

    const std::vector<StageSetup> stages = {{"model", ResolveModel(link.model)}};
    if (options.dryRun) {
        for (const StageSetup& stage : stages) {
            for (const std::string& warning : stage.model.warnings)
                PrintWarning(warning);
            std::cout << stage.model.parameters << '\n';
        }
        return EXIT_DONE;
    }
    const auto channel = std::make_shared<const LinkChannel>(
        MakeLinkChannel(BuildImpulseMatrix(options.channel, link.aggressors, link.channel)));
    const LinkResult result = RunLink(channel, stages, link.model.timeout, link.eye);

    for (const std::string& warning : result.warnings)
        PrintWarning(warning);
    if (!options.json) std::cerr << PrintedText(result);
    if (!options.outFolder.empty()) WriteResult(result, options.outFolder);
    if (!options.svgFolder.empty()) WritePictures(LinkPictures(result), options.svgFolder);
    if (!options.htmlFile.empty()) WriteWholeFile(options.htmlFile, LinkReportHtml(result, link));
    std::cout << (options.json ? JsonText(ResultJson(result)) : LinkText(result)) << std::flush;
    if (!result.Failed()) return EXIT_DONE;
    std::cerr << "quell: the " << result.stages.back().setup.name
              << " reports failure: AMI_Init returned 0\n";
    return EXIT_MODEL_FAILED;
}

}  // namespace

void AddRun(CLI::App& app, int& exitCode)
{
    CLI::App& run = *app.add_subcommand("run", "Run an AMI model over a channel");
    const auto options = std::make_shared<RunOptions>();

    run.add_option("channel", options->channel,
                   "FILE.s2p, FILE.s4p, FILE.csv, or loss:8dB@2.5GHz, a built-in line with that "
                   "loss")
        ->required()
        ->type_name("CHANNEL");
    AddLinkOptions(run, options->link,
                   "A parameter for the model; may be repeated. Dots make branches: tap.0=1");
    run.add_flag("--dry-run", options->dryRun, "Print the string that the model would get, and end")
        ->group("Model");

    const char* output = "Output";
    run.add_flag("--json", options->json, "Print the result as JSON")->group(output);
    run.add_option("--out", options->outFolder,
                   "Write impulse.csv, pulse.csv and result.json into this folder")
        ->type_name("FOLDER")
        ->group(output);
    run.add_option("--html", options->htmlFile,
                   "Write a report with figures and pictures: one page that needs no network")
        ->type_name("FILE")
        ->group(output);
    run.add_option("--svg", options->svgFolder, "Write the pictures of the report into this folder")
        ->type_name("FOLDER")
        ->group(output);
    run.footer(
        std::string(NumberHelp) +
        "Exit code: 0 done, 2 wrong usage or unreadable input, 3 the model reports failure,\n"
        "4 the model crashed or took too long.\n\n"
        "  quell run loss:8dB@2.5GHz --set de_emphasis=3.5\n"
        "  quell run thru.s4p --aggressor next.s4p --model tx.so --set tap.0=-0.1 --json");
    run.callback([options, &exitCode] { exitCode = Run(*options); });
}

}  // namespace quell
