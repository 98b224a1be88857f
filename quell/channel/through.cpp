// The through response of an n-port and the order of its ports.
#include "quell/channel/through.h"

#include <algorithm>
#include <cmath>

namespace quell {

namespace {

// The three ways to pair the ports of a 4-port, near end first.
constexpr PortOrder Pairings[] = {
    {1, 3, 2, 4},
    {1, 2, 3, 4},
    {1, 2, 4, 3},
};

// A through path passes at least a tenth at the lowest frequency, and three times what any other
// pairing of the ports passes.
constexpr double LeastThrough = 0.1;
constexpr double LeastRatio = 3;

double WeakerPath(const Touchstone& file, const PortOrder& order)
{
    return std::min(std::abs(file.S(0, order.outPositive, order.inPositive)),
                    std::abs(file.S(0, order.outNegative, order.inNegative)));
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

std::optional<PortOrder> FindPortOrder(const Touchstone& file)
{
    if (file.ports == 2) return PortOrder{1, 0, 2, 0};
    const PortOrder* best = nullptr;
    double strongest = 0;
    double second = 0;
    for (const PortOrder& order : Pairings) {
        const double strength = WeakerPath(file, order);
        if (best == nullptr || strength > strongest) {
            second = strongest;
            strongest = strength;
            best = &order;
        } else {
            second = std::max(second, strength);
        }
    }
    if (strongest < LeastThrough || strongest < LeastRatio * second) return std::nullopt;
    return *best;
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
