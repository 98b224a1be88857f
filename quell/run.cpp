// quell run: any AMI model over any channel.
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iostream>

#include "quell/commands.h"
#include "quell/errors.h"
#include "quell/lines.h"
#include "quell/link.h"
#include "quell/numbers.h"
#include "quell/result_json.h"

namespace quell {

namespace {

struct RunOptions {
    std::string channel;
    std::vector<std::string> aggressors;
    ChannelOptions channelOptions;
    ModelOptions modelOptions;
    std::string ports;
    std::vector<std::string> settings;
    std::string outFolder;
    bool json = false;
    bool dryRun = false;
};

constexpr std::pair<const char*, ResponseKind> s_ResponseKinds[] = {
    {"impulse", ResponseKind::Impulse},
    {"step", ResponseKind::Step},
    {"pulse", ResponseKind::Pulse}};

constexpr std::pair<const char*, ImpulseUnit> s_Units[] = {
    {"V/s", ImpulseUnit::VoltPerSecond}, {"V/sample", ImpulseUnit::VoltPerSample}};

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
} s_TableColumns[] = {
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
    const size_t figures = std::size(s_TableColumns) - (crosstalk ? 0 : 1);
    std::printf("%-14s", "");
    for (size_t k = 0; k < figures; ++k)
        std::printf("  %-24s", s_TableColumns[k].title);
    std::printf("\n%-14s", "");
    for (size_t k = 0; k < figures; ++k)
        std::printf("  %11s %11s ", "before", "after");
    std::printf("\n");
    for (const LinkColumn& column : result.columns) {
        std::printf("%-14s", column.channel.name.c_str());
        for (size_t k = 0; k < figures; ++k) {
            const auto& row = s_TableColumns[k];
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

void WriteFile(const std::filesystem::path& path, const std::string& text)
{
    std::ofstream file(path, std::ios::binary);
    file << text;
    file.close();
    if (!file) throw InputError(path.string(), 0, "cannot be written");
}

void WriteResult(const LinkResult& result, const std::string& folder)
{
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (error) throw InputError(folder, 0, error.message());
    const std::filesystem::path out = folder;
    WriteFile(out / "impulse.csv", ResponseTable(result, &ResponseFigures::impulse));
    WriteFile(out / "pulse.csv", ResponseTable(result, &ResponseFigures::pulse));
    WriteFile(out / "result.json", JsonText(ResultJson(result)));
}

int Run(RunOptions options)
{
    if (!options.ports.empty()) {
        options.channelOptions.ports = ParsePortOrder(options.ports);
        if (!options.channelOptions.ports)
            throw InputError("--ports " + Quoted(options.ports) +
                             ": expected 13,24 (in at ports 1 and 3, out at 2 and 4) or 1,2");
    }
    for (const std::string& text : options.settings)
        options.modelOptions.settings.push_back(ParseSetting(text));

    const ModelSetup setup = ResolveModel(options.modelOptions);
    if (options.dryRun) {
        for (const std::string& warning : setup.warnings)
            PrintWarning(warning);
        std::cout << setup.parameters << '\n';
        return EXIT_DONE;
    }
    const ImpulseMatrix matrix =
        BuildImpulseMatrix(options.channel, options.aggressors, options.channelOptions);
    const LinkResult result = RunLink(matrix, setup, options.modelOptions.timeout);

    for (const std::string& warning : result.warnings)
        PrintWarning(warning);
    if (!options.json && !result.ami.printed.empty())
        std::cerr << "printed by the model:\n" << Indented(result.ami.printed) << '\n';
    if (!options.outFolder.empty()) WriteResult(result, options.outFolder);
    if (options.json) {
        std::cout << JsonText(ResultJson(result));
    } else {
        PrintResult(result);
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
    ChannelOptions& channel = options->channelOptions;
    ModelOptions& model = options->modelOptions;

    run.add_option("channel", options->channel,
                   "FILE.s2p, FILE.s4p, FILE.csv, or loss:8dB@2.5GHz, a built-in line with that "
                   "loss")
        ->required()
        ->type_name("CHANNEL");
    run.add_option("--aggressor", options->aggressors,
                   "A channel that couples into the victim; may be repeated. FILE.s4p:13,24 gives "
                   "its ports, else a crosstalk file takes the victim's")
        ->allow_extra_args(false)
        ->type_name("CHANNEL");

    const char* timing = "Timing";
    AddNumber(
        run, "--bit-rate", "bit/s", 0, [&channel](double v) { channel.bitRate = v; },
        "Bit rate (default 5e9)")
        ->group(timing);
    AddNumber(
        run, "--samples-per-bit", "", 0, [&channel](double v) { channel.samplesPerBit = v; },
        "Samples per bit (default 16, or those of a table)")
        ->group(timing);

    const char* touchstone = "Touchstone files";
    run.add_option("--ports", options->ports,
                   "Port order of a 4-port: 13,24 goes in at ports 1 and 3 and out at 2 and 4 "
                   "(default: found at the lowest frequency)")
        ->type_name("ORDER")
        ->group(touchstone);

    const char* tables = "Tables (.csv): a time column in seconds and one or more responses";
    AddNumber(
        run, "--sample-interval", "s", 0, [&channel](double v) { channel.sampleInterval = v; },
        "Sample interval of a table without a time column")
        ->group(tables);
    AddChoice(run, "--response", channel.response, s_ResponseKinds,
              "What the table holds (default impulse)")
        ->group(tables);
    AddChoice(run, "--unit", channel.unit, s_Units, "Unit of impulse responses (default V/s)")
        ->group(tables);

    const char* models = "Model";
    run.add_option("--model", model.model,
                   "The model's shared library (default: the one of the kit)")
        ->type_name("FILE")
        ->group(models);
    run.add_option("--ami", model.ami,
                   "Its parameter file, for the root name (default: beside the model, same stem)")
        ->type_name("FILE")
        ->group(models);
    CLI::Option* set =
        run.add_option("--set", options->settings,
                       "A parameter for the model; may be repeated. Dots make branches: tap.0=1")
            ->allow_extra_args(false)
            ->type_name("NAME=VALUE")
            ->group(models);
    run.add_option("--params", model.parameters, "The whole parameter string, passed unchanged")
        ->type_name("STRING")
        ->excludes(set)
        ->group(models);
    AddNumber(
        run, "--timeout", "s", 0, [&model](double v) { model.timeout = v; },
        "Time that the model may take (default 60)")
        ->group(models);
    run.add_flag("--dry-run", options->dryRun, "Print the string that the model would get, and end")
        ->group(models);

    const char* output = "Output";
    run.add_flag("--json", options->json, "Print the result as JSON")->group(output);
    run.add_option("--out", options->outFolder,
                   "Write impulse.csv, pulse.csv and result.json into this folder")
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
