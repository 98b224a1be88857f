// Line plots as static SVG, and their data for the page's script.
#include "quell/report/plot.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>

#include "quell/base/numbers.h"
#include "quell/report/markup.h"
#include "quell/report/svg.h"
#include "quell/report/thin.h"

namespace quell {

namespace {

using Json = nlohmann::ordered_json;

// What can be told apart on paper, in units of the picture.
constexpr double SvgTolerance = 0.15;
constexpr size_t SvgPoints = 900;
constexpr double DataTolerance = 1.0 / 5000;
constexpr size_t DataPoints = 4000;  // of all curves together

constexpr const char* StrokeNames[] = {"solid", "dashed", "dotted", "points"};

const char* StrokeName(Stroke stroke)
{
    return StrokeNames[static_cast<size_t>(stroke)];
}

std::string Classes(const PlotSeries& series)
{
    return "line s" + std::to_string(series.colour % PlotColours) + " " + StrokeName(series.stroke);
}

// Least and greatest value of both axes; y only of the points that x shows.
struct Ranges {
    std::pair<double, double> x;
    std::pair<double, double> y;
};

void Widen(std::pair<double, double>* range, bool* any, double value)
{
    range->first = *any ? std::min(range->first, value) : value;
    range->second = *any ? std::max(range->second, value) : value;
    *any = true;
}

Ranges DataRanges(const LinePlot& plot)
{
    Ranges ranges;
    bool anyX = false, anyY = false;
    for (const PlotSeries& series : plot.series)
        for (size_t i = 0; i < series.x.size(); ++i) {
            const double x = series.x[i];
            const double y = series.y[i];
            if (!Showable(x, plot.x.scale)) continue;
            Widen(&ranges.x, &anyX, x);
            const bool inside = x >= plot.x.low.value_or(x) && x <= plot.x.high.value_or(x);
            if (inside && Showable(y, plot.y.scale)) Widen(&ranges.y, &anyY, y);
        }
    return ranges;
}

struct Layout {
    AxisLayout x;
    AxisLayout y;
};

Layout LayOut(const LinePlot& plot)
{
    const Ranges ranges = DataRanges(plot);
    return {LayOutAxis(plot.x, ranges.x, 6, false), LayOutAxis(plot.y, ranges.y, 6, true)};
}

// One curve as a path: gaps begin it anew, a point between two gaps is a dot.
std::string CurvePath(const SvgFrame& frame, const PlotSeries& series)
{
    std::vector<double> x, y;
    for (size_t i = 0; i < series.x.size(); ++i) {
        const double px = frame.X(series.x[i]);
        if (std::isnan(px)) continue;
        // One point beyond each edge leads the line out of the picture.
        if (px < SvgFrame::Left && i + 1 < series.x.size() &&
            frame.X(series.x[i + 1]) < SvgFrame::Left)
            continue;
        if (px > frame.Right() && !x.empty() && x.back() > frame.Right()) break;
        x.push_back(px);
        y.push_back(frame.Y(series.y[i]));
    }
    std::string path;
    bool pen = false;
    const bool points = series.stroke == Stroke::Points;
    const auto isGap = [&](size_t i) { return i >= y.size() || std::isnan(y[i]); };
    std::vector<size_t> visible;
    if (points)
        for (size_t i = 0; i < x.size(); ++i)
            visible.push_back(i);
    else
        visible = VisiblePoints(x, y, SvgTolerance, SvgPoints);
    for (const size_t i : visible) {
        if (std::isnan(y[i])) {
            pen = false;
            continue;
        }
        path += (pen ? "L" : "M") + Coordinate(x[i]) + " " + Coordinate(y[i]);
        const bool alone = (i == 0 || isGap(i - 1)) && isGap(i + 1);
        if (points || alone) path += "h0";
        pen = !points;
    }
    return path;
}

void DrawBands(SvgFrame* frame, const LinePlot& plot)
{
    // Labels of neighbours stand above each other, as long as there is room.
    std::array<double, 4> ends = {};
    for (const PlotBand& band : plot.bands) {
        const double left = std::clamp(frame->X(band.from), SvgFrame::Left, frame->Right());
        const double right = std::clamp(frame->X(band.to), SvgFrame::Left, frame->Right());
        if (std::isnan(left) || std::isnan(right)) continue;
        // Narrow stretches must still be seen.
        const double width = std::max(right - left, 2.0);
        frame->Add("<rect class=\"" + std::string(band.warning ? "band warning" : "band") +
                   "\" x=\"" + Coordinate(left) + "\" y=\"" + Coordinate(frame->Top()) +
                   "\" width=\"" + Coordinate(width) + "\" height=\"" +
                   Coordinate(frame->Height()) + "\"><title>" + Escaped(band.label) +
                   "</title></rect>\n");
        const auto row =
            std::find_if(ends.begin(), ends.end(), [left](double end) { return end <= left; });
        if (row == ends.end()) continue;
        *row = left + 6.5 * static_cast<double>(band.label.size());
        frame->Add(SvgText(left + 3,
                           frame->Bottom() - 6 - 13 * static_cast<double>(row - ends.begin()),
                           "start", "mark", band.label));
    }
}

void DrawMarks(SvgFrame* frame, const LinePlot& plot)
{
    int row = 0;
    for (const PlotMark& mark : plot.marks) {
        if (mark.direction == PlotMark::AtX) {
            const double x = frame->X(mark.at);
            if (!(x >= SvgFrame::Left - 0.5 && x <= frame->Right() + 0.5)) continue;
            frame->Add(SvgPath("markline", "M" + Coordinate(x) + " " + Coordinate(frame->Top()) +
                                               "V" + Coordinate(frame->Bottom())));
            const bool fits = x < 0.6 * frame->Right();
            // Labels of neighbours stand below each other.
            frame->Add(SvgText(fits ? x + 4 : x - 4, frame->Top() + 12 + 15 * (row++ % 4),
                               fits ? "start" : "end", "mark", mark.label));
        } else {
            const double y = frame->Y(mark.at);
            if (!(y >= frame->Top() - 0.5 && y <= frame->Bottom() + 0.5)) continue;
            frame->Add(SvgPath("markline", "M" + Coordinate(SvgFrame::Left) + " " + Coordinate(y) +
                                               "H" + Coordinate(frame->Right())));
            frame->Add(SvgText(SvgFrame::Left + 0.7 * frame->Width(), y - 4, "middle", "mark",
                               mark.label));
        }
    }
}

Json AxisJson(const Axis& axis, const AxisLayout& layout, bool fixed)
{
    Json json;
    json["title"] = layout.title;
    json["unit"] = axis.unit;
    json["log"] = axis.scale == Scale::Log;
    json["factor"] = layout.factor;
    if (fixed) json["range"] = {layout.low, layout.high};
    return json;
}

// The indices of a curve that the data keep.
std::vector<size_t> KeptPoints(const LinePlot& plot, const PlotSeries& series)
{
    std::vector<size_t> showable;
    std::vector<double> x, y;
    for (size_t i = 0; i < series.x.size(); ++i) {
        if (!Showable(series.x[i], plot.x.scale)) continue;
        const bool shown = Showable(series.y[i], plot.y.scale);
        const bool logX = plot.x.scale == Scale::Log;
        const bool logY = plot.y.scale == Scale::Log;
        showable.push_back(i);
        x.push_back(logX ? std::log(series.x[i]) : series.x[i]);
        y.push_back(!shown ? std::nan("") : logY ? std::log(series.y[i]) : series.y[i]);
    }
    if (series.stroke == Stroke::Points || y.empty()) return showable;
    double low = 0, high = 0;
    bool any = false;
    for (const double v : y) {
        if (std::isnan(v)) continue;
        low = any ? std::min(low, v) : v;
        high = any ? std::max(high, v) : v;
        any = true;
    }
    const size_t limit = std::max<size_t>(1000, DataPoints / plot.series.size());
    std::vector<size_t> kept = VisiblePoints(x, y, (high - low) * DataTolerance, limit);
    for (size_t& i : kept)
        i = showable[i];
    return kept;
}

double Rounded(double value, int digits)
{
    return *ParseNumber(ShortText(value, digits));
}

}  // namespace

std::string PlotSvg(const LinePlot& plot, SvgUse use)
{
    std::vector<LegendEntry> legend;
    for (const PlotSeries& series : plot.series)
        legend.push_back({series.name, Classes(series), series.stroke == Stroke::Points});
    const Layout layout = LayOut(plot);
    SvgFrame frame(plot.id, plot.title, legend, layout.x, layout.y, use);
    DrawBands(&frame, plot);
    frame.BeginClip();
    for (const PlotSeries& series : plot.series) {
        const std::string path = CurvePath(frame, series);
        if (!path.empty()) frame.Add(SvgPath(Classes(series), path));
    }
    frame.EndClip();
    DrawMarks(&frame, plot);
    return frame.Finish();
}

Json PlotJson(const LinePlot& plot)
{
    const Layout layout = LayOut(plot);
    Json json;
    json["x"] = AxisJson(plot.x, layout.x, plot.x.low || plot.x.high);
    json["y"] = AxisJson(plot.y, layout.y, plot.y.low || plot.y.high);
    json["series"] = Json::array();
    // Rows of all x that any curve keeps; where a curve has two points at one x, two rows.
    using Row = std::pair<double, int>;
    std::map<Row, std::vector<Json>> rows;
    std::vector<std::vector<Row>> keys;
    for (const PlotSeries& series : plot.series) {
        json["series"].push_back({{"name", series.name},
                                  {"colour", series.colour % PlotColours},
                                  {"stroke", StrokeName(series.stroke)}});
        std::vector<Row>& places = keys.emplace_back();
        for (size_t i = 0; i < series.x.size(); ++i) {
            const bool again = i > 0 && series.x[i] == series.x[i - 1];
            places.push_back({series.x[i], again ? places.back().second + 1 : 0});
        }
        for (const size_t i : KeptPoints(plot, series))
            rows[places[i]].resize(plot.series.size());
    }
    // In the axes' units the numbers are short; digits below the curves' thickness are not worth
    // their room.
    const double smallest = (layout.y.high - layout.y.low) / layout.y.factor * 1e-5;
    const bool logarithmic = plot.y.scale == Scale::Log;
    const auto round = [&](double value) {
        const double shown = value / layout.y.factor;
        if (logarithmic || !(smallest > 0)) return Rounded(shown, 5);
        const int digits = static_cast<int>(std::ceil(std::log10(std::abs(shown) / smallest)));
        return shown == 0 ? 0 : Rounded(shown, std::clamp(digits, 1, 6));
    };
    for (size_t k = 0; k < plot.series.size(); ++k)
        for (size_t i = 0; i < plot.series[k].x.size(); ++i) {
            const auto row = rows.find(keys[k][i]);
            if (row == rows.end()) continue;
            const double y = plot.series[k].y[i];
            row->second[k] = Showable(y, plot.y.scale) ? Json(round(y)) : Json("gap");
        }
    Json columns = Json::array();
    Json& x = columns.emplace_back(Json::array());
    for (const auto& row : rows)
        x.push_back(Rounded(row.first.first / layout.x.factor, 7));
    for (size_t k = 0; k < plot.series.size(); ++k) {
        Json& column = columns.emplace_back(Json::array());
        for (const auto& row : rows)
            column.push_back(row.second[k]);
    }
    json["columns"] = std::move(columns);
    json["marks"] = Json::array();
    for (const PlotMark& mark : plot.marks)
        json["marks"].push_back({{"direction", mark.direction == PlotMark::AtX ? "x" : "y"},
                                 {"at", mark.at},
                                 {"label", mark.label}});
    json["bands"] = Json::array();
    for (const PlotBand& band : plot.bands)
        json["bands"].push_back({{"from", band.from},
                                 {"to", band.to},
                                 {"label", band.label},
                                 {"warning", band.warning}});
    return json;
}

}  // namespace quell
