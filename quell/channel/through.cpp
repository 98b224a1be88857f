// The through response of an n-port and the order of its ports.
#include "quell/channel/through.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <numbers>

#include "quell/signal/transform.h"

namespace quell {

namespace {

// The three ways to pair the ports of a 4-port, near end first.
constexpr PortOrder Pairings[] = {
    {1, 3, 2, 4},
    {1, 2, 3, 4},
    {1, 2, 4, 3},
};

// A through path passes at least a tenth at the lowest frequency, or half at a higher one, and
// three times what any other pairing of the ports passes.
constexpr double LeastThrough = 0.1;
constexpr double LeastThroughAbove = 0.5;
constexpr double LeastRatio = 3;

double WeakerPath(const Touchstone& file, size_t point, const PortOrder& order)
{
    return std::min(std::abs(file.S(point, order.outPositive, order.inPositive)),
                    std::abs(file.S(point, order.outNegative, order.inNegative)));
}

double StrongestPath(const Touchstone& file, size_t point)
{
    double strongest = 0;
    for (const PortOrder& order : Pairings)
        strongest = std::max(strongest, WeakerPath(file, point, order));
    return strongest;
}

// A wave on the other line counts as early when it arrives before this part of the line's delay;
// the energy of one end must be so many times that of the other, and this part of the through
// path's.
constexpr double EarlyPart = 0.7;
constexpr double EarlyRatio = 4;
constexpr double LeastEarly = 1e-7;
constexpr size_t ShortestDelay = 4;            // samples of the file's band
constexpr size_t LongestTransform = 1U << 16;  // samples

// The energy of a path from a little before time zero to a little before the through delay, and in
// all; the band fades to its end, so that its wall does not ring that far.
struct PathEnergy {
    double early = 0;
    double whole = 0;
};

PathEnergy EarlyEnergy(const FrequencyResponse& path, double delay)
{
    const double end = path.frequency.back();
    const double interval = 0.5 / end;
    const double step = end / static_cast<double>(path.frequency.size());
    const size_t size = std::bit_ceil(static_cast<size_t>(
        std::clamp(2 / (step * interval), 64.0, static_cast<double>(LongestTransform))));
    const ResponseCurve curve(path);
    const std::vector<double> response = ImpulseResponse(
        [&](double f) {
            const double fade = std::cos(0.5 * std::numbers::pi * f / end);
            return curve.At(f) * (fade * fade);
        },
        size, interval);
    const auto margin = static_cast<size_t>((1 - EarlyPart) * delay / interval);
    const auto until = static_cast<size_t>(EarlyPart * delay / interval);
    PathEnergy energy;
    for (size_t n = 0; n < size; ++n) {
        const double part = response[n] * response[n];
        energy.whole += part;
        if (n <= until || n >= size - margin) energy.early += part;
    }
    return energy;
}

FrequencyResponse Path(const Touchstone& file, int out, int in)
{
    FrequencyResponse path = {file.frequency, {}};
    for (size_t k = 0; k < file.frequency.size(); ++k)
        path.gain.push_back(file.S(k, out, in));
    return path;
}

// Which ends of the second line lie beside those of the first.
FoundPorts WithEndsOfSecondLine(const Touchstone& file, const PortOrder& order)
{
    const FrequencyResponse through = Path(file, order.outPositive, order.inPositive);
    const double delay = GroupDelay(through);
    const double samples = 2 * file.frequency.back() * delay;
    if (!(samples >= double{ShortestDelay})) return {order, true};
    const double reference = EarlyEnergy(through, delay).whole;
    const double toNegativeIn =
        EarlyEnergy(Path(file, order.inNegative, order.inPositive), delay).early +
        EarlyEnergy(Path(file, order.outNegative, order.outPositive), delay).early;
    const double toNegativeOut =
        EarlyEnergy(Path(file, order.outNegative, order.inPositive), delay).early +
        EarlyEnergy(Path(file, order.inNegative, order.outPositive), delay).early;
    const double least = LeastEarly * reference;
    if (toNegativeIn > least && toNegativeIn > EarlyRatio * toNegativeOut) return {order, false};
    if (toNegativeOut > least && toNegativeOut > EarlyRatio * toNegativeIn)
        return {{order.inPositive, order.outNegative, order.outPositive, order.inNegative}, false};
    return {order, true};
}

bool Digit(char c)
{
    return c >= '1' && c <= '4';
}

}  // namespace

std::optional<PortOrder> ParsePortOrder(std::string_view text)
{
    const size_t comma = text.find(',');
    if (comma == std::string_view::npos || text.size() != 2 * comma + 1) return std::nullopt;
    std::string digits(text);
    digits.erase(comma, 1);
    if (!std::all_of(digits.begin(), digits.end(), Digit)) return std::nullopt;
    std::string sorted = digits;
    std::sort(sorted.begin(), sorted.end());
    const auto port = [&](size_t k) { return digits[k] - '0'; };
    if (sorted == "12") return PortOrder{port(0), 0, port(1), 0};
    if (sorted == "1234") return PortOrder{port(0), port(1), port(2), port(3)};
    return std::nullopt;
}

std::string PortOrderText(const PortOrder& order)
{
    std::string text = std::to_string(order.inPositive) + "->" + std::to_string(order.outPositive);
    if (order.Differential())
        text += ", " + std::to_string(order.inNegative) + "->" + std::to_string(order.outNegative);
    return text;
}

std::optional<FoundPorts> FindPortOrder(const Touchstone& file)
{
    if (file.ports == 2) return FoundPorts{{1, 0, 2, 0}, false};
    size_t point = 0;
    if (StrongestPath(file, point) < LeastThrough) {
        while (point < file.frequency.size() && StrongestPath(file, point) < LeastThroughAbove)
            ++point;
        if (point == file.frequency.size()) return std::nullopt;
    }
    const PortOrder* best = nullptr;
    double strongest = 0;
    double second = 0;
    for (const PortOrder& order : Pairings) {
        const double strength = WeakerPath(file, point, order);
        if (best == nullptr || strength > strongest) {
            second = strongest;
            strongest = strength;
            best = &order;
        } else {
            second = std::max(second, strength);
        }
    }
    if (strongest < LeastRatio * second) return std::nullopt;
    return WithEndsOfSecondLine(file, *best);
}

LargestParameter FindLargestParameter(const Touchstone& file)
{
    LargestParameter largest;
    for (size_t k = 0; k < file.frequency.size(); ++k)
        for (int out = 1; out <= file.ports; ++out)
            for (int in = 1; in <= file.ports; ++in) {
                const double magnitude = std::abs(file.S(k, out, in));
                if (magnitude > largest.magnitude)
                    largest = {magnitude, file.frequency[k], out, in};
            }
    return largest;
}

FrequencyResponse ThroughResponse(const Touchstone& file, const PortOrder& order)
{
    FrequencyResponse response;
    response.frequency = file.frequency;
    response.gain.reserve(file.frequency.size());
    for (size_t k = 0; k < file.frequency.size(); ++k) {
        if (!order.Differential()) {
            response.gain.push_back(file.S(k, order.outPositive, order.inPositive));
            continue;
        }
        response.gain.push_back(0.5 * (file.S(k, order.outPositive, order.inPositive) -
                                       file.S(k, order.outPositive, order.inNegative) -
                                       file.S(k, order.outNegative, order.inPositive) +
                                       file.S(k, order.outNegative, order.inNegative)));
    }
    return response;
}

}  // namespace quell
