// Axes of a plot: ranges, ticks at round numbers, labels in engineering units.
#ifndef QUELL_REPORT_AXIS_H
#define QUELL_REPORT_AXIS_H

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace quell {

enum class Scale { Linear, Log };

// What a plot says about one of its axes.
struct Axis {
    std::string label;  // "time"
    std::string unit;   // "s"; empty for plain numbers
    Scale scale = Scale::Linear;
    std::optional<double> low;  // else from the data
    std::optional<double> high;
};

struct Tick {
    double at = 0;
    std::string text;
};

// An axis with its range and its ticks, in ascending order.
struct AxisLayout {
    Scale scale = Scale::Linear;
    double low = 0;
    double high = 1;
    double factor = 1;  // ticks are labelled with value / factor
    std::string title;  // "time, ns"
    std::vector<Tick> ticks;

    // 0 at the low end, 1 at the high end; NaN for what the axis cannot show.
    double Position(double value) const;
};

// Whether a value has a place on an axis of that scale: a finite number of reasonable size, above
// zero on a logarithmic one.
bool Showable(double value, Scale scale);

// About so many ticks over the range of the data (low, high). With round ends the range is widened
// to the next tick on both sides, unless the axis fixes its end.
AxisLayout LayOutAxis(const Axis& axis, std::pair<double, double> range, int ticks, bool roundEnds);

}  // namespace quell

#endif
