// quell run: any AMI model over any channel.
#include <cstdio>
#include <filesystem>
#include <iostream>

#include "quell/base/errors.h"
#include "quell/base/files.h"
#include "quell/base/json.h"
#include "quell/base/lines.h"
#include "quell/base/numbers.h"
#include "quell/command/commands.h"
#include "quell/link/json.h"
#include "quell/link/options.h"
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

// Text of others between our lines: every line indented, so that it is seen to be theirs.
std::string Indented(const std::string& text)
{
    std::string indented = "  ";
    for (const char c : text) {
        const bool control = static_cast<unsigned char>(c) < 0x20 && c != '\n' && c != '\t';
        indented += control ? '?' : c;
        if (c == '\n') indented += "  ";
    }
    while (!indented.empty() && (indented.back() == ' ' || indented.back() == '\n'))
        indented.pop_back();
    return indented;
}

std::string Cell(const char* format, double value)
{
    char text[64];
    std::snprintf(text, sizeof text, format, value);
    return text;
}

using Figure = double ResponseFigures::*;

constexpr struct {
    const char* title;
    const char* format;
    Figure figure;
} TableColumns[] = {
    {"DC gain", "%.5f", &ResponseFigures::dcGain},
    {"impulse peak, V/s", "%.4e", &ResponseFigures::peak},
    {"main cursor, V", "%.4f", &ResponseFigures::mainCursor},
    {"crosstalk, V", "%.4f", &ResponseFigures::crosstalk},
};

void PrintChannel(const Column& column, const TimeGrid& grid)
{
    std::cout << column.name << ": " << column.source << '\n';
    if (column.ports) {
        std::cout << "  ports " << PortOrderText(*column.ports)
                  << (column.ports->Differential() ? ", differential SDD21" : ", S21") << ", "
                  << ShortText(*column.reference) << " ohm\n";
    }
    std::cout << "  loss at " << UnitText(grid.Nyquist(), "Hz") << ": "
              << (column.loss ? Cell("%.2f dB", *column.loss) : "not known");
    if (column.delay) std::cout << ", delay " << UnitText(*column.delay, "s");
    std::cout << '\n';
}

void PrintTable(const LinkResult& result)
{
    const bool crosstalk = result.columns.size() > 1;
    const size_t figures = std::size(TableColumns) - (crosstalk ? 0 : 1);
    std::printf("%-14s", "");
    for (size_t k = 0; k < figures; ++k)
        std::printf("  %-24s", TableColumns[k].title);
    std::printf("\n%-14s", "");
    for (size_t k = 0; k < figures; ++k)
        std::printf("  %11s %11s ", "before", "after");
    std::printf("\n");
    for (const LinkColumn& column : result.columns) {
        std::printf("%-14s", column.channel.name.c_str());
        for (size_t k = 0; k < figures; ++k) {
            const auto& row = TableColumns[k];
            std::printf("  %11s %11s ", Cell(row.format, column.before.*row.figure).c_str(),
                        column.after ? Cell(row.format, (*column.after).*row.figure).c_str() : "-");
        }
        std::printf("\n");
    }
    std::printf("\npeak-distortion eye height (1 V between the rails)\n");
    std::printf("  before %s, after %s\n", Cell("%.4f V", result.heightBefore).c_str(),
                result.heightAfter ? Cell("%.4f V", *result.heightAfter).c_str() : "-");
}

void PrintResult(const LinkResult& result)
{
    for (const LinkColumn& column : result.columns)
        PrintChannel(column.channel, result.grid);
    std::cout << "model: " << result.model.model << '\n'
              << "  parameters " << result.model.parameters << '\n'
              << "  AMI_Init returned " << result.ami.returnCode << '\n';
    if (result.ami.message) std::cout << "  message:\n  " << Indented(*result.ami.message) << '\n';
    if (result.ami.parametersOut)
        std::cout << "  parameters out:\n  " << Indented(*result.ami.parametersOut) << '\n';
    std::cout << UnitText(result.grid.bitRate, "bit/s") << ", "
              << ShortText(result.grid.samplesPerBit) << " samples per bit, sample interval "
              << UnitText(result.grid.Interval(), "s") << ", "
              << result.columns.front().before.impulse.size() << " samples in V/s\n\n"
              << std::flush;
    PrintTable(result);
    std::fflush(stdout);
}

void PrintEye(const LinkEye& eye)
{
    std::printf("statistical eye at an error rate of %s\n", ShortText(eye.errorRate).c_str());
    std::printf("  height %.4f V, width %.3f UI\n", eye.height, eye.width);
    std::printf("  height at");
    for (size_t k = 0; k < eye.heights.size(); ++k)
        std::printf("%s %s: %.4f V", k == 0 ? "" : ",", ShortText(EyeErrorRates[k]).c_str(),
                    eye.heights[k]);
    std::printf("\n");
    std::fflush(stdout);
}

// One of the responses of all columns over time.
std::string ResponseTable(const LinkResult& result, std::vector<double> ResponseFigures::*response)
{
    std::string text = "time";
    std::vector<const std::vector<double>*> columns;
    for (const LinkColumn& column : result.columns) {
        std::string name = column.channel.name;
        for (char& c : name)
            if (c == ' ') c = '_';
        text += "," + name + "_before";
        columns.push_back(&(column.before.*response));
        if (!column.after) continue;
        text += "," + name + "_after";
        columns.push_back(&((*column.after).*response));
    }
    text += '\n';
    for (size_t n = 0; n < columns.front()->size(); ++n) {
        text += ExactText(static_cast<double>(n) * result.grid.Interval());
        for (const std::vector<double>* column : columns)
            text += "," + ExactText((*column)[n]);
        text += '\n';
    }
    return text;
}

std::filesystem::path MakeFolder(const std::string& folder)
{
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (error) throw InputError(folder, 0, error.message());
    return folder;
}

void WriteResult(const LinkResult& result, const std::optional<LinkEye>& eye,
                 const std::string& folder)
{
    const std::filesystem::path out = MakeFolder(folder);
    WriteWholeFile(out / "impulse.csv", ResponseTable(result, &ResponseFigures::impulse));
    WriteWholeFile(out / "pulse.csv", ResponseTable(result, &ResponseFigures::pulse));
    WriteWholeFile(out / "result.json", JsonText(ResultJson(result, eye)));
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

    const ModelSetup setup = ResolveModel(link.model);
    if (options.dryRun) {
        for (const std::string& warning : setup.warnings)
            PrintWarning(warning);
        std::cout << setup.parameters << '\n';
        return EXIT_DONE;
    }
    const ImpulseMatrix matrix = BuildImpulseMatrix(options.channel, link.aggressors, link.channel);
    const LinkResult result = RunLink(matrix, setup, link.model.timeout);
    const std::optional<LinkEye> eye = MeasureLinkEye(result, link.eye);

    for (const std::string& warning : result.warnings)
        PrintWarning(warning);
    if (!options.json && !result.ami.printed.empty())
        std::cerr << "printed by the model:\n" << Indented(result.ami.printed) << '\n';
    if (!options.outFolder.empty()) WriteResult(result, eye, options.outFolder);
    if (!options.svgFolder.empty())
        WritePictures(LinkPictures(result, eye, link), options.svgFolder);
    if (!options.htmlFile.empty())
        WriteWholeFile(options.htmlFile, LinkReportHtml(result, eye, link));
    if (options.json) {
        std::cout << JsonText(ResultJson(result, eye));
    } else {
        PrintResult(result);
        if (eye) PrintEye(*eye);
    }
    if (!result.Failed()) return EXIT_DONE;
    std::cerr << "quell: the model reports failure: AMI_Init returned 0\n";
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
        "Exit code: 0 done, 2 wrong usage or unreadable input, 3 the model reports failure,\n"
        "4 the model crashed or took too long.\n\n"
        "  quell run loss:8dB@2.5GHz --set de_emphasis=3.5\n"
        "  quell run thru.s4p --aggressor next.s4p --model tx.so --set tap.0=-0.1 --json");
    run.callback([options, &exitCode] { exitCode = Run(*options); });
}

}  // namespace quell
