// From a through response over frequency to an impulse response on a time grid.
#include "quell/channel/through_impulse.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <numbers>
#include <optional>

#include "quell/base/numbers.h"
#include "quell/channel/high_pass.h"
#include "quell/signal/transform.h"

namespace quell {

namespace {

constexpr size_t ShortestRecord = 2048;        // samples
constexpr size_t LongestTransform = 1U << 19;  // samples
// The part of a response's energy outside its record that is worth a warning.
constexpr double OutsidePart = 0.001;
// The part of the gain at 0 Hz that is worth it: a skin effect's tail is long, but not that long.
constexpr double OutsideGain = 0.05;
// The lowest point of a through response is a stray one from this phase error on.
constexpr double StrayPhase = 0.5;  // rad
constexpr double StrayGain = 0.5;
// From here on a band fades, in parts of half the sampling rate.
constexpr double FadeFrom = 0.75;
// What is kept before the delay: time, as the data's own band rings, and samples, as the fade does.
constexpr double TimeBefore = 100e-12;  // s
constexpr double SamplesBefore = 32;
// A high-pass up to this part of the bit rate is a coupling capacitor, which line coding hides.
constexpr double HighPassPart = 1e-3;

// Some files begin with a point whose phase fits neither DC nor the points behind it. Its weight at
// low frequency would tilt the whole response, so it is left out. A high-pass may turn the phase
// there, but it does not pass more at its lowest point.
FrequencyResponse WithoutStrayPoint(const FrequencyResponse& response, const std::string& column,
                                    std::vector<std::string>& warnings)
{
    const double error = LowestPhaseError(response);
    const double first = std::abs(response.gain[0]);
    if (response.frequency.front() == 0 || std::abs(error) < StrayPhase || first < StrayGain ||
        first < std::abs(response.gain[1]))
        return response;
    warnings.push_back(column + ": the phase at " + UnitText(response.frequency.front(), "Hz") +
                       " is " + ShortText(std::abs(error) * 180 / std::numbers::pi, 2) +
                       " degrees off its neighbours; this point is left out");
    FrequencyResponse rest = response;
    rest.frequency.erase(rest.frequency.begin());
    rest.gain.erase(rest.gain.begin());
    return rest;
}

std::string HighPassText(const HighPass& highPass)
{
    return highPass.corner > 0 ? "a high-pass at " + UnitText(highPass.corner, "Hz", 3)
                               : "a high-pass between 0 Hz and " + UnitText(highPass.above, "Hz");
}

// The response that is transformed: without a stray lowest point, and without the high-pass of a
// coupling capacitor.
FrequencyResponse Prepared(const FrequencyResponse& response, const TimeGrid& grid,
                           bool keepHighPass, const std::string& column, ThroughImpulse& result,
                           std::vector<std::string>& warnings)
{
    const FrequencyResponse data = WithoutStrayPoint(response, column, warnings);
    const std::optional<HighPass> highPass = FindHighPass(data);
    if (!highPass) return data;
    const std::string found = column + ": AC-coupled, " + HighPassText(*highPass);
    result.plateau = highPass->plateau;
    if (keepHighPass || highPass->corner > HighPassPart * grid.bitRate) {
        warnings.push_back(found +
                           " is kept: its baseline wander is in the result, as far as the "
                           "record reaches");
        return data;
    }
    result.treatment.dcFrom = "the plateau above " + HighPassText(*highPass);
    warnings.push_back(found +
                       " is left out: its plateau is carried down to DC (--dc keep takes "
                       "the file as it is)");
    return WithoutHighPass(data, *highPass);
}

double SmallestStep(const std::vector<double>& frequency)
{
    double step = frequency[1] - frequency[0];
    for (size_t k = 2; k < frequency.size(); ++k)
        step = std::min(step, frequency[k] - frequency[k - 1]);
    return step;
}

// One up to FadeFrom of the band's end, a raised cosine from there to zero.
double Fade(double frequency, double end)
{
    const double part = (frequency / end - FadeFrom) / (1 - FadeFrom);
    if (part <= 0) return 1;
    return part >= 1 ? 0 : 0.5 + 0.5 * std::cos(std::numbers::pi * part);
}

struct Outside {
    double energy = 0;  // part of the whole energy
    double sum = 0;     // V
};

// The samples of a circular response from `start` on, as many as the record has; what lies outside
// is added to the places a whole number of records away.
Outside Fold(const std::vector<double>& circle, std::ptrdiff_t start, double interval,
             std::vector<double>& record)
{
    const size_t size = circle.size();
    const size_t first =
        static_cast<size_t>(start < 0 ? start + static_cast<std::ptrdiff_t>(size) : start);
    const size_t length = record.size();
    Outside outside;
    double energy = 0;
    for (size_t n = 0; n < size; ++n) {
        const double h = circle[(first + n) % size];
        energy += h * h;
        if (n < length) {
            record[n] += h;
            continue;
        }
        outside.energy += h * h;
        outside.sum += h * interval;
        // The first half behind the record is later, the other half is earlier than it.
        const size_t later = (n - length) % length;
        const size_t earlier = length - 1 - (size - 1 - n) % length;
        record[n < length + (size - length) / 2 ? later : earlier] += h;
    }
    if (energy > 0) outside.energy /= energy;
    return outside;
}

void WarnOfOutside(const Outside& outside, const Treatment& treatment, const std::string& column,
                   std::vector<std::string>& warnings)
{
    const double gain = std::abs(outside.sum) / std::max(std::abs(treatment.dc), 0.1);
    std::string what;
    if (outside.energy > OutsidePart)
        what = ShortText(100 * outside.energy, 2) + " % of the response's energy";
    else if (gain > OutsideGain)
        what = ShortText(100 * gain, 2) + " % of the gain at 0 Hz";
    else
        return;
    warnings.push_back(column + ": " + what + " lies before time zero or behind its record of " +
                       UnitText(treatment.record, "s") +
                       " (data not causal, or frequency step too coarse)");
}

void WarnOfBand(const FrequencyResponse& response, const TimeGrid& grid, const std::string& column,
                std::vector<std::string>& warnings)
{
    const double low = response.frequency.front();
    const double high = response.frequency.back();
    if (!LossAt(response, grid.Nyquist())) {
        warnings.push_back(column + ": half the bit rate, " + UnitText(grid.Nyquist(), "Hz") +
                           ", lies outside the file's " + UnitText(low, "Hz") + " to " +
                           UnitText(high, "Hz"));
    } else if (high < grid.bitRate) {
        warnings.push_back(column + ": the file ends at " + UnitText(high, "Hz") +
                           ", below the bit rate of " + UnitText(grid.bitRate, "bit/s") +
                           ": what lies above is extrapolated from its last quarter");
    }
}

}  // namespace

ThroughImpulse TransformThrough(const FrequencyResponse& response, const TimeGrid& grid,
                                bool keepHighPass, const std::string& column,
                                std::vector<std::string>& warnings)
{
    ThroughImpulse result;
    Treatment& treatment = result.treatment;
    const FrequencyResponse data = Prepared(response, grid, keepHighPass, column, result, warnings);
    const ResponseCurve curve(data);
    const double interval = grid.Interval();
    result.delay = curve.Delay();
    if (result.plateau == 0) result.plateau = std::abs(curve.DcGain());

    const double resolved =
        std::clamp(1 / (SmallestStep(data.frequency) * interval), double{ShortestRecord},
                   static_cast<double>(LongestTransform) / 2);
    const size_t length = static_cast<size_t>(resolved);
    const double before = std::max(TimeBefore / interval, SamplesBefore);
    const double start = std::floor(curve.Delay() / interval - before);
    const std::ptrdiff_t moved = static_cast<std::ptrdiff_t>(std::max(0.0, -start));
    const std::ptrdiff_t zeros = static_cast<std::ptrdiff_t>(std::max(0.0, start));

    const double end = 0.5 / interval;
    const size_t size = std::bit_ceil(2 * length);
    const std::vector<double> circle =
        ImpulseResponse([&](double f) { return curve.At(f) * Fade(f, end); }, size, interval);
    const std::ptrdiff_t turns = static_cast<std::ptrdiff_t>(size);
    std::vector<double> record(length);
    const Outside outside = Fold(circle, (zeros - moved) % turns, interval, record);
    result.impulse.assign(static_cast<size_t>(zeros), 0.0);
    result.impulse.insert(result.impulse.end(), record.begin(), record.end());

    treatment.dc = curve.DcGain();
    if (treatment.dcFrom.empty())
        treatment.dcFrom =
            data.frequency.front() == 0 ? "the file" : "the lowest octave over sqrt(f)";
    treatment.band = {response.frequency.front(), response.frequency.back()};
    treatment.continuedTo = end > response.frequency.back() ? end : 0;
    treatment.record = static_cast<double>(result.impulse.size()) * interval;
    treatment.delayRemoved = moved > 0 ? -static_cast<double>(moved) * interval : 0;

    WarnOfOutside(outside, treatment, column, warnings);
    WarnOfBand(response, grid, column, warnings);
    return result;
}

}  // namespace quell
