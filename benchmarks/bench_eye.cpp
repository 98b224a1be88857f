// Time of one statistical eye: the loss line of 8 dB at 2.5 GHz, alone, with noise and jitter, and
// with two aggressors. The pulse response is that of the bare line.
#include <benchmark/benchmark.h>

#include "quell/channel/channel.h"
#include "quell/signal/pulse.h"
#include "quell/signal/statistical_eye.h"

namespace {

using namespace quell;

constexpr std::size_t SamplesPerUi = 16;

std::vector<double> LinePulse(const char* line, double* interval)
{
    const ImpulseMatrix matrix = BuildImpulseMatrix(line, {}, {});
    *interval = matrix.grid.Interval();
    return PulseResponse(matrix.columns.front().impulse, *interval, SamplesPerUi);
}

void Eye(benchmark::State& state, const EyeOptions& options, std::size_t aggressors)
{
    double interval = 0;
    const std::vector<double> victim = LinePulse("loss:8dB@2.5GHz", &interval);
    std::vector<double> aggressor = LinePulse("loss:20dB@2.5GHz", &interval);
    for (double& v : aggressor)
        v *= 0.05;
    const std::vector<std::vector<double>> all(aggressors, aggressor);
    double height = 0;
    for (auto _ : state) {
        const StatisticalEye eye = ComputeEye(victim, all, SamplesPerUi, interval, options);
        height = EyeHeight(eye, BestPhase(eye, 1e-12), 1e-12);
        benchmark::DoNotOptimize(height);
    }
    state.counters["height_V"] = height;
}

}  // namespace

BENCHMARK_CAPTURE(Eye, alone, EyeOptions{}, 0)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Eye, noise_2mV, EyeOptions{.noise = 2e-3}, 0)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Eye, jitter_2ps_5ps, EyeOptions{.randomJitter = 2e-12, .dualDirac = 5e-12}, 0)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Eye, two_aggressors, EyeOptions{}, 2)->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
