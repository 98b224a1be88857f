// The statistical eye of a link behind its model.
#include "quell/link_eye.h"

#include <algorithm>
#include <cmath>

#include "quell/eye/pulse.h"

namespace quell {

namespace {

// The eye wants a whole number of samples in a unit interval.
std::vector<double> OnWholeSamples(const std::vector<double>& pulse, double samplesPerBit,
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

}  // namespace

std::optional<LinkEye> MeasureLinkEye(const LinkResult& link, const LinkEyeOptions& options)
{
    const size_t samplesPerUi = static_cast<size_t>(std::ceil(link.grid.samplesPerBit));
    std::vector<std::vector<double>> pulses;
    for (const LinkColumn& column : link.columns) {
        if (!column.after) return std::nullopt;
        const std::vector<double>& pulse = column.after->pulse;
        const bool finite =
            std::all_of(pulse.begin(), pulse.end(), [](double v) { return std::isfinite(v); });
        if (!finite) return std::nullopt;
        pulses.push_back(OnWholeSamples(pulse, link.grid.samplesPerBit, samplesPerUi));
    }
    std::vector<double> victim = std::move(pulses.front());
    pulses.erase(pulses.begin());

    // An inverting link has an eye like any other.
    const auto [least, greatest] = std::minmax_element(victim.begin(), victim.end());
    if (*least == 0 && *greatest == 0) return std::nullopt;
    if (-*least > *greatest)
        for (double& v : victim)
            v = -v;

    LinkEye result;
    result.errorRate = options.errorRate;
    result.eye = ComputeEye(victim, pulses, samplesPerUi,
                            link.grid.BitTime() / static_cast<double>(samplesPerUi), options.eye);
    const size_t best = BestPhase(result.eye, options.errorRate);
    result.height = EyeHeight(result.eye, best, options.errorRate);
    result.width = EyeWidth(result.eye, options.errorRate);
    result.phase = (static_cast<double>(best) - static_cast<double>(result.eye.centre)) *
                   result.eye.phaseStep / result.eye.unitInterval;
    for (const double errorRate : s_EyeErrorRates)
        result.heights.push_back(EyeHeight(result.eye, best, errorRate));
    return result;
}

}  // namespace quell
