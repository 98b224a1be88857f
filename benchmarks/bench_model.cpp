// Time of AMI_Init per sample, against the same arithmetic written as one fused scalar loop. Both
// run in turn over the same matrices, and their results are compared bit for bit: where these
// differ, or AMI_Init fails, the program exits with 1. The ratios are of the fastest runs.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "model/AMI.h"

using Samples = std::vector<double>;

static const int SamplesPerBit = 16;
static const double BitTime = 200e-12;
static const double TimesOfTheLoop = 1.15;  // at most

static const struct Shape {
    const char* name;
    const char* deEmphasis;  // dB
    long rowSize;
    long aggressors;
    long pulse;  // samples before the zeros begin
} shapes[] = {
    {"1 x 1,000,000 at 3.5 dB", "3.5", 1000000, 0, 1000000},
    {"1 x 1,000,000 at 0 dB", "0", 1000000, 0, 1000000},
    {"8 x 20,000 at 3.5 dB", "3.5", 20000, 7, 20000},
    {"pulse and zeros at 3.5 dB", "3.5", 1000000, 0, 200},
    {"pulse and zeros at 0 dB", "0", 1000000, 0, 200},
};

// Shapes by place in the table above: the same matrix with a zero tail and without.
static const struct {
    int tail;
    int full;
} tails[] = {{3, 0}, {4, 1}};

static Samples MakeMatrix(const Shape& shape)
{
    std::mt19937_64 random(5);
    std::uniform_real_distribution<double> volts(-1.0, 1.0);
    Samples matrix(static_cast<std::size_t>(shape.rowSize * (shape.aggressors + 1)));
    for (std::size_t i = 0; i < matrix.size(); ++i)
        if (static_cast<long>(i) % shape.rowSize < shape.pulse) matrix[i] = volts(random);
    return matrix;
}

static bool RunModel(const Shape& shape, Samples& matrix)
{
    std::string parameters =
        std::string("(Quell_PCIe_Gen2_Tx (de_emphasis ") + shape.deEmphasis + "))";
    void* handle = nullptr;
    char* message = nullptr;
    const long result =
        AMI_Init(matrix.data(), shape.rowSize, shape.aggressors, BitTime / SamplesPerBit, BitTime,
                 parameters.data(), nullptr, &handle, &message);
    AMI_Close(handle);
    return result == 1 && message == nullptr;
}

// The whole transmitter in one loop over the matrix.
static bool RunLoop(const Shape& shape, Samples& matrix)
{
    const double ratio = std::pow(10.0, std::strtod(shape.deEmphasis, nullptr) / 20.0);
    const double main = (1.0 / ratio + 1.0) * 0.5;
    const double post = main - 1.0;

    const double T = 1.0 / (SamplesPerBit / BitTime);
    const double K = 2.0 / T;
    const double a = -7.0e9 * 6.283185307179586;
    const double b = -1.0e10 * 6.283185307179586;
    const double d0 = (K - b) * (K - a);
    const double d1 = (-(K - b) * (K + a) - (K - a) * (K + b)) / d0;
    const double d2 = (K + b) * (K + a) / d0;
    const double gain = 2.76348923230502e21 * (1.0 / d0);
    const double n0 = gain;
    const double n1 = (2.0 / d0) / (1.0 / d0) * gain;
    const double n2 = gain;

    double line[SamplesPerBit] = {};
    int oldest = 0;
    double* x = matrix.data();
    for (long column = 0; column <= shape.aggressors; ++column) {
        double s1 = 0.0;
        double s2 = 0.0;
        for (long i = 0; i < shape.rowSize; ++i, ++x) {
            const double delayed = line[oldest];
            line[oldest] = *x;
            if (++oldest == SamplesPerBit) oldest = 0;
            const double u = 0.0 + main * *x + -post + post * delayed;
            const double w = u - d1 * s1 - d2 * s2;
            *x = n0 * w + n1 * s1 + n2 * s2;
            s2 = s1;
            s1 = w;
        }
    }
    return true;
}

// Nanoseconds per sample of each run, by name.
static std::map<std::string, Samples> times;

static void Measure(benchmark::State& state, const std::string& name, const Shape& shape,
                    bool (*run)(const Shape&, Samples&))
{
    const Samples input = MakeMatrix(shape);
    Samples matrix;
    double seconds = 0.0;
    std::size_t samples = 0;
    while (state.KeepRunning()) {
        matrix = input;
        const auto start = std::chrono::steady_clock::now();
        run(shape, matrix);
        const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start;
        state.SetIterationTime(time.count());
        seconds += time.count();
        samples += matrix.size();
    }
    double checksum = 0.0;
    for (const double x : matrix)
        checksum += x;
    state.counters["checksum"] = checksum;
    state.SetItemsProcessed(static_cast<int64_t>(samples));
    times[name].push_back(seconds / static_cast<double>(samples) * 1e9);
}

static bool SameResults(const Shape& shape)
{
    Samples model = MakeMatrix(shape);
    Samples loop = model;
    return RunModel(shape, model) && RunLoop(shape, loop) &&
           std::memcmp(model.data(), loop.data(), model.size() * sizeof(double)) == 0;
}

static std::string LoopName(const Shape& shape)
{
    return std::string("loop, ") + shape.name;
}

static void Register(const std::string& name, const Shape& shape,
                     bool (*run)(const Shape&, Samples&))
{
    benchmark::RegisterBenchmark(name.c_str(),
                                 [=](benchmark::State& state) { Measure(state, name, shape, run); })
        ->UseManualTime()
        ->Unit(benchmark::kMillisecond)
        ->Iterations(std::max(1L, 1000000 / (shape.rowSize * (shape.aggressors + 1))))
        ->Repetitions(40)
        ->ReportAggregatesOnly();
}

static double Fastest(const Samples& runs)
{
    return *std::min_element(runs.begin(), runs.end());
}

static double Median(Samples runs)
{
    std::sort(runs.begin(), runs.end());
    return runs[runs.size() / 2];
}

static void PrintRatio(const std::string& name, const std::string& other, double limit)
{
    const Samples& runs = times[name];
    const Samples& otherRuns = times[other];
    if (runs.empty() || otherRuns.empty()) return;  // left out on the command line
    const double ratio = Fastest(runs) / Fastest(otherRuns);
    std::printf("ratio %.3f, %s %.2f: %s %.3f (%.3f), %s %.3f (%.3f)\n", ratio,
                ratio <= limit ? "within" : "ABOVE", limit, name.c_str(), Fastest(runs),
                Median(runs), other.c_str(), Fastest(otherRuns), Median(otherRuns));
}

int main(int argc, char** argv)
{
    // The runs of model and loop take turns, so that a disturbance meets both.
    char interleave[] = "--benchmark_enable_random_interleaving=true";
    std::vector<char*> arguments(argv, argv + argc);
    arguments.insert(arguments.begin() + 1, interleave);
    int count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) return 2;

    for (const Shape& shape : shapes) {
        Register(shape.name, shape, RunModel);
        Register(LoopName(shape), shape, RunLoop);
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();

    bool same = true;
    std::printf("\nns per sample, fastest and (median) of the runs\n");
    for (const Shape& shape : shapes) {
        const std::string loop = LoopName(shape);
        const bool equal = SameResults(shape);
        same = same && equal;
        PrintRatio(shape.name, loop, TimesOfTheLoop);
        std::printf("    results %s\n", equal ? "equal bit for bit" : "DIFFER");
    }
    for (const auto& pair : tails)
        PrintRatio(shapes[pair.tail].name, shapes[pair.full].name, 1.0);
    return same ? 0 : 1;
}
