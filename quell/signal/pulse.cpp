// Step and pulse responses, and the worst-case eye by peak distortion.
#include "quell/signal/pulse.h"

#include <cmath>

namespace quell {

namespace {

struct CursorSums {
    double sum = 0;      // of the magnitudes
    size_t largest = 0;  // index of the cursor of largest magnitude
    double value = 0;    // that cursor
};

CursorSums SumCursors(const std::vector<double>& cursors)
{
    CursorSums sums;
    for (size_t k = 0; k < cursors.size(); ++k) {
        sums.sum += std::abs(cursors[k]);
        if (std::abs(cursors[k]) <= std::abs(sums.value)) continue;
        sums.largest = k;
        sums.value = cursors[k];
    }
    return sums;
}

size_t PhaseCount(double samplesPerBit)
{
    return static_cast<size_t>(std::ceil(samplesPerBit));
}

}  // namespace

double ValueAt(std::span<const double> response, double position)
{
    if (response.empty() || position <= -1) return 0;
    const double floor = std::floor(position);
    const double part = position - floor;
    if (floor < 0) return part * response.front();
    const size_t index = static_cast<size_t>(floor);
    if (index + 1 >= response.size()) return response.back();
    if (part == 0) return response[index];
    return (1 - part) * response[index] + part * response[index + 1];
}

std::vector<double> StepResponse(std::span<const double> impulse, double interval)
{
    std::vector<double> step(impulse.size());
    double sum = 0;
    for (size_t n = 0; n < impulse.size(); ++n) {
        sum += impulse[n];
        step[n] = sum * interval;
    }
    return step;
}

std::vector<double> PulseResponse(std::span<const double> impulse, double interval,
                                  double samplesPerBit)
{
    // In place from the end: what is taken away lies before.
    std::vector<double> pulse = StepResponse(impulse, interval);
    for (size_t n = pulse.size(); n-- > 0;)
        pulse[n] -= ValueAt(pulse, static_cast<double>(n) - samplesPerBit);
    return pulse;
}

std::vector<double> CursorsAt(std::span<const double> pulse, double samplesPerBit, double phase)
{
    std::vector<double> cursors;
    if (pulse.empty()) return cursors;
    const double last = static_cast<double>(pulse.size() - 1);
    cursors.reserve(static_cast<size_t>(last / samplesPerBit) + 1);
    for (size_t k = 0;; ++k) {
        const double position = phase + static_cast<double>(k) * samplesPerBit;
        if (position > last) return cursors;
        cursors.push_back(ValueAt(pulse, position));
    }
}

PeakDistortion AnalysePeakDistortion(std::span<const double> pulse, double samplesPerBit)
{
    PeakDistortion best;
    for (size_t phase = 0; phase < PhaseCount(samplesPerBit); ++phase) {
        const CursorSums sums =
            SumCursors(CursorsAt(pulse, samplesPerBit, static_cast<double>(phase)));
        const double main = std::abs(sums.value);
        const double height = main - (sums.sum - main);
        if (phase == 0 || height > best.height) best = {height, sums.value, phase, sums.largest};
    }
    return best;
}

Crosstalk AnalyseCrosstalk(std::span<const double> pulse, double samplesPerBit)
{
    Crosstalk worst;
    for (size_t phase = 0; phase < PhaseCount(samplesPerBit); ++phase) {
        const CursorSums sums =
            SumCursors(CursorsAt(pulse, samplesPerBit, static_cast<double>(phase)));
        if (sums.sum > worst.sum) worst = {sums.sum, sums.value};
    }
    return worst;
}

}  // namespace quell
