// Speed of the reader and its checks on documents made here: 20 MB of models, a component of 5,000
// pins with mapping and differential pairs, a package model of 2,000 pins with a full matrix, the
// same with sections, a board, and a 1 MB AMI parameter file. Beside each document stands a floor
// measured in turn with it: fgets with strtod on each of its numbers. The cells of the models in
// the document store are compared bit for bit with those that strtod found: where they differ the
// program exits with 1. Ratios are of the fastest runs.
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
#include <functional>
#include <memory>
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
static const int Pins = 5000;
static const int PackagePins = 2000;        // 2 million cells of a matrix
static const int Sections = 100;            // of a package pin
static const int Paths = 1000;              // of a board, of ten sections
static const int Parameters = 8500;         // about 1 MB
static const double TimesOfTheFloor = 2.0;  // at most
static const double TreeSpeed = 100.0;      // MB/s, at least

static std::string s_parameterFile;
static std::string s_parameterText;

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

static std::string Header(const char* fileName)
{
    return std::string("[IBIS Ver] 5.0\n[File Name] ") + fileName + "\n[File Rev] 1.0\n";
}

static std::string Component(const char* fileName)
{
    return Header(fileName) +
           "[Component] bench\n[Manufacturer] none\n[Package]\nR_pkg 50m NA NA\nL_pkg 1n NA NA\n"
           "C_pkg 1p NA NA\n";
}

static std::string MakeModels(const char* fileName)
{
    static const struct {
        const char* keyword;
        double siemens;
    } tables[] = {
        {"[Pulldown]", 0.02}, {"[Pullup]", -0.02}, {"[GND Clamp]", 0}, {"[POWER Clamp]", 0}};
    std::mt19937_64 random(5);
    std::uniform_real_distribution<double> spread(1.0, 1.001);
    std::string text = Component(fileName) + "[Pin] signal_name model_name\n";
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

static std::string MakePins(const char* fileName)
{
    std::string list, mapping, pairs;
    for (int i = 0; i < Pins; ++i) {
        const std::string name = "P" + std::to_string(i);
        list += name + " signal" + std::to_string(i) + " driver 0.05 1.23n 0.5p\n";
        mapping += name + (i < Pins / 2 ? " GND1 VDD1\n" : " GND1 VDD2\n");
        if (i % 2 == 0) pairs += name + " P" + std::to_string(i + 1) + " 0.2 1n 0.9n 1.1n\n";
    }
    return Component(fileName) + "[Pin] signal_name model_name R_pin L_pin C_pin\n" + list +
           "G1 gnd GND\nV1 vdd1 POWER\nV2 vdd2 POWER\n[Pin Mapping] pulldown_ref pullup_ref\n" +
           mapping + "G1 GND1 NC\nV1 NC VDD1\nV2 NC VDD2\n" +
           "[Diff Pin] inv_pin vdiff tdelay_typ tdelay_min tdelay_max\n" + pairs +
           "[Model] driver\nModel_type 3-state\nC_comp 5p 4p 6p\n[Voltage Range] 3.3 3.0 3.6\n"
           "[Temperature Range] 50 100 0\n[Pulldown]\n-3.3 -0.1 -0.09 -0.11\n6.6 0.2 0.19 0.21\n"
           "[Pullup]\n-3.3 0.1 0.09 0.11\n6.6 -0.2 -0.19 -0.21\n"
           "[Ramp]\ndV/dt_r 1.0/1n 0.9/1.2n 1.1/0.8n\ndV/dt_f 1.0/1n 0.9/1.2n 1.1/0.8n\n[End]\n";
}

static std::string Package(const char* fileName)
{
    return Header(fileName) +
           "[Define Package Model] bench\n[Manufacturer] none\n[OEM] none\n[Description] bench\n"
           "[Number Of Pins] " +
           std::to_string(PackagePins) + "\n";
}

static std::string MakeMatrix(const char* fileName)
{
    std::string text = Package(fileName) + "[Pin Numbers]\n";
    for (int i = 0; i < PackagePins; ++i)
        text += "P" + std::to_string(i) + "\n";
    text += "[Model Data]\n";
    std::mt19937_64 random(7);
    std::uniform_real_distribution<double> coupling(1e-14, 2e-14);
    for (const char* keyword : {"[Inductance Matrix]", "[Capacitance Matrix]"}) {
        text += std::string(keyword) + " Full_matrix\n";
        const bool inductances = keyword[1] == 'I';
        for (int i = 0; i < PackagePins; ++i) {
            text += "[Row] P" + std::to_string(i);
            for (int k = i; k < PackagePins; ++k) {
                char cell[20];
                const double value = k == i ? 1e-10 : inductances ? coupling(random) : -1e-14;
                std::snprintf(cell, sizeof cell, "%c%.5e", (k - i) % 8 == 0 ? '\n' : ' ', value);
                text += cell;
            }
            text += "\n";
        }
    }
    return text + "[End Model Data]\n[End Package Model]\n[End]\n";
}

static std::string MakeSections(const char* fileName)
{
    std::string text = Package(fileName) + "[Number Of Sections] " + std::to_string(Sections) +
                       "\n[Pin Numbers]\n";
    for (int i = 0; i < PackagePins; ++i) {
        text += "P" + std::to_string(i) + "\n";
        for (int k = 0; k < Sections; ++k)
            text += "Len = 0.512 L = 8.35n C = 3.32p R = 0.0" + std::to_string(k) + " /\n";
    }
    return text + "[End Package Model]\n[End]\n";
}

static std::string MakeBoard(const char* fileName)
{
    std::string pins, paths;
    for (int i = 0; i < Paths; ++i) {
        const std::string name = "P" + std::to_string(i);
        pins += name + " signal" + std::to_string(i) + "\n";
        paths += "[Path Description] path" + std::to_string(i) + "\nPin " + name + "\n";
        for (int k = 0; k < 10; ++k)
            paths += "Len = 0.512 L = 8.35n C = 3.32p R = 0.0" + std::to_string(k) + " /\n";
        paths += "Node U1." + std::to_string(i) + "\n";
    }
    return Header(fileName) +
           "[Begin Board Description] bench\n[Manufacturer] none\n[Number Of Pins] " +
           std::to_string(Paths) + "\n[Pin List] signal_name\n" + pins + paths +
           "[Reference Designator Map]\nU1 other.ibs bench\n[End Board Description]\n[End]\n";
}

static const struct Kind {
    const char* fileName;
    FileType type;
    std::string (*make)(const char* fileName);
} kinds[] = {
    {"models.ibs", FILE_IBS, MakeModels}, {"pins.ibs", FILE_IBS, MakePins},
    {"matrix.pkg", FILE_PKG, MakeMatrix}, {"sections.pkg", FILE_PKG, MakeSections},
    {"board.ebd", FILE_EBD, MakeBoard},
};

struct Document {
    const Kind& kind;
    std::string path;
    std::size_t size;
};

static std::vector<Document> s_documents;

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

static Cells s_read;
static Cells s_found;

static Seconds ReadDocument(const Document& document)
{
    INIT();
    const Seconds time = Time([&document] {
        PARSE(document.path.c_str(), document.kind.type);
        TEST(document.kind.type, 0);
    });
    s_read = StoredCells();
    IbisRoot* root = nullptr;
    IBIS_GetIBIS(&root);
    IBIS_Free(root);
    return time;
}

// Takes every number; the cells are those of lines of four.
static Seconds ReadNumbers(const Document& document)
{
    std::FILE* file = std::fopen(document.path.c_str(), "r");
    Cells cells;
    const Seconds time = Time([&] {
        char line[1025];
        while (std::fgets(line, sizeof line, file) != nullptr) {
            double values[4] = {};
            std::size_t count = 0;
            bool words = false;
            char* end = nullptr;
            for (const char* at = line + std::strspn(line, " \n"); *at != '\0';
                 at = end + std::strspn(end, " \n")) {
                values[count % 4] = std::strtod(at, &end);
                if (end != at) {
                    ++count;
                    continue;
                }
                words = true;
                end += std::strcspn(at, " \n");
            }
            for (int i = 0; count == 4 && !words && i < 4; ++i)
                cells.Add(values[i]);
        }
    });
    std::fclose(file);
    s_found = cells;
    return time;
}

static Seconds ReadParameters()
{
    return Time([] { PARSE(s_parameterFile.c_str(), FILE_AMI); });
}

static Seconds ReadParameterLines()
{
    std::FILE* file = std::fopen(s_parameterFile.c_str(), "r");
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
    const Seconds time = Time([&] { GetParsedTree(s_parameterText.data(), &tree); });
    FreeParsedTree(&tree);
    return time;
}

struct Run {
    std::string name;
    std::function<Seconds()> run;
    std::size_t size;
    int repetitions;
    std::vector<double> speeds;  // MB/s of each repetition
};

static std::string FloorName(const Document& document)
{
    return std::string(document.kind.fileName) + ", fgets and strtod";
}

static std::vector<Run> MakeRuns()
{
    std::vector<Run> runs;
    for (const Document& document : s_documents) {
        runs.push_back({document.kind.fileName,
                        [&] { return ReadDocument(document); },
                        document.size,
                        15,
                        {}});
        runs.push_back(
            {FloorName(document), [&] { return ReadNumbers(document); }, document.size, 15, {}});
    }
    const std::size_t size = s_parameterText.size();
    runs.push_back({"parameter file", ReadParameters, size, 40, {}});
    runs.push_back({"parameter file, lines alone", ReadParameterLines, size, 40, {}});
    runs.push_back({"parameter tree", ParseTree, size, 40, {}});
    return runs;
}

static void Measure(benchmark::State& state, Run* run)
{
    for (auto _ : state) {
        const double seconds = run->run().count();
        state.SetIterationTime(seconds);
        run->speeds.push_back(static_cast<double>(run->size) / 1e6 / seconds);
    }
}

static double Fastest(const std::vector<Run>& runs, const std::string& name)
{
    for (const Run& run : runs)
        if (run.name == name && !run.speeds.empty())
            return *std::max_element(run.speeds.begin(), run.speeds.end());
    return std::nan("");
}

static void PrintResults(const std::vector<Run>& runs)
{
    std::printf("\nMB/s of processor time, fastest and (median) of the runs\n");
    for (const Run& run : runs) {
        std::vector<double> speeds = run.speeds;
        std::sort(speeds.begin(), speeds.end());
        if (!speeds.empty())
            std::printf("%-34s %7.1f (%.1f)\n", run.name.c_str(), speeds.back(),
                        speeds[speeds.size() / 2]);
    }
    std::printf("\nRead and checked, times of fgets and strtod, at most %.2f:\n", TimesOfTheFloor);
    for (const Document& document : s_documents) {
        const double ratio =
            Fastest(runs, FloorName(document)) / Fastest(runs, document.kind.fileName);
        std::printf("%-34s %7.2f%s\n", document.kind.fileName, ratio,
                    ratio <= TimesOfTheFloor ? "" : " ABOVE");
    }
    const double tree = Fastest(runs, "parameter tree");
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
    for (const Kind& kind : kinds) {
        const std::string text = kind.make(kind.fileName);
        s_documents.push_back({kind, dir.Write(kind.fileName, text), text.size()});
    }
    s_parameterText = MakeParameters();
    s_parameterFile = dir.Write("bench.ami", s_parameterText);
    PARSE_SuppressBanners(1);
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> nowhere(std::fopen("/dev/null", "w"),
                                                                  std::fclose);
    ERRLOG_SetOutputFile(nowhere.get());

    std::vector<Run> runs = MakeRuns();
    for (Run& run : runs)
        benchmark::RegisterBenchmark(run.name.c_str(),
                                     [&run](benchmark::State& state) { Measure(state, &run); })
            ->UseManualTime()
            ->Unit(benchmark::kMillisecond)
            ->Iterations(1)
            ->Repetitions(run.repetitions)
            ->ReportAggregatesOnly();
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    PrintResults(runs);

    const Document& models = s_documents.front();
    ReadDocument(models);
    ReadNumbers(models);
    const bool same = s_read == s_found && gulError_cnt == 0;
    std::printf("%zu cells, checksum %016llx, %s\n", s_read.count,
                static_cast<unsigned long long>(s_read.bits),
                same ? "equal bit for bit" : "DIFFERENT");
    return same ? 0 : 1;
}
