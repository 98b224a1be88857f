// Axes of a plot.
#include "quell/report/axis.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>

#include "quell/base/numbers.h"

namespace quell {

namespace {

// Differences of larger numbers would overflow.
constexpr double Largest = 1e300;
constexpr double Smallest = 1e-300;

std::string FixedText(double value, int decimals)
{
    if (std::abs(value) >= 1e9) return ShortText(value);
    std::array<char, 64> buffer;
    // A tick that rounding left just below zero is zero.
    const double shown = std::abs(value) < 0.5 * std::pow(10.0, -decimals) ? 0.0 : value;
    const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), shown,
                                      std::chars_format::fixed, decimals);
    return std::string(buffer.data(), result.ptr);
}

// 1, 2 or 5 times a power of ten, not much less than the step.
double RoundStep(double step)
{
    const double power = std::pow(10.0, std::floor(std::log10(step)));
    for (const double digit : {1.0, 2.0, 5.0})
        if (step <= digit * power * 1.15) return digit * power;
    return 10 * power;
}

struct Prefix {
    int exponent;
    const char* text;
};

constexpr Prefix Prefixes[] = {{-15, "f"}, {-12, "p"}, {-9, "n"}, {-6, "µ"}, {-3, "m"},
                               {0, ""},    {3, "k"},   {6, "M"},  {9, "G"},  {12, "T"}};

// The engineering prefix of the largest value of a range.
Prefix PrefixFor(double largest)
{
    const Prefix none = {0, ""};
    if (!(largest > 0)) return none;
    const int exponent = 3 * static_cast<int>(std::floor(std::log10(largest * (1 + 1e-9)) / 3));
    for (const Prefix& prefix : Prefixes)
        if (prefix.exponent == exponent) return prefix;
    return none;
}

// Units that take no prefix: nobody reads milli-decibels.
bool TakesPrefix(const std::string& unit)
{
    return !unit.empty() && unit != "dB" && unit != "UI" && unit != "%";
}

void LayOutLinear(const Axis& axis, int count, bool roundEnds, AxisLayout* layout)
{
    if (!(layout->high > layout->low)) {
        const double size = std::abs(layout->low);
        const double margin = size < 1e-290 ? 1 : 0.1 * size;
        layout->low -= margin;
        layout->high += margin;
    }
    const double step = RoundStep((layout->high - layout->low) / count);
    double first = std::ceil(layout->low / step - 1e-6);
    double last = std::floor(layout->high / step + 1e-6);
    if (roundEnds && !axis.low && first * step > layout->low) --first;
    if (roundEnds && !axis.high && last * step < layout->high) ++last;
    layout->low = std::min(layout->low, first * step);
    layout->high = std::max(layout->high, last * step);

    const double largest = std::max(std::abs(layout->low), std::abs(layout->high));
    const Prefix prefix = TakesPrefix(axis.unit) ? PrefixFor(largest) : Prefix{0, ""};
    layout->factor = std::pow(10.0, prefix.exponent);
    if (!axis.unit.empty()) layout->title += std::string(", ") + prefix.text + axis.unit;
    const double shownStep = step / layout->factor;
    const int decimals =
        std::clamp(static_cast<int>(-std::floor(std::log10(shownStep) + 1e-6)), 0, 12);
    const bool plain = largest / layout->factor < 1e6 && shownStep > 1e-6;
    const int steps = static_cast<int>(last - first);
    for (int k = 0; k <= steps; ++k) {
        const double value = (first + k) * step;
        const double shown = value / layout->factor;
        layout->ticks.push_back({value, plain ? FixedText(shown, decimals) : ShortText(shown, 4)});
    }
}

void LayOutLog(const Axis& axis, int count, bool roundEnds, AxisLayout* layout)
{
    if (!axis.unit.empty()) layout->title += ", " + axis.unit;
    if (!(layout->high > layout->low)) {
        layout->low /= 10;
        layout->high *= 10;
    }
    if (roundEnds && !axis.low)
        layout->low = std::pow(10.0, std::floor(std::log10(layout->low) + 1e-9));
    if (roundEnds && !axis.high)
        layout->high = std::pow(10.0, std::ceil(std::log10(layout->high) - 1e-9));
    const int first = static_cast<int>(std::floor(std::log10(layout->low) + 1e-9));
    const int last = static_cast<int>(std::floor(std::log10(layout->high) + 1e-9));
    const int every = std::max(1, static_cast<int>(std::ceil((last - first + 1.0) / count)));
    const bool between = last - first <= 1;
    for (int decade = first; decade <= last; ++decade) {
        if (decade % every != 0) continue;
        for (const double digit : {1.0, 2.0, 5.0}) {
            if (digit > 1 && !between) break;
            const double value = ParseNumber(ShortText(digit) + "e" + std::to_string(decade))
                                     .value_or(digit * std::pow(10.0, decade));
            if (value < layout->low * (1 - 1e-9) || value > layout->high * (1 + 1e-9)) continue;
            layout->ticks.push_back(
                {value, axis.unit.empty() ? ShortText(value, 3) : UnitText(value, axis.unit, 3)});
        }
    }
    if (!axis.unit.empty()) layout->title = axis.label;  // every tick carries the unit
}

}  // namespace

bool Showable(double value, Scale scale)
{
    if (!(std::abs(value) < Largest)) return false;
    return scale == Scale::Linear || value > Smallest;
}

double AxisLayout::Position(double value) const
{
    if (!Showable(value, scale)) return std::numeric_limits<double>::quiet_NaN();
    if (scale == Scale::Linear) return (value - low) / (high - low);
    return std::log(value / low) / std::log(high / low);
}

AxisLayout LayOutAxis(const Axis& axis, std::pair<double, double> range, int ticks, bool roundEnds)
{
    AxisLayout layout;
    layout.scale = axis.scale;
    layout.title = axis.label;
    layout.low = axis.low.value_or(range.first);
    layout.high = axis.high.value_or(range.second);
    if (!Showable(layout.low, axis.scale)) layout.low = axis.scale == Scale::Log ? 1 : 0;
    if (!(Showable(layout.high, axis.scale) && layout.high > layout.low)) layout.high = layout.low;
    // Less than this is no range: its steps would have no digits.
    if (layout.high - layout.low < 1e-12 * std::abs(layout.high) + Smallest)
        layout.low = layout.high;
    if (axis.scale == Scale::Log)
        LayOutLog(axis, ticks, roundEnds, &layout);
    else
        LayOutLinear(axis, ticks, roundEnds, &layout);
    return layout;
}

}  // namespace quell
