#include "quell/signal/statistical_eye.h"

#include <algorithm>
#include <cmath>

namespace quell {

namespace {

// The finest grid that pays: heights of lossy channels no longer move by 0.1 mV beyond it. Random
// jitter takes many instants and does with a coarser one, the more so where it is a twelfth of the
// unit interval and has long closed the eye.
constexpr double StepsPerCursor = 16384.0;
constexpr double StepsPerCursorJittered = 8192.0;
constexpr double StepsPerCursorShaken = 4096.0;
constexpr double Shaken = 1.0 / 12.0;
// Responses of very many strong cursors, whose eye is long closed, get a coarser grid.
constexpr double StepsPerSum = 131072.0;
// Convolving densities with each other costs the product of their lengths: so many products in all.
constexpr double MostProducts = 1e9;

// A pulse response at any position, in samples: Catmull-Rom between the samples, zero outside.
class Response {
public:
    explicit Response(std::span<const double> samples) : m_Samples(samples) {}

    double At(double position) const
    {
        const double floor = std::floor(position);
        const double t = position - floor;
        const long i = static_cast<long>(floor);
        const double b = Sample(i);
        if (t == 0.0) return b;
        const double a = Sample(i - 1), c = Sample(i + 1), d = Sample(i + 2);
        return b + 0.5 * t *
                       ((c - a) +
                        t * ((2.0 * a - 5.0 * b + 4.0 * c - d) + t * (3.0 * (b - c) + d - a)));
    }
    double Length() const { return static_cast<double>(m_Samples.size()); }

private:
    double Sample(long i) const
    {
        return i >= 0 && i < static_cast<long>(m_Samples.size())
                   ? m_Samples[static_cast<std::size_t>(i)]
                   : 0.0;
    }
    std::span<const double> m_Samples;
};

Density CursorDensity(std::span<const double> halves, double step)
{
    return SumOfSigns(RoundToGrid(halves, step));
}

// The eye of one sampling instant, of the bit whose main cursor lies there.
EyePhase PhaseAt(const Response& response, double position, double samplesPerUi, double step)
{
    std::vector<double> halves;
    const double before = std::ceil(position / samplesPerUi);
    for (double k = -before;; ++k) {
        const double at = position + k * samplesPerUi;
        if (at >= response.Length()) break;
        const double half = 0.5 * response.At(at);
        if (k != 0.0 && half != 0.0) halves.push_back(half);
    }
    return {response.At(position), CursorDensity(halves, step)};
}

Density AggressorDensity(std::span<const double> pulse, std::size_t samplesPerUi, double step)
{
    Density average = {0, {}};
    const double weight = 1.0 / static_cast<double>(samplesPerUi);
    std::vector<double> halves;
    for (std::size_t phase = 0; phase < samplesPerUi; ++phase) {
        halves.clear();
        for (std::size_t i = phase; i < pulse.size(); i += samplesPerUi)
            halves.push_back(0.5 * pulse[i]);
        Accumulate(&average, CursorDensity(halves, step), weight, 0);
    }
    return average;
}

// Of each phase the sum of the magnitudes of its cursors; factor phases lie between two samples.
std::vector<double> CursorSums(std::span<const double> pulse, std::size_t samplesPerUi,
                               std::size_t factor)
{
    const Response response(pulse);
    std::vector<double> sums(samplesPerUi * factor, 0.0);
    for (std::size_t j = 0; j < factor; ++j) {
        const double part = static_cast<double>(j) / static_cast<double>(factor);
        for (std::size_t i = 0; i < pulse.size(); ++i)
            sums[i % samplesPerUi * factor + j] +=
                std::abs(response.At(static_cast<double>(i) + part));
    }
    return sums;
}

// The phase in the middle of the eye, counted from the first sample, factor phases a sample: of the
// run of instants around the highest one where peak distortion leaves it open, or, should it be
// closed or nearly so, where it has not lost half the main cursor. The highest instant itself often
// lies near one end of the opening.
long MiddleOfEye(std::span<const double> pulse, std::size_t samplesPerUi, std::size_t factor)
{
    const Response response(pulse);
    const std::vector<double> sums = CursorSums(pulse, samplesPerUi, factor);
    const auto cursor = [&](long phase) {
        return response.At(static_cast<double>(phase) / static_cast<double>(factor));
    };
    // By peak distortion, p0 - sum |pk|, with this phase as the main cursor.
    const auto height = [&](long phase) {
        const double main = cursor(phase);
        return main + std::abs(main) - sums[static_cast<std::size_t>(phase) % sums.size()];
    };
    const long stride = static_cast<long>(factor);
    const long last = static_cast<long>(pulse.size() - 1) * stride;
    long best = 0;
    double highest = height(0);
    for (long i = stride; i <= last; i += stride) {
        if (height(i) <= highest) continue;
        best = i;
        highest = height(i);
    }
    const double floor = std::min(0.0, highest - 0.5 * cursor(best));
    const long reach = static_cast<long>(sums.size());
    const long lowest = std::max(0L, best - reach);
    const long furthest = std::min(last, best + reach);
    long begin = best;
    long end = best;
    while (begin > lowest && height(begin - 1) > floor)
        --begin;
    while (end < furthest && height(end + 1) > floor)
        ++end;
    return (begin + end) / 2;
}

double LargestSum(std::span<const double> pulse, std::size_t samplesPerUi)
{
    const std::vector<double> sums = CursorSums(pulse, samplesPerUi, 1);
    return *std::max_element(sums.begin(), sums.end());
}

double VoltageStep(std::span<const double> victim, std::span<const std::vector<double>> aggressors,
                   std::size_t samplesPerUi, std::size_t phases, double unitInterval,
                   const EyeOptions& options)
{
    const double sum = LargestSum(victim, samplesPerUi);
    const bool shaken = options.randomJitter > Shaken * unitInterval;
    const double steps = shaken                       ? StepsPerCursorShaken
                         : options.randomJitter > 0.0 ? StepsPerCursorJittered
                                                      : StepsPerCursor;
    double step =
        std::max(*std::max_element(victim.begin(), victim.end()) / steps, sum / StepsPerSum);
    double added = 18.0 * options.noise;
    for (const std::vector<double>& aggressor : aggressors) {
        const double other = LargestSum(aggressor, samplesPerUi);
        // An aggressor far stronger than the victim sets the scale.
        step = std::max(step, other / StepsPerSum);
        added += other;
    }
    return std::max(step, std::sqrt(static_cast<double>(phases) * sum * added / MostProducts));
}

// How many phases, at least `least` in a unit interval, lie between two samples. An even number
// makes the unit interval, so that both its ends have one.
std::size_t PhasesPerSample(std::size_t samplesPerUi, std::size_t least)
{
    std::size_t factor = std::max<std::size_t>(1, (least + samplesPerUi - 1) / samplesPerUi);
    if (least > 1 && factor * samplesPerUi % 2 == 1) ++factor;
    return factor;
}

// How many instants of random jitter lie between two phases: the narrower it is, the finer.
std::size_t InstantsPerPhase(double jitter, double unitInterval, std::size_t phasesPerUi)
{
    if (!(jitter > 0.0)) return 1;
    std::size_t perUi = 64;
    while (perUi < 512 && jitter * static_cast<double>(perUi) < 4.0 * unitInterval)
        perUi *= 2;
    return std::max<std::size_t>(1, (perUi + phasesPerUi - 1) / phasesPerUi);
}

// Adds the phase as seen from the main cursor of another one.
void Mix(EyePhase* sum, const EyePhase& phase, double weight, double step)
{
    const double moved = 0.5 * (phase.mainCursor - sum->mainCursor) / step;
    Accumulate(&sum->isi, phase.isi, weight, std::lround(moved));
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
    const std::size_t stride = eye.samplePhases;
    // The sample next to the centre wins a tie.
    std::size_t best =
        eye.firstSample + (eye.centre + stride / 2 - eye.firstSample) / stride * stride;
    double highest = EyeHeight(eye, best, errorRate);
    for (std::size_t i = eye.firstSample; i < eye.phases.size(); i += stride) {
        const double height = EyeHeight(eye, i, errorRate);
        if (height > highest) {
            highest = height;
            best = i;
        }
    }
    std::size_t equal = 1;
    while (best + equal * stride < eye.phases.size() &&
           EyeHeight(eye, best + equal * stride, errorRate) == highest)
        ++equal;
    return best + (equal - 1) / 2 * stride;
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
    const Response response(victim);
    const double perUi = static_cast<double>(samplesPerUi);
    const double unitInterval = sampleInterval * perUi;
    const std::size_t factor = PhasesPerSample(samplesPerUi, options.phases);
    const std::size_t phasesPerUi = factor * samplesPerUi;
    const std::size_t instants = InstantsPerPhase(options.randomJitter, unitInterval, phasesPerUi);
    const double phaseStep = sampleInterval / static_cast<double>(factor);
    const std::size_t centre = phasesPerUi / 2;
    const double step =
        options.voltageStep > 0.0
            ? options.voltageStep
            : VoltageStep(victim, aggressors, samplesPerUi, 2 * centre + 1, unitInterval, options);

    const long middle = MiddleOfEye(victim, samplesPerUi, factor);
    const long stride = static_cast<long>(factor);
    const long first = middle - static_cast<long>(centre);
    StatisticalEye eye;
    eye.unitInterval = unitInterval;
    eye.phaseStep = phaseStep;
    eye.voltageStep = step;
    eye.middle = static_cast<double>(middle) * phaseStep;
    eye.centre = centre;
    eye.firstSample = static_cast<std::size_t>(((-first) % stride + stride) % stride);
    eye.samplePhases = factor;
    // A position in samples, of an instant counted from the first phase.
    const auto position = [&](long instant) {
        return static_cast<double>(first * static_cast<long>(instants) + instant) /
               static_cast<double>(factor * instants);
    };
    for (std::size_t i = 0; i <= 2 * centre; ++i) {
        const double at = position(static_cast<long>(i * instants));
        eye.phases.push_back({response.At(at), {0, {}}});
    }

    // Each instant is made once and goes to all phases that the jitter moves there.
    Density jitter = Gaussian(options.randomJitter, phaseStep / static_cast<double>(instants));
    TrimTails(&jitter);
    const long last = static_cast<long>(2 * centre * instants);
    const double reach = 0.5 * std::max(options.dualDirac, 0.0) / sampleInterval;
    std::vector<double> moves = {-reach, reach};
    if (reach == 0.0) moves.pop_back();
    for (const double move : moves) {
        for (long m = jitter.first; m <= last + jitter.last(); ++m) {
            const EyePhase phase = PhaseAt(response, position(m) + move, perUi, step);
            for (long offset = jitter.first; offset <= jitter.last(); ++offset) {
                const long i = m - offset;
                if (i < 0 || i > last || i % static_cast<long>(instants) != 0) continue;
                Mix(&eye.phases[static_cast<std::size_t>(i) / instants], phase,
                    jitter.mass[static_cast<std::size_t>(offset - jitter.first)] /
                        static_cast<double>(moves.size()),
                    step);
            }
        }
    }

    Density added = Gaussian(options.noise, step);
    for (const std::vector<double>& aggressor : aggressors) {
        added = Convolve(added, AggressorDensity(aggressor, samplesPerUi, step));
        TrimTails(&added);
    }
    if (added.mass.size() == 1) return eye;
    for (EyePhase& phase : eye.phases) {
        TrimTails(&phase.isi);
        phase.isi = Convolve(phase.isi, added);
    }
    return eye;
}

}  // namespace quell
