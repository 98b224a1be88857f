// Curves with fewer points that look the same.
#include "quell/report/thin.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace quell {

namespace {

// First, last, lowest and highest point of every stretch, and one of its gaps.
std::vector<size_t> Extremes(std::span<const double> y, size_t limit)
{
    std::vector<size_t> kept;
    const size_t stretches = std::max<size_t>(1, limit / 2);
    for (size_t k = 0; k < stretches; ++k) {
        const size_t begin = y.size() * k / stretches;
        const size_t end = y.size() * (k + 1) / stretches;
        constexpr size_t None = std::numeric_limits<size_t>::max();
        size_t lowest = None, highest = None, gap = None;
        for (size_t i = begin; i < end; ++i) {
            if (std::isnan(y[i])) {
                if (gap == None) gap = i;
                continue;
            }
            if (lowest == None || y[i] < y[lowest]) lowest = i;
            if (highest == None || y[i] > y[highest]) highest = i;
        }
        const size_t first = kept.size();
        for (const size_t i : {lowest, highest, gap})
            if (i != None) kept.push_back(i);
        std::sort(kept.begin() + static_cast<std::ptrdiff_t>(first), kept.end());
    }
    kept.push_back(0);
    kept.push_back(y.size() - 1);
    std::sort(kept.begin(), kept.end());
    kept.erase(std::unique(kept.begin(), kept.end()), kept.end());
    return kept;
}

// Straight lines within the tolerance.
std::vector<size_t> StraightLines(std::span<const double> x, std::span<const double> y,
                                  double tolerance)
{
    // From the point kept last, a cone of directions that pass all points since within the
    // tolerance; a point outside of it begins a new line at the point before.
    std::vector<size_t> kept = {0};
    constexpr double Infinite = std::numeric_limits<double>::infinity();
    double low = -Infinite, high = Infinite;
    for (size_t i = 1; i < y.size(); ++i) {
        const size_t before = i - 1;
        const auto slope = [&](size_t from, double dy) {
            return (y[i] + dy - y[from]) / (x[i] - x[from]);
        };
        if (std::isnan(y[i])) {
            if (kept.back() != before) kept.push_back(before);
            if (!std::isnan(y[before])) kept.push_back(i);
            continue;
        }
        if (std::isnan(y[before])) {
            kept.push_back(i);
            low = -Infinite;
            high = Infinite;
            continue;
        }
        const bool upright = !(x[i] > x[kept.back()]);
        const double direct = upright ? 0 : slope(kept.back(), 0);
        if (upright || direct < low || direct > high) {
            if (kept.back() != before) kept.push_back(before);
            low = -Infinite;
            high = Infinite;
        }
        if (!(x[i] > x[kept.back()])) {
            kept.push_back(i);
            continue;
        }
        low = std::max(low, slope(kept.back(), -tolerance));
        high = std::min(high, slope(kept.back(), tolerance));
    }
    if (kept.back() != y.size() - 1) kept.push_back(y.size() - 1);
    return kept;
}

}  // namespace

std::vector<size_t> VisiblePoints(std::span<const double> x, std::span<const double> y,
                                  double tolerance, size_t limit)
{
    if (y.empty()) return {};
    std::vector<size_t> kept = StraightLines(x, y, tolerance);
    return kept.size() <= limit ? kept : Extremes(y, limit);
}

}  // namespace quell
