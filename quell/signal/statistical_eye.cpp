#include "quell/signal/statistical_eye.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace quell {

namespace {

// Every sample of the response one unit interval apart, but the main cursor; half amplitudes.
std::vector<double> HalfCursors(std::span<const double> pulse, std::size_t phase,
                                std::size_t samplesPerUi, std::size_t main)
{
    std::vector<double> halves;
    for (std::size_t i = phase; i < pulse.size(); i += samplesPerUi)
        if (i != main) halves.push_back(0.5 * pulse[i]);
    return halves;
}

Density CursorDensity(std::span<const double> halves, double step)
{
    return SumOfSigns(RoundToGrid(halves, step));
}

constexpr std::size_t NoMain = SIZE_MAX;

// The finest grid that pays: heights of lossy channels no longer move by 0.1 mV beyond it.
constexpr double StepsPerCursor = 16384.0;
// Responses of very many strong cursors, whose eye is long closed, get a coarser grid; the more so
// where densities must be convolved with each other, which costs the product of their lengths.
constexpr double StepsPerSum = 131072.0;
constexpr double StepsPerSumConvolved = 16384.0;

Density AggressorDensity(std::span<const double> pulse, std::size_t samplesPerUi, double step)
{
    Density average = {0, {}};
    const double weight = 1.0 / static_cast<double>(samplesPerUi);
    for (std::size_t phase = 0; phase < samplesPerUi; ++phase)
        Accumulate(&average, CursorDensity(HalfCursors(pulse, phase, samplesPerUi, NoMain), step),
                   weight, 0);
    return average;
}

// Of each phase the sum of the magnitudes of its cursors.
std::vector<double> CursorSums(std::span<const double> pulse, std::size_t samplesPerUi)
{
    std::vector<double> sums(samplesPerUi, 0.0);
    for (std::size_t i = 0; i < pulse.size(); ++i)
        sums[i % samplesPerUi] += std::abs(pulse[i]);
    return sums;
}

// The sample in the middle of the eye: of the run of instants around the highest one where peak
// distortion leaves it open, or, should it be closed or nearly so, where it has not lost half the
// main cursor. The highest instant itself often lies near one end of the opening.
long MiddleOfEye(std::span<const double> pulse, std::size_t samplesPerUi)
{
    const std::vector<double> sums = CursorSums(pulse, samplesPerUi);
    // By peak distortion, p0 - sum |pk|, with a sample as the main cursor.
    const auto height = [&](long at) {
        const std::size_t i = static_cast<std::size_t>(at);
        return pulse[i] + std::abs(pulse[i]) - sums[i % samplesPerUi];
    };
    long best = 0;
    for (long i = 1; i < static_cast<long>(pulse.size()); ++i)
        if (height(i) > height(best)) best = i;
    const double floor = std::min(0.0, height(best) - 0.5 * pulse[static_cast<std::size_t>(best)]);
    const long reach = static_cast<long>(samplesPerUi);
    const long lowest = std::max(0L, best - reach);
    const long highest = std::min(static_cast<long>(pulse.size()) - 1, best + reach);
    long begin = best;
    long end = best;
    while (begin > lowest && height(begin - 1) > floor)
        --begin;
    while (end < highest && height(end + 1) > floor)
        ++end;
    return (begin + end) / 2;
}

double VoltageStep(std::span<const double> pulse, std::size_t samplesPerUi, bool convolved)
{
    const std::vector<double> sums = CursorSums(pulse, samplesPerUi);
    return std::max(*std::max_element(pulse.begin(), pulse.end()) / StepsPerCursor,
                    *std::max_element(sums.begin(), sums.end()) /
                        (convolved ? StepsPerSumConvolved : StepsPerSum));
}

// Cubic interpolation (Catmull-Rom) to factor times the sampling rate.
std::vector<double> Oversample(std::span<const double> pulse, std::size_t factor)
{
    const auto at = [pulse](std::size_t i, std::ptrdiff_t offset) {
        const std::ptrdiff_t k = static_cast<std::ptrdiff_t>(i) + offset;
        const bool inside = k >= 0 && k < static_cast<std::ptrdiff_t>(pulse.size());
        return inside ? pulse[static_cast<std::size_t>(k)] : 0.0;
    };
    std::vector<double> fine;
    fine.reserve(pulse.size() * factor);
    for (std::size_t i = 0; i < pulse.size(); ++i) {
        const double a = at(i, -1), b = at(i, 0), c = at(i, 1), d = at(i, 2);
        for (std::size_t j = 0; j < factor; ++j) {
            const double t = static_cast<double>(j) / static_cast<double>(factor);
            fine.push_back(b + 0.5 * t *
                                   ((c - a) + t * ((2.0 * a - 5.0 * b + 4.0 * c - d) +
                                                   t * (3.0 * (b - c) + d - a))));
        }
    }
    return fine;
}

// Sampling instants must lie close enough to tell the jitter's shape.
std::size_t OversamplingFor(const EyeOptions& options, double sampleInterval)
{
    double finest = sampleInterval;
    if (options.randomJitter > 0.0) finest = std::min(finest, options.randomJitter);
    if (options.dualDirac > 0.0) finest = std::min(finest, options.dualDirac / 2.0);
    return static_cast<std::size_t>(std::clamp(std::ceil(sampleInterval / finest), 1.0, 32.0));
}

// Density of the sampling instant, in phase steps.
Density JitterDensity(const EyeOptions& options, double phaseStep)
{
    Density jitter = Gaussian(options.randomJitter, phaseStep);
    if (options.dualDirac > 0.0) {
        const long reach = std::lround(options.dualDirac / 2.0 / phaseStep);
        jitter = Convolve(jitter, SumOfSigns(std::vector<long>{reach}));
    }
    TrimTails(&jitter);
    return jitter;
}

// The phase i as jitter sees it: a mixture of the phases around it. Where jitter reaches beyond the
// unit interval, the same bit's response is read on.
EyePhase Jittered(const std::vector<EyePhase>& phases, std::size_t i, const Density& jitter,
                  double step)
{
    EyePhase mixed = {phases[i].mainCursor, {0, {}}};
    for (std::size_t k = 0; k < jitter.mass.size(); ++k) {
        const long offset = jitter.first + static_cast<long>(k);
        const EyePhase& other = phases[static_cast<std::size_t>(static_cast<long>(i) + offset)];
        const double moved = 0.5 * (other.mainCursor - mixed.mainCursor) / step;
        Accumulate(&mixed.isi, other.isi, jitter.mass[k], std::lround(moved));
    }
    return mixed;
}

}  // namespace

double EyeHeight(const StatisticalEye& eye, std::size_t phase, double errorRate)
{
    const EyePhase& p = eye.phases[phase];
    return p.mainCursor +
           2.0 * static_cast<double>(LowerQuantile(p.isi, errorRate)) * eye.voltageStep;
}

std::size_t BestPhase(const StatisticalEye& eye, double errorRate)
{
    std::size_t best = eye.centre;
    double highest = EyeHeight(eye, best, errorRate);
    for (std::size_t i = 0; i < eye.phases.size(); ++i) {
        const double height = EyeHeight(eye, i, errorRate);
        if (height > highest) {
            highest = height;
            best = i;
        }
    }
    std::size_t end = best;
    while (end + 1 < eye.phases.size() && EyeHeight(eye, end + 1, errorRate) == highest)
        ++end;
    return (best + end) / 2;
}

double EyeWidth(const StatisticalEye& eye, double errorRate)
{
    const std::size_t best = BestPhase(eye, errorRate);
    if (EyeHeight(eye, best, errorRate) <= 0.0) return 0.0;

    const double halfUi = 0.5 * eye.unitInterval / eye.phaseStep;
    const double fromCentre = static_cast<double>(eye.centre) - static_cast<double>(best);
    // Phases from the best one to the crossing, in one direction.
    const auto reach = [&](int direction) {
        double inner = EyeHeight(eye, best, errorRate);
        for (long i = static_cast<long>(best) + direction;; i += direction) {
            const double steps = std::abs(static_cast<double>(i - static_cast<long>(best)));
            // Open to the edge of the unit interval, where the next bit's eye begins.
            if (i < 0 || i >= static_cast<long>(eye.phases.size()))
                return halfUi + direction * fromCentre;
            const double outer = EyeHeight(eye, static_cast<std::size_t>(i), errorRate);
            if (outer <= 0.0) return steps - 1.0 + inner / (inner - outer);
            inner = outer;
        }
    };
    return std::min(1.0, (reach(-1) + reach(1)) * eye.phaseStep / eye.unitInterval);
}

double ErrorRate(const StatisticalEye& eye, std::size_t phase)
{
    const EyePhase& p = eye.phases[phase];
    return ProbabilityBelow(p.isi, -0.5 * p.mainCursor / eye.voltageStep);
}

StatisticalEye ComputeEye(std::span<const double> victim,
                          std::span<const std::vector<double>> aggressors, std::size_t samplesPerUi,
                          double sampleInterval, const EyeOptions& options)
{
    // Jitter needs finer phases than the result has.
    const std::size_t factor = OversamplingFor(options, sampleInterval);
    const std::size_t finePerUi = samplesPerUi * factor;
    const std::vector<double> finer =
        factor == 1 ? std::vector<double>() : Oversample(victim, factor);
    const std::span<const double> pulse = factor == 1 ? victim : std::span<const double>(finer);
    const Density jitter = JitterDensity(options, sampleInterval / static_cast<double>(factor));
    const long margin = std::max(std::abs(jitter.first), std::abs(jitter.last()));

    double step = options.voltageStep;
    if (!(step > 0.0)) {
        const bool convolved = options.noise > 0.0 || !aggressors.empty();
        step = VoltageStep(pulse, finePerUi, convolved);
        // An aggressor far stronger than the victim sets the scale.
        for (const std::vector<double>& aggressor : aggressors)
            step = std::max(step, VoltageStep(aggressor, samplesPerUi, convolved));
    }

    // One unit interval around the middle, and on both sides what the jitter reaches.
    const long n = static_cast<long>(finePerUi);
    const long middle = MiddleOfEye(pulse, finePerUi);
    const std::size_t centre = samplesPerUi / 2;
    const long begin = middle - static_cast<long>(centre * factor) - margin;
    std::vector<EyePhase> fine;
    const long end = middle + static_cast<long>(centre * factor) + margin;
    for (long main = begin; main <= end; ++main) {
        const std::size_t phase = static_cast<std::size_t>((main % n + n) % n);
        const bool inside = main >= 0 && main < static_cast<long>(pulse.size());
        const std::size_t index = inside ? static_cast<std::size_t>(main) : NoMain;
        fine.push_back({inside ? pulse[index] : 0.0,
                        CursorDensity(HalfCursors(pulse, phase, finePerUi, index), step)});
    }

    Density added = Gaussian(options.noise, step);
    for (const std::vector<double>& aggressor : aggressors) {
        added = Convolve(added, AggressorDensity(aggressor, samplesPerUi, step));
        TrimTails(&added);
    }

    StatisticalEye eye = {
        sampleInterval * static_cast<double>(samplesPerUi), sampleInterval, step, centre, {}};
    for (std::size_t i = 0; i <= 2 * centre; ++i) {
        EyePhase phase =
            Jittered(fine, static_cast<std::size_t>(margin) + i * factor, jitter, step);
        if (added.mass.size() > 1) {
            TrimTails(&phase.isi);
            phase.isi = Convolve(phase.isi, added);
        }
        eye.phases.push_back(std::move(phase));
    }
    return eye;
}

}  // namespace quell
