// The time grid of a run, and sampled responses brought onto it.
#include "quell/signal/time_grid.h"

#include <cmath>
#include <numbers>
#include <utility>

#include "quell/signal/pulse.h"

namespace quell {

namespace {

std::vector<double> Differences(std::vector<double> step, double interval)
{
    double before = 0;
    for (double& value : step) {
        const double difference = value - before;
        before = value;
        value = difference / interval;
    }
    return step;
}

}  // namespace

std::vector<double> ToImpulse(std::vector<double> response, ResponseKind kind, double interval,
                              double bitTime)
{
    if (kind == ResponseKind::Impulse) return response;
    if (kind == ResponseKind::Step) return Differences(std::move(response), interval);
    std::vector<double> step(response.size());
    const double shift = bitTime / interval;
    for (size_t n = 0; n < response.size(); ++n)
        step[n] = response[n] + ValueAt(step, static_cast<double>(n) - shift);
    return Differences(std::move(step), interval);
}

std::vector<double> Resample(std::span<const double> impulse, double interval, double newInterval)
{
    const std::vector<double> step = StepResponse(impulse, interval);
    const double ratio = newInterval / interval;
    const size_t size = static_cast<size_t>(std::ceil(static_cast<double>(step.size()) / ratio));
    std::vector<double> moved(size);
    // A sample stands for the interval that ends with it.
    for (size_t n = 0; n < size; ++n)
        moved[n] = ValueAt(step, static_cast<double>(n + 1) * ratio - 1);
    return Differences(std::move(moved), newInterval);
}

std::complex<double> GainAt(std::span<const double> impulse, double interval, double frequency)
{
    std::complex<double> sum = 0;
    for (size_t n = 0; n < impulse.size(); ++n) {
        const double angle = -2 * std::numbers::pi *
                             std::remainder(frequency * interval * static_cast<double>(n), 1.0);
        sum += impulse[n] * std::complex<double>(std::cos(angle), std::sin(angle));
    }
    return sum * interval;
}

double DcGain(std::span<const double> impulse, double interval)
{
    double sum = 0;
    for (const double h : impulse)
        sum += h;
    return sum * interval;
}

}  // namespace quell
