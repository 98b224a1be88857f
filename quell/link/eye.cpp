// The statistical eye at a point of a link.
#include "quell/link/eye.h"

#include <algorithm>
#include <cmath>

#include "quell/signal/pulse.h"

namespace quell {

namespace {

// The eye wants a whole number of samples in a unit interval.
std::vector<double> OnWholeSamples(std::vector<double> pulse, double samplesPerBit,
                                   size_t samplesPerUi)
{
    const double ratio = samplesPerBit / static_cast<double>(samplesPerUi);
    if (ratio == 1) return pulse;
    std::vector<double> resampled;
    const double last = static_cast<double>(pulse.size() - 1);
    for (size_t n = 0; static_cast<double>(n) * ratio <= last; ++n)
        resampled.push_back(ValueAt(pulse, static_cast<double>(n) * ratio));
    return resampled;
}

// What the eye is made of.
struct EyeInput {
    std::vector<double> victim;  // upright
    std::vector<std::vector<double>> aggressors;
};

std::optional<EyeInput> MakeEyeInput(const LinkPoint& point, const TimeGrid& grid,
                                     size_t samplesPerUi)
{
    EyeInput input;
    for (size_t k = 0; k < point.impulses.Columns(); ++k) {
        std::vector<double> pulse = PulseAt(point, k, grid);
        const bool finite =
            std::all_of(pulse.begin(), pulse.end(), [](double v) { return std::isfinite(v); });
        if (!finite) return std::nullopt;
        pulse = OnWholeSamples(std::move(pulse), grid.samplesPerBit, samplesPerUi);
        if (k == 0)
            input.victim = std::move(pulse);
        else
            input.aggressors.push_back(std::move(pulse));
    }

    // An inverting link has an eye like any other.
    const auto [least, greatest] = std::minmax_element(input.victim.begin(), input.victim.end());
    if (*least == 0 && *greatest == 0) return std::nullopt;
    if (-*least > *greatest)
        for (double& v : input.victim)
            v = -v;
    return input;
}

size_t WholeSamples(const TimeGrid& grid)
{
    return static_cast<size_t>(std::ceil(grid.samplesPerBit));
}

}  // namespace

std::optional<LinkEye> MeasureLinkEye(const LinkPoint& point, const TimeGrid& grid,
                                      const LinkEyeOptions& options)
{
    const size_t samplesPerUi = WholeSamples(grid);
    const std::optional<EyeInput> input = MakeEyeInput(point, grid, samplesPerUi);
    if (!input) return std::nullopt;

    LinkEye result;
    result.errorRate = options.errorRate;
    result.eye = ComputeEye(input->victim, input->aggressors, samplesPerUi,
                            grid.BitTime() / static_cast<double>(samplesPerUi), options.eye);
    const size_t best = BestPhase(result.eye, options.errorRate);
    result.height = EyeHeight(result.eye, best, options.errorRate);
    result.width = EyeWidth(result.eye, options.errorRate);
    result.phase = (static_cast<double>(best) - static_cast<double>(result.eye.centre)) *
                   result.eye.phaseStep / result.eye.unitInterval;
    result.samplingTime = result.eye.middle + result.phase * result.eye.unitInterval;
    for (const double errorRate : EyeErrorRates)
        result.heights.push_back(EyeHeight(result.eye, best, errorRate));
    return result;
}

}  // namespace quell
