// Transfer functions over frequency.
#include "quell/channel/frequency_response.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace quell {

namespace {

constexpr double TwoPi = 2 * std::numbers::pi;

double Decibel(std::complex<double> gain)
{
    return 20 * std::log10(std::abs(gain));
}

// The angle brought into -pi to pi.
double Wrapped(double angle)
{
    return std::remainder(angle, TwoPi);
}

std::complex<double> Turned(std::complex<double> gain, double angle)
{
    return gain * std::complex<double>(std::cos(angle), std::sin(angle));
}

// Sums of a straight-line fit with weights.
struct LineFit {
    double w = 0, x = 0, y = 0, xx = 0, xy = 0;

    void Add(double weight, double px, double py)
    {
        w += weight;
        x += weight * px;
        y += weight * py;
        xx += weight * px * px;
        xy += weight * px * py;
    }
    double Slope() const
    {
        const double spread = w * xx - x * x;
        return spread > 0 ? (w * xy - x * y) / spread : 0;
    }
    double Offset() const { return w > 0 ? (y - Slope() * x) / w : 0; }
};

}  // namespace

std::optional<double> LossAt(const FrequencyResponse& response, double frequency)
{
    const std::vector<double>& f = response.frequency;
    if (f.empty() || !(frequency >= f.front()) || frequency > f.back()) return std::nullopt;
    const size_t above =
        static_cast<size_t>(std::lower_bound(f.begin(), f.end(), frequency) - f.begin());
    const double high = Decibel(response.gain[above]);
    if (f[above] == frequency) return -high;
    const double low = Decibel(response.gain[above - 1]);
    const double part = (frequency - f[above - 1]) / (f[above] - f[above - 1]);
    return -((1 - part) * low + part * high);
}

double GroupDelay(const FrequencyResponse& response)
{
    const std::vector<double>& f = response.frequency;
    const std::vector<std::complex<double>>& g = response.gain;
    double weights = 0;
    double sum = 0;
    double delay = 0;
    for (size_t k = 1; k < f.size(); ++k) {
        const double weight = std::norm(g[k]) + std::norm(g[k - 1]);
        if (!(weight > 0) || !std::isfinite(weight)) continue;
        const double step = f[k] - f[k - 1];
        // What is left of the phase step once the delay found so far is taken out is small, so
        // that a coarse step after fine ones is unwrapped rightly.
        const double turn = std::arg(g[k]) - std::arg(g[k - 1]) + TwoPi * step * delay;
        double slope = delay - Wrapped(turn) / (TwoPi * step);
        // Nothing arrives before it is sent: a step that seems to lead is one that lags by more
        // than half a turn.
        if (weights == 0 && slope < -0.1 / step) slope += 1 / step;
        sum += weight * step * slope;
        weights += weight * step;
        delay = sum / weights;
    }
    return delay;
}

double LowestPhaseError(const FrequencyResponse& response)
{
    if (response.frequency.size() < 3) return 0;
    const double delay = GroupDelay(response);
    const auto residual = [&](size_t k) {
        return Turned(response.gain[k], TwoPi * response.frequency[k] * delay);
    };
    const std::complex<double> first = residual(0);
    const std::complex<double> second = residual(1);
    const double sign = second.real() < 0 ? -1 : 1;
    const double expected = std::arg(sign * second) * response.frequency[0] / response.frequency[1];
    return Wrapped(std::arg(sign * first) - expected);
}

ResponseCurve::ResponseCurve(const FrequencyResponse& response)
    : m_Delay(GroupDelay(response)), m_Frequency(response.frequency), m_Gain(response.gain)
{
    for (size_t k = 0; k < m_Gain.size(); ++k)
        m_Gain[k] = Turned(m_Gain[k], TwoPi * m_Frequency[k] * m_Delay);

    if (m_Frequency.front() > 0) {
        LineFit fit;
        double sign = 0;
        for (size_t k = 0; k < m_Gain.size(); ++k) {
            if (k >= 2 && m_Frequency[k] > 2 * m_Frequency.front()) break;
            fit.Add(1, std::sqrt(m_Frequency[k]), std::abs(m_Gain[k]));
            sign += m_Gain[k].real();
        }
        const double limit = std::max(1.0, std::abs(m_Gain.front()));
        const double dc = std::clamp(fit.Offset(), 0.0, limit);
        m_Frequency.insert(m_Frequency.begin(), 0.0);
        m_Gain.insert(m_Gain.begin(), sign < 0 ? -dc : dc);
    } else {
        m_Gain.front() = m_Gain.front().real();
    }
    FitSplines();
    FitContinuation();
}

// The tridiagonal system of a natural cubic spline, solved by elimination (de Boor, "A Practical
// Guide to Splines", chapter 4). Both parts of the gain at once.
void ResponseCurve::FitSplines()
{
    const size_t n = m_Frequency.size();
    m_Second.assign(n, 0.0);
    std::vector<double> upper(n, 0.0);
    for (size_t k = 1; k + 1 < n; ++k) {
        const double before = m_Frequency[k] - m_Frequency[k - 1];
        const double after = m_Frequency[k + 1] - m_Frequency[k];
        const std::complex<double> bend =
            6.0 * ((m_Gain[k + 1] - m_Gain[k]) / after - (m_Gain[k] - m_Gain[k - 1]) / before);
        const double pivot = 2 * (before + after) - before * upper[k - 1];
        upper[k] = after / pivot;
        m_Second[k] = (bend - before * m_Second[k - 1]) / pivot;
    }
    for (size_t k = n - 1; k-- > 1;)
        m_Second[k] -= upper[k] * m_Second[k + 1];
}

void ResponseCurve::FitContinuation()
{
    const double last = m_Frequency.back();
    LineFit magnitude;
    double phase = 0;
    LineFit angle;
    for (size_t k = 1; k < m_Gain.size(); ++k) {
        phase += Wrapped(std::arg(m_Gain[k]) - std::arg(m_Gain[k - 1]));
        if (m_Frequency[k] < 0.75 * last && k + 2 < m_Gain.size()) continue;
        const double power = std::norm(m_Gain[k]);
        if (!(power > 0)) continue;
        magnitude.Add(1, (m_Frequency[k] - last) / last, 0.5 * std::log(power));
        angle.Add(power, (m_Frequency[k] - last) / last, phase);
    }
    m_LogSlope = std::min(0.0, magnitude.Slope() / last);
    m_PhaseSlope = angle.Slope() / last;
}

std::complex<double> ResponseCurve::At(double frequency) const
{
    const double delayTurn = -TwoPi * frequency * m_Delay;
    if (frequency >= m_Frequency.back()) {
        const double beyond = frequency - m_Frequency.back();
        const double fade = std::exp(m_LogSlope * beyond);
        return Turned(m_Gain.back() * fade, delayTurn + m_PhaseSlope * beyond);
    }
    const auto upper = std::upper_bound(m_Frequency.begin(), m_Frequency.end(), frequency);
    const size_t k = static_cast<size_t>(upper - m_Frequency.begin()) - 1;
    const double step = m_Frequency[k + 1] - m_Frequency[k];
    const double b = (frequency - m_Frequency[k]) / step;
    const double a = 1 - b;
    const std::complex<double> value =
        a * m_Gain[k] + b * m_Gain[k + 1] +
        ((a * a * a - a) * m_Second[k] + (b * b * b - b) * m_Second[k + 1]) * (step * step / 6);
    return Turned(value, delayTurn);
}

}  // namespace quell
