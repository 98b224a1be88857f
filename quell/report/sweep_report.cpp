// The report of a sweep.
#include "quell/report/sweep_report.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "quell/base/files.h"
#include "quell/base/numbers.h"
#include "quell/link/sweep_text.h"
#include "quell/report/page.h"

namespace quell {

namespace {

// Settings times channels: the page stays below 1 MB.
constexpr size_t MostPoints = 1200;

// The points that the page shows, in the order of the grid.
std::vector<size_t> ShownPoints(const SweepResult& result)
{
    std::vector<size_t> points(result.grid.size());
    std::iota(points.begin(), points.end(), size_t{0});
    const size_t most = std::max<size_t>(1, MostPoints / result.channels.size());
    if (points.size() <= most) return points;
    std::vector<double> heights;
    heights.reserve(points.size());
    for (const size_t i : points)
        heights.push_back(WorstHeight(result, i).value_or(-HUGE_VAL));
    std::stable_sort(points.begin(), points.end(),
                     [&heights](size_t a, size_t b) { return heights[a] > heights[b]; });
    points.resize(most);
    // The best of a channel is shown, however bad it is for the others.
    for (const SweepChannel& channel : result.channels)
        if (channel.best && std::find(points.begin(), points.end(), *channel.best) == points.end())
            points.push_back(*channel.best);
    std::sort(points.begin(), points.end());
    return points;
}

struct Curve {
    size_t parameter = 0;
    std::vector<double> values;  // of the points, in the order of the grid
};

// The one parameter with several values, when all of them are numbers.
std::optional<Curve> SweptNumbers(const SweepResult& result)
{
    std::optional<Curve> curve;
    for (size_t k = 0; k < result.parameters.size(); ++k) {
        if (result.parameters[k].values.size() < 2) continue;
        if (curve) return std::nullopt;
        curve.emplace().parameter = k;
    }
    if (!curve) return std::nullopt;
    for (const std::vector<std::string>& point : result.grid) {
        const std::optional<double> value = ParseNumber(point[curve->parameter]);
        if (!value) return std::nullopt;
        curve->values.push_back(*value);
    }
    return curve;
}

LinePlot MakeCurvePlot(const SweepResult& result, const Curve& curve, const char* id,
                       const std::string& title, const Axis& y,
                       double (*figure)(const SweepPoint& point))
{
    LinePlot plot;
    plot.id = id;
    plot.title = title;
    plot.x = {result.parameters[curve.parameter].name, "", Scale::Linear, {}, {}};
    plot.y = y;
    std::vector<size_t> order(curve.values.size());
    std::iota(order.begin(), order.end(), size_t{0});
    std::stable_sort(order.begin(), order.end(),
                     [&curve](size_t a, size_t b) { return curve.values[a] < curve.values[b]; });
    const auto valueOf = [figure](const SweepPoint& point) {
        return point.height ? figure(point) : std::nan("");
    };
    for (size_t c = 0; c < result.channels.size(); ++c) {
        const SweepChannel& channel = result.channels[c];
        PlotSeries series;
        series.name = channel.name;
        series.colour = static_cast<int>(c % PlotColours);
        for (const size_t i : order) {
            series.x.push_back(curve.values[i]);
            series.y.push_back(valueOf(channel.points[i]));
        }
        plot.series.push_back(std::move(series));
        if (!channel.best) continue;
        PlotSeries best;
        best.name = "best: " + result.grid[*channel.best][curve.parameter];
        best.colour = static_cast<int>(c % PlotColours);
        best.stroke = Stroke::Points;
        best.x = {curve.values[*channel.best]};
        best.y = {valueOf(channel.points[*channel.best])};
        plot.series.push_back(std::move(best));
    }
    if (result.channels.size() > 1 && result.bestWorst)
        plot.marks.push_back(
            {PlotMark::AtX, curve.values[*result.bestWorst],
             "best worst case: " + result.grid[*result.bestWorst][curve.parameter]});
    return plot;
}

std::vector<PageFact> BestSettings(const SweepResult& result)
{
    std::vector<PageFact> facts;
    for (const SweepChannel& channel : result.channels)
        facts.push_back({channel.name,
                         {channel.best ? SettingText(result, *channel.best) + ": " +
                                             UnitText(*channel.points[*channel.best].height, "V") +
                                             EndOfRangeText(result, *channel.best)
                                       : "no setting worked"}});
    if (result.channels.size() > 1 && result.bestWorst)
        facts.push_back({"best worst case over all",
                         {SettingText(result, *result.bestWorst) + ": " +
                          UnitText(*WorstHeight(result, *result.bestWorst), "V") +
                          EndOfRangeText(result, *result.bestWorst)}});
    return facts;
}

// Heights and widths of the points shown; the JSON has the points of the first channel, then those
// of the second, ...
PageTable PointTable(const SweepResult& result, const std::vector<size_t>& points)
{
    PageTable table;
    table.heads = {"setting"};
    for (const SweepChannel& channel : result.channels)
        for (const char* figure : {"height", "width"})
            table.heads.push_back(std::string(figure) + ", " + channel.name);
    for (size_t k = 0; k < points.size(); ++k) {
        const size_t i = points[k];
        const bool bestWorst = result.channels.size() > 1 && result.bestWorst == i;
        std::vector<PageCell> row = {
            {SettingText(result, i) + (bestWorst ? " (best worst case)" : ""), "", bestWorst}};
        for (size_t c = 0; c < result.channels.size(); ++c) {
            const SweepPoint& point = result.channels[c].points[i];
            const bool best = result.channels[c].best == i;
            if (!point.height) {
                row.push_back({"failed"});
                row.push_back({"–"});
                continue;
            }
            const std::string pointer = "/" + std::to_string(c * points.size() + k) + "/";
            row.push_back(
                {UnitText(*point.height, "V") + (best ? " (best)" : ""), pointer + "height", best});
            row.push_back({ShortText(point.width, 4) + " UI", pointer + "width_ui", best});
        }
        table.rows.push_back(std::move(row));
    }
    return table;
}

std::vector<PageFact> Settings(const SweepResult& result, const LinkOptions& options)
{
    std::string swept;
    for (const std::string& setting : options.settings)
        swept += (swept.empty() ? "" : "\n") + setting;
    std::string aggressors;
    for (const std::string& aggressor : options.aggressors)
        aggressors += (aggressors.empty() ? "" : "\n") + aggressor;
    return {
        {"model file", {result.model}, true},
        {"its SHA-256", {Sha256OfFile(result.model)}, true},
        {"settings", {swept.empty() ? "none" : swept}, true},
        {"first string sent", {result.strings.front()}, true},
        {"aggressors", {aggressors.empty() ? "none" : aggressors}},
        {"bit rate", {UnitText(options.channel.bitRate, "bit/s", 6)}},
        {"bit error rate", {ShortText(result.errorRate)}},
        {"noise at the receiver", {UnitText(options.eye.eye.noise, "V") + " (standard deviation)"}},
        {"random jitter", {UnitText(options.eye.eye.randomJitter, "s") + " (standard deviation)"}},
        {"dual-Dirac jitter", {UnitText(options.eye.eye.dualDirac, "s") + " (peak to peak)"}},
    };
}

}  // namespace

std::string SweepReportHtml(const SweepResult& result, const LinkOptions& options)
{
    const std::vector<size_t> points = ShownPoints(result);
    std::string channels;
    for (const SweepChannel& channel : result.channels)
        channels += (channels.empty() ? "" : ", ") + channel.name;
    Page page("Sweep report: " + channels,
              std::to_string(result.grid.size()) + " settings, eyes at an error rate of " +
                  ShortText(result.errorRate) + ", one volt between the rails");
    page.Section("Best settings");
    page.Facts(BestSettings(result));
    if (const std::optional<Curve> curve = SweptNumbers(result)) {
        page.Plot(MakeCurvePlot(result, *curve, "eye-height", "Eye height",
                                {"eye height", "V", Scale::Linear, {}, {}},
                                [](const SweepPoint& point) { return *point.height; }));
        page.Plot(MakeCurvePlot(result, *curve, "eye-width", "Eye width",
                                {"eye width", "UI", Scale::Linear, {}, {}},
                                [](const SweepPoint& point) { return point.width; }));
    }
    page.Section("All settings", points.size() == result.grid.size()
                                     ? ""
                                     : "The " + std::to_string(points.size()) + " best of " +
                                           std::to_string(result.grid.size()) +
                                           " settings; quell sweep --json prints all of them.");
    page.Table(PointTable(result, points));
    page.Section("Model and settings");
    page.Facts(Settings(result, options));

    nlohmann::ordered_json json = nlohmann::ordered_json::array();
    for (size_t c = 0; c < result.channels.size(); ++c)
        for (const size_t i : points)
            json.push_back(SweepPointJson(result, c, i));
    return page.Html(json);
}

}  // namespace quell
