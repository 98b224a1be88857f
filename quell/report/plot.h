// Line plots as static SVG, and their data for a page that can zoom.
#ifndef QUELL_REPORT_PLOT_H
#define QUELL_REPORT_PLOT_H

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "quell/report/axis.h"

namespace quell {

enum class Stroke { Solid, Dashed, Dotted, Points };

// One curve. x ascends and is as long as y; a y that is no number is a gap in the line. The colour
// is a number of the palette, 0 to PlotColours - 1.
struct PlotSeries {
    std::string name;
    std::vector<double> x;
    std::vector<double> y;
    int colour = 0;
    Stroke stroke = Stroke::Solid;
};

inline constexpr int PlotColours = 8;

// A labelled line across the plot, upright at a value of x or level at a value of y.
struct PlotMark {
    enum Direction { AtX, AtY } direction = AtX;
    double at = 0;
    std::string label;
};

// A shaded stretch of the x axis.
struct PlotBand {
    double from = 0;
    double to = 0;
    std::string label;
    bool warning = false;  // in the colour of warnings
};

struct LinePlot {
    std::string id;     // a name for files and links: small letters, digits, hyphens
    std::string title;  // one line
    std::string caption;
    Axis x;
    Axis y;
    std::vector<PlotSeries> series;
    std::vector<PlotMark> marks;
    std::vector<PlotBand> bands;
};

enum class SvgUse {
    InPage,  // styled by the page
    Alone,   // a file of its own with title and styles
};

// A drawing of PlotWidth x PlotHeight units. Curves are thinned to what can be seen.
std::string PlotSvg(const LinePlot& plot, SvgUse use);

inline constexpr double PlotWidth = 520;
inline constexpr double PlotHeight = 320;

// The plot for the page's script: axes, styles and the curves to 1/5000 of their height over their
// whole range, the axis limits being where it begins. A gap is the word "gap", a curve without a
// point at an x has null there.
nlohmann::ordered_json PlotJson(const LinePlot& plot);

}  // namespace quell

#endif
