// Speed of the reader on a 20 MB component file and a 1 MB AMI parameter file, both made here.
// Beside the component file stand two floors measured in turn with it: reading its lines and doing
// nothing, and fgets with strtod on each cell of its tables. The cells in the document store are
// compared bit for bit with those that strtod found: where they differ the program exits with 1.
// Ratios are of the fastest runs.
#include <benchmark/benchmark.h>
#include <time.h>

#include <algorithm>
#include <bit>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "IbisParser/amitree.h"
#include "IbisParser/errlog.h"
#include "IbisParser/mdl.h"
#include "IbisParser/parse.h"
#include "IbisParser/vitbl.h"
#include "IbisParser/wvfrm.h"
#include "tests/support/TempDir.h"

static const int Models = 160;  // about 20 MB
static const int TablePoints = 100;
static const int WaveformPoints = 1000;
static const int Parameters = 8500;         // about 1 MB
static const double TimesOfTheFloor = 2.0;  // at most
static const double TreeSpeed = 100.0;      // MB/s, at least

static std::string s_Document;
static std::string s_ParameterFile;
static std::string s_ParameterText;
static std::size_t s_DocumentSize;

// Cells of tables, whatever their order.
struct Cells {
    std::uint64_t bits = 0;
    std::size_t count = 0;

    void Add(double value)
    {
        bits += std::bit_cast<std::uint64_t>(value);
        ++count;
    }
    bool operator==(const Cells&) const = default;
};

// A table line as simulators' tools write it.
static void AddLine(std::string& text, double x, double y)
{
    char line[100];
    std::snprintf(line, sizeof line, "%12.5e %12.5e %12.5e %12.5e\n", x, y, 0.9 * y, 1.1 * y);
    text += line;
}

static std::string MakeDocument()
{
    static const struct {
        const char* keyword;
        double siemens;
    } tables[] = {
        {"[Pulldown]", 0.02}, {"[Pullup]", -0.02}, {"[GND Clamp]", 0}, {"[POWER Clamp]", 0}};
    std::mt19937_64 random(5);
    std::uniform_real_distribution<double> spread(1.0, 1.001);
    std::string text =
        "[IBIS Ver] 5.0\n[File Name] bench.ibs\n[File Rev] 1.0\n[Component] bench\n[Manufacturer] "
        "none\n"
        "[Package]\nR_pkg 1m NA NA\nL_pkg 1n NA NA\nC_pkg 1p NA NA\n[Pin] signal_name model_name\n";
    for (int i = 1; i <= Models; ++i)
        text += std::to_string(i) + " s" + std::to_string(i) + " m" + std::to_string(i) + "\n";
    for (int i = 1; i <= Models; ++i) {
        text += "[Model] m" + std::to_string(i) +
                "\nModel_type I/O\nVinl = 0.8\nVinh = 2.0\nC_comp 5p 4p 6p\n[Voltage Range] 3.3 "
                "3.0 3.6\n";
        for (const auto& table : tables) {
            text += std::string(table.keyword) + "\n";
            for (int k = 0; k < TablePoints; ++k)
                AddLine(text, -3.3 + 0.1 * k, table.siemens * (-3.3 + 0.1 * k) * spread(random));
        }
        text += "[Ramp]\ndV/dt_r 1.0/1n 0.9/1.2n 1.1/0.8n\ndV/dt_f 1.0/1n 0.9/1.2n 1.1/0.8n\n";
        for (const char* keyword : {"[Rising Waveform]", "[Falling Waveform]"}) {
            text += std::string(keyword) + "\nR_fixture = 50\nV_fixture = 0\n";
            const bool rises = keyword[1] == 'R';
            for (int k = 0; k < WaveformPoints; ++k)
                AddLine(text, 1e-11 * k, 1.65e-3 * (rises ? k : WaveformPoints - k));
        }
    }
    return text + "[End]\n";
}

static std::string MakeParameters()
{
    std::string text =
        "(bench\n(Reserved_Parameters\n"
        "  (Init_Returns_Impulse (Usage Info) (Type Boolean) (Default True)\n(Description \"d\"))\n"
        "  (GetWave_Exists (Usage Info) (Type Boolean) (Default False)\n(Description \"d\")))\n"
        "(Model_Specific\n";
    for (int i = 0; i < Parameters; ++i)
        text += "  (tap_" + std::to_string(i) +
                " (Usage In) (Type Float) (Format Range 0.5 0.0 1.0) (Default 0.5)\n"
                "(Description \"the weight of a tap\"))\n";
    return text + "))\n";
}

static void AddTable(Cells& cells, const RngpLine* line)
{
    for (; line != nullptr; line = line->next)
        for (const double value : {line->x, line->typ, line->min, line->max})
            cells.Add(value);
}

// Reads the document and takes the cells of all tables from the store.
static Cells StoredCells()
{
    Cells cells;
    IbisRoot* root = nullptr;
    Mdl* model = nullptr;
    IBIS_GetIBIS(&root);
    IBIS_GetMdls(root, &model);
    for (; model != nullptr; model = model->next) {
        for (const Vitbl* table :
             {model->pulldown, model->pullup, model->gndClamp, model->powerClamp})
            if (table != nullptr) AddTable(cells, table->head);
        for (const Wvfrm* list : {model->rising, model->falling})
            for (; list != nullptr; list = list->next)
                AddTable(cells, list->head);
    }
    return cells;
}

typedef std::chrono::duration<double> Seconds;

// Processor time: the files are in memory, and other work on the machine must not count.
static Seconds ProcessorTime()
{
    timespec now;
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return std::chrono::seconds(now.tv_sec) + std::chrono::nanoseconds(now.tv_nsec);
}

// Each run returns the time of what it measures.
template <typename Action>
static Seconds Time(Action action)
{
    const Seconds start = ProcessorTime();
    action();
    return ProcessorTime() - start;
}

static Cells s_Read;
static Cells s_Found;

static Seconds ReadDocument()
{
    INIT();
    const Seconds time = Time([] { PARSE(s_Document.c_str(), FILE_IBS); });
    s_Read = StoredCells();
    IbisRoot* root = nullptr;
    IBIS_GetIBIS(&root);
    IBIS_Free(root);
    return time;
}

static Seconds ReadLines()
{
    std::FILE* file = std::fopen(s_Document.c_str(), "r");
    std::size_t length = 0;
    const Seconds time = Time([&] {
        char line[1025];
        while (CMN_GetLine(line, sizeof line, file) != nullptr)
            length += std::strlen(line);
    });
    std::fclose(file);
    benchmark::DoNotOptimize(length);
    return time;
}

static Seconds ReadNumbers()
{
    std::FILE* file = std::fopen(s_Document.c_str(), "r");
    Cells cells;
    const Seconds time = Time([&] {
        char line[1025];
        while (std::fgets(line, sizeof line, file) != nullptr) {
            double values[4];
            int count = 0;
            const char* at = line;
            for (char* end = nullptr; count < 4; at = end) {
                values[count] = std::strtod(at, &end);
                if (end == at) break;
                ++count;
            }
            for (int i = 0; count == 4 && i < count; ++i)
                cells.Add(values[i]);
        }
    });
    std::fclose(file);
    s_Found = cells;
    return time;
}

static Seconds ReadParameters()
{
    return Time([] { PARSE(s_ParameterFile.c_str(), FILE_AMI); });
}

static Seconds ReadParameterLines()
{
    std::FILE* file = std::fopen(s_ParameterFile.c_str(), "r");
    const Seconds time = Time([&] {
        unsigned size = 0;
        while (char* line = CMN_GetInfiniteLine(&size, file))
            CMN_free(line);
    });
    std::fclose(file);
    return time;
}

static Seconds ParseTree()
{
    _tagTreeStruct* tree = nullptr;
    const Seconds time = Time([&] { GetParsedTree(s_ParameterText.data(), &tree); });
    FreeParsedTree(&tree);
    return time;
}

static const struct Run {
    const char* name;
    Seconds (*run)();
    const std::size_t* size;
    int repetitions;
} runs[] = {
    {"component file", ReadDocument, &s_DocumentSize, 15},
    {"component file, lines alone", ReadLines, &s_DocumentSize, 15},
    {"component file, fgets and strtod", ReadNumbers, &s_DocumentSize, 15},
    {"parameter file", ReadParameters, nullptr, 40},
    {"parameter file, lines alone", ReadParameterLines, nullptr, 40},
    {"parameter tree", ParseTree, nullptr, 40},
};

static std::size_t SizeOf(const Run& run)
{
    return run.size != nullptr ? *run.size : s_ParameterText.size();
}

// MB/s of each repetition, by name.
static std::map<std::string, std::vector<double>> s_Speeds;

static void Measure(benchmark::State& state, const Run& run)
{
    for (auto _ : state) {
        const double seconds = run.run().count();
        state.SetIterationTime(seconds);
        s_Speeds[run.name].push_back(static_cast<double>(SizeOf(run)) / 1e6 / seconds);
    }
}

static double Fastest(const char* name)
{
    const std::vector<double>& speeds = s_Speeds[name];
    return speeds.empty() ? std::nan("") : *std::max_element(speeds.begin(), speeds.end());
}

static double Median(const char* name)
{
    std::vector<double> speeds = s_Speeds[name];
    if (speeds.empty()) return std::nan("");
    std::sort(speeds.begin(), speeds.end());
    return speeds[speeds.size() / 2];
}

static void PrintResults()
{
    std::printf("\nMB/s of processor time, fastest and (median) of the runs\n");
    for (const Run& run : runs)
        std::printf("%-34s %7.1f (%.1f)\n", run.name, Fastest(run.name), Median(run.name));
    const double ratio = Fastest("component file, fgets and strtod") / Fastest("component file");
    const double tree = Fastest("parameter tree");
    std::printf("component file takes %.2f of the time of fgets and strtod, %s %.2f\n", ratio,
                ratio <= TimesOfTheFloor ? "within" : "ABOVE", TimesOfTheFloor);
    std::printf("parameter tree %.1f MB/s, %s %.1f\n", tree,
                tree >= TreeSpeed ? "at least" : "BELOW", TreeSpeed);
}

int main(int argc, char** argv)
{
    // The runs take turns, so that a disturbance meets all.
    char interleave[] = "--benchmark_enable_random_interleaving=true";
    std::vector<char*> arguments(argv, argv + argc);
    arguments.insert(arguments.begin() + 1, interleave);
    int count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) return 2;

    const TempDir dir;
    const std::string document = MakeDocument();
    s_DocumentSize = document.size();
    s_Document = dir.Write("bench.ibs", document);
    s_ParameterText = MakeParameters();
    s_ParameterFile = dir.Write("bench.ami", s_ParameterText);
    PARSE_SuppressBanners(1);

    for (const Run& run : runs)
        benchmark::RegisterBenchmark(run.name,
                                     [&run](benchmark::State& state) { Measure(state, run); })
            ->UseManualTime()
            ->Unit(benchmark::kMillisecond)
            ->Iterations(1)
            ->Repetitions(run.repetitions)
            ->ReportAggregatesOnly();
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();

    PrintResults();
    ReadDocument();
    ReadNumbers();
    const bool same = s_Read == s_Found && gulError_cnt == 0;
    std::printf("%zu cells, checksum %016llx, %s\n", s_Read.count,
                static_cast<unsigned long long>(s_Read.bits),
                same ? "equal bit for bit" : "DIFFERENT");
    return same ? 0 : 1;
}
