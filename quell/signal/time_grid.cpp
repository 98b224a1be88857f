// The time grid of a run, and sampled responses brought onto it.
#include "quell/signal/time_grid.h"

#include <algorithm>
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

// A function that is straight, or the integral of a straight one, between instants.
class Polyline {
public:
    Polyline(std::span<const double> time, std::span<const double> value)
        : m_Time(time), m_Value(value)
    {
    }

    // Times must not fall from call to call.
    void MoveTo(double t)
    {
        while (m_Segment + 2 < m_Time.size() && m_Time[m_Segment + 1] <= t) {
            m_Area += Area(m_Time[m_Segment + 1]);
            ++m_Segment;
        }
        m_Now = t;
    }
    double Value() const
    {
        if (m_Now >= m_Time.back()) return m_Value.back();
        const double part = m_Now - m_Time[m_Segment];
        return m_Value[m_Segment] + part * Slope();
    }
    double Integral() const { return m_Area + Area(std::min(m_Now, m_Time.back())); }

private:
    double Slope() const
    {
        const double width = m_Time[m_Segment + 1] - m_Time[m_Segment];
        return width > 0 ? (m_Value[m_Segment + 1] - m_Value[m_Segment]) / width : 0;
    }
    // From the beginning of the segment.
    double Area(double t) const
    {
        const double part = t - m_Time[m_Segment];
        return part * (m_Value[m_Segment] + 0.5 * part * Slope());
    }

    std::span<const double> m_Time;
    std::span<const double> m_Value;
    size_t m_Segment = 0;
    double m_Area = 0;  // up to the segment
    double m_Now = 0;
};

}  // namespace

double TimeGrid::ModelInterval() const
{
    double interval = Interval();
    while (BitTime() / interval < std::floor(samplesPerBit))
        interval = std::nextafter(interval, 0.0);
    return interval;
}

std::vector<double> ToImpulse(std::vector<double> response, ResponseKind kind, double interval,
                              double bitTime)
{
    if (kind == ResponseKind::Impulse) return response;
    if (kind == ResponseKind::Step) {
        const double offset = response.front();
        for (double& value : response)
            value -= offset;
        return Differences(std::move(response), interval);
    }
    std::vector<double> step(response.size());
    const double shift = bitTime / interval;
    for (size_t n = 0; n < response.size(); ++n)
        step[n] = response[n] + ValueAt(step, static_cast<double>(n) - shift);
    return Differences(std::move(step), interval);
}

std::vector<double> ToImpulse(std::span<const double> time, std::span<const double> response,
                              ResponseKind kind, double interval, double bitTime)
{
    Polyline line(time, response);
    const double length = (time.back() - time.front()) / interval;
    std::vector<double> sampled(static_cast<size_t>(std::floor(length)) + 2);
    for (size_t n = 0; n < sampled.size(); ++n) {
        // A sample of an impulse response stands for the interval around it.
        const double place =
            kind == ResponseKind::Impulse ? static_cast<double>(n) + 0.5 : static_cast<double>(n);
        line.MoveTo(time.front() + place * interval);
        sampled[n] = kind == ResponseKind::Impulse ? line.Integral() : line.Value();
    }
    if (kind == ResponseKind::Impulse) return Differences(std::move(sampled), interval);
    return ToImpulse(std::move(sampled), kind, interval, bitTime);
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
