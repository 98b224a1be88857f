// The report of one run.
#include "quell/report/link_report.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <functional>

#include "quell/base/files.h"
#include "quell/base/numbers.h"
#include "quell/link/json.h"
#include "quell/report/eye_picture.h"
#include "quell/report/page.h"
#include "quell/signal/pulse.h"
#include "quell/signal/transform.h"

namespace quell {

namespace {

// Colours of the columns, the victim's first; cursors and the eye use others.
constexpr int ColumnColours[] = {0, 1, 2, 4, 6, 5};
constexpr int CursorColour = 3;

int ColumnColour(size_t column)
{
    return ColumnColours[column % std::size(ColumnColours)];
}

// The line of a point: dashed before the first stage, solid behind the last.
Stroke PointStroke(const LinkResult& result, size_t point)
{
    if (point == 0) return Stroke::Dashed;
    return point + 1 == result.Points() ? Stroke::Solid : Stroke::Dotted;
}

std::vector<double> Times(size_t samples, double interval)
{
    std::vector<double> times(samples);
    for (size_t n = 0; n < samples; ++n)
        times[n] = static_cast<double>(n) * interval;
    return times;
}

// Calls with every point that the responses reached.
template <typename Take>
void ForPoints(const LinkResult& result, const Take& take)
{
    for (size_t p = 0; p < result.Points(); ++p)
        if (const LinkPoint* point = result.Point(p)) take(p, *point);
}

// Which columns a plot shows: a crosstalk response would be a flat line beside the victim's.
struct ColumnRange {
    size_t begin, end;
    const char* id;
    const char* title;
    double low = 0, high = 0;  // s, what a time plot shows at first
};

// What a time plot shows at first: from shortly before the pulse responses rise to where they have
// died away to half a percent of the greatest one. At least eight unit intervals.
void FindInterestingTime(const LinkResult& result, ColumnRange& columns)
{
    const TimeGrid& grid = result.channel->grid;
    const auto forSamples = [&](const auto& take) {
        for (size_t k = columns.begin; k < columns.end; ++k)
            ForPoints(result, [&](size_t, const LinkPoint& point) {
                const std::vector<double> pulse = PulseAt(point, k, grid);
                for (size_t n = 0; n < pulse.size(); ++n)
                    take(n, pulse[n]);
            });
    };
    double largest = 0;
    forSamples([&largest](size_t, double v) {
        if (std::isfinite(v)) largest = std::max(largest, std::abs(v));
    });
    const size_t samples = result.Before().impulses.Rows();
    size_t first = samples - 1, last = 0;
    forSamples([&](size_t n, double v) {
        if (!(std::abs(v) > 0.005 * largest)) return;
        first = std::min(first, n);
        last = std::max(last, n);
    });
    const double interval = grid.Interval();
    const double bit = grid.BitTime();
    columns.low = std::max(0.0, static_cast<double>(first) * interval - bit);
    const double high = std::max(static_cast<double>(last) * interval, columns.low + 8 * bit);
    columns.high = std::min(high, static_cast<double>(samples - 1) * interval);
}

std::vector<ColumnRange> TimePlotColumns(const LinkResult& result)
{
    const size_t columns = result.channel->columns.size();
    std::vector<ColumnRange> ranges = {{0, 1, "", ""}};
    if (columns > 1) ranges.push_back({1, columns, "-aggressors", " of the aggressors"});
    for (ColumnRange& range : ranges)
        FindInterestingTime(result, range);
    return ranges;
}

struct TimePlot {
    const char* id;
    const char* title;
    const char* unit;
    const char* label;
    std::vector<double> (*response)(const LinkPoint& point, size_t column, const TimeGrid& grid);
    bool cursors;
};

const TimePlot TimePlots[] = {
    {"impulse-response", "Impulse response", "V/s", "response",
     [](const LinkPoint& point, size_t column, const TimeGrid&) {
         const std::span<const double> impulse = point.impulses.Column(column);
         return std::vector<double>(impulse.begin(), impulse.end());
     },
     false},
    {"step-response", "Step response", "V", "response to a step of 1 V",
     [](const LinkPoint& point, size_t column, const TimeGrid& grid) {
         return StepResponse(point.impulses.Column(column), grid.Interval());
     },
     false},
    {"pulse-response", "Pulse response", "V", "response to one bit of 1 V", PulseAt, true},
};

// Of the victim at the last point that it reached: the samples of the phase at which the eye height
// is taken, one per unit interval.
PlotSeries CursorSeries(const LinkResult& result)
{
    const TimeGrid& grid = result.channel->grid;
    const bool after = result.After() != nullptr;
    const LinkPoint& point = after ? *result.After() : result.Before();
    const double phase = static_cast<double>(point.phase);
    PlotSeries series;
    series.name = after ? "cursors after" : "cursors before";
    series.colour = CursorColour;
    series.stroke = Stroke::Points;
    series.y = CursorsAt(PulseAt(point, 0, grid), grid.samplesPerBit, phase);
    for (size_t k = 0; k < series.y.size(); ++k)
        series.x.push_back(phase * grid.Interval() + static_cast<double>(k) * grid.BitTime());
    return series;
}

// A curve of each column at each point.
template <typename Curve>
void AddCurves(const LinkResult& result, size_t begin, size_t end, LinePlot& plot,
               const Curve& curve)
{
    for (size_t k = begin; k < end; ++k)
        ForPoints(result, [&](size_t p, const LinkPoint& point) {
            PlotSeries series = curve(point, k);
            series.name = result.channel->columns[k].name + " " + result.PointName(p);
            series.colour = ColumnColour(k);
            series.stroke = PointStroke(result, p);
            plot.series.push_back(std::move(series));
        });
}

LinePlot MakeTimePlot(const LinkResult& result, const TimePlot& kind, const ColumnRange& columns)
{
    const TimeGrid& grid = result.channel->grid;
    LinePlot plot;
    plot.id = std::string(kind.id) + columns.id;
    plot.title = std::string(kind.title) + columns.title;
    plot.x = {"time", "s", Scale::Linear, columns.low, columns.high};
    plot.y = {kind.label, kind.unit, Scale::Linear, {}, {}};
    AddCurves(result, columns.begin, columns.end, plot, [&](const LinkPoint& point, size_t k) {
        PlotSeries series;
        series.y = kind.response(point, k, grid);
        series.x = Times(series.y.size(), grid.Interval());
        return series;
    });
    if (kind.cursors && columns.begin == 0) {
        plot.series.push_back(CursorSeries(result));
        plot.caption =
            "The cursors are one unit interval apart, at the phase of the largest "
            "peak-distortion eye height.";
    }
    return plot;
}

// Magnitude in dB over the frequencies of the transform; without frequency 0, which a logarithmic
// axis does not have.
PlotSeries MagnitudeSeries(std::span<const double> impulse, double interval)
{
    size_t samples = 2;
    while (samples < impulse.size())
        samples *= 2;
    const std::vector<std::complex<double>> spectrum = TransferFunction(impulse, samples, interval);
    PlotSeries series;
    for (size_t k = 1; k < spectrum.size(); ++k) {
        series.x.push_back(static_cast<double>(k) / (static_cast<double>(samples) * interval));
        series.y.push_back(20 * std::log10(std::abs(spectrum[k])));
    }
    return series;
}

LinePlot MakeFrequencyPlot(const LinkResult& result)
{
    LinePlot plot;
    plot.id = "frequency-response";
    plot.title = "Frequency response";
    plot.x = {"frequency", "Hz", Scale::Log, {}, {}};
    plot.y = {"magnitude", "dB", Scale::Linear, {}, {}};
    const TimeGrid& grid = result.channel->grid;
    AddCurves(result, 0, result.channel->columns.size(), plot,
              [&grid](const LinkPoint& point, size_t k) {
                  return MagnitudeSeries(point.impulses.Column(k), grid.Interval());
              });
    // What lies 100 dB below the rest is rounding.
    double highest = -300;
    for (const PlotSeries& series : plot.series)
        for (const double v : series.y)
            if (std::isfinite(v)) highest = std::max(highest, v);
    double lowest = highest;
    for (const PlotSeries& series : plot.series)
        for (const double v : series.y)
            if (std::isfinite(v)) lowest = std::min(lowest, v);
    plot.y.high = 10 * std::ceil((highest + 1) / 10);
    plot.y.low = std::max(10 * std::floor((lowest - 1) / 10), *plot.y.high - 100);
    plot.marks.push_back(
        {PlotMark::AtX, grid.Nyquist(), UnitText(grid.Nyquist(), "Hz") + ", half the bit rate"});
    return plot;
}

LinePlot MakeBathtub(const LinkEye& eye)
{
    LinePlot plot;
    plot.id = "bathtub";
    plot.title = "Bathtub curve";
    constexpr double Least = 1e-18;
    plot.x = {"phase", "UI", Scale::Linear, -0.5, 0.5};
    plot.y = {"bit error rate", "", Scale::Log, Least, 1.0};
    PlotSeries series;
    series.name = "error rate after";
    for (size_t i = 0; i < eye.eye.phases.size(); ++i) {
        series.x.push_back((static_cast<double>(i) - static_cast<double>(eye.eye.centre)) *
                           eye.eye.phaseStep / eye.eye.unitInterval);
        // An error rate of zero runs out of the picture instead of being a gap.
        series.y.push_back(std::max(ErrorRate(eye.eye, i), Least / 1e3));
    }
    plot.series.push_back(std::move(series));
    plot.marks.push_back({PlotMark::AtY, eye.errorRate, ShortText(eye.errorRate)});
    plot.marks.push_back({PlotMark::AtX, eye.phase, "largest height"});
    plot.caption = "Probability that a bit sampled at this phase is wrong; rates below " +
                   ShortText(Least) + " are not drawn.";
    return plot;
}

// One after the other: of a long record each is large.
void ForResponsePlots(const LinkResult& result, const std::function<void(const LinePlot&)>& take)
{
    const std::vector<ColumnRange> ranges = TimePlotColumns(result);
    for (const TimePlot& kind : TimePlots)
        for (const ColumnRange& columns : ranges)
            take(MakeTimePlot(result, kind, columns));
    take(MakeFrequencyPlot(result));
}

std::string OrNone(const std::string& text)
{
    return text.empty() ? "none" : text;
}

std::string Joined(const std::vector<std::string>& texts, const char* separator)
{
    std::string joined;
    for (const std::string& text : texts)
        joined += (joined.empty() ? "" : separator) + text;
    return joined;
}

std::vector<PageFact> Settings(const LinkResult& result, const LinkOptions& options)
{
    const TimeGrid& grid = result.channel->grid;
    std::vector<PageFact> facts = {
        {"bit rate", {UnitText(grid.bitRate, "bit/s", 6), "/bit_rate"}},
        {"samples per bit", {ShortText(grid.samplesPerBit), "/samples_per_bit"}},
        {"sample interval", {UnitText(grid.Interval(), "s", 6), "/sample_interval"}},
        {"noise at the receiver", {UnitText(options.eye.eye.noise, "V") + " (standard deviation)"}},
        {"random jitter", {UnitText(options.eye.eye.randomJitter, "s") + " (standard deviation)"}},
        {"dual-Dirac jitter", {UnitText(options.eye.eye.dualDirac, "s") + " (peak to peak)"}},
    };
    return facts;
}

std::vector<PageFact> StageFacts(const LinkResult& result, size_t stage, const LinkOptions& options)
{
    const ModelSetup& model = result.stages[stage].setup.model;
    const AmiResult& ami = result.stages[stage].ami;
    // The JSON holds the first stage's by themselves.
    const auto shown = [stage](const std::string& text, const char* json) {
        return stage == 0 ? PageCell{text, json} : PageCell{text};
    };
    std::vector<PageFact> facts = {
        {"model file", shown(model.model, "/model"), true},
        {"its SHA-256", {Sha256OfFile(model.model)}, true},
    };
    if (stage == 0) facts.push_back({"settings", {OrNone(Joined(options.settings, "\n"))}, true});
    facts.insert(facts.end(),
                 {{"string sent", shown(model.parameters, "/parameters"), true},
                  {"AMI_Init returned", shown(std::to_string(ami.returnCode), "/return_code")},
                  {"message", {ami.message ? *ami.message : "none"}, ami.message.has_value()}});
    if (ami.parametersOut) facts.push_back({"parameters out", {*ami.parametersOut}, true});
    if (!ami.printed.empty()) facts.push_back({"printed by the model", {ami.printed}, true});
    if (stage + 1 == result.stages.size())
        for (const std::string& warning : result.warnings)
            facts.push_back({"warning", {warning}});
    return facts;
}

constexpr struct {
    const char* title;
    const char* unit;
    const char* json;
    double ResponseFigures::*figure;
} Figures[] = {
    {"DC gain", "", "dc_gain", &ResponseFigures::dcGain},
    {"impulse peak", "V/s", "peak", &ResponseFigures::peak},
    {"main cursor", "V", "main_cursor", &ResponseFigures::mainCursor},
    {"crosstalk", "V", "crosstalk", &ResponseFigures::crosstalk},
};

std::string FigureText(double value, const char* unit)
{
    return *unit == '\0' ? ShortText(value, 5) : UnitText(value, unit);
}

PageTable ChannelTable(const LinkResult& result)
{
    PageTable table;
    table.heads = {"column",     "loss at " + UnitText(result.channel->grid.Nyquist(), "Hz"),
                   "delay",      "ports",
                   "ports from", "treatment",
                   "channel"};
    table.words = true;
    for (size_t k = 0; k < result.channel->columns.size(); ++k) {
        const Column& channel = result.channel->columns[k];
        const std::string pointer = "/columns/" + std::to_string(k) + "/";
        const auto known = [&pointer](bool is, const std::string& text, const char* name) {
            return is ? PageCell{text, pointer + name} : PageCell{"not known"};
        };
        table.rows.push_back(
            {{channel.name, pointer + "name"},
             known(channel.loss.has_value(), ShortText(channel.loss.value_or(0), 4) + " dB",
                   "loss_at_nyquist_db"),
             known(channel.delay.has_value(), UnitText(channel.delay.value_or(0), "s"), "delay"),
             channel.ports ? PageCell{PortOrderText(*channel.ports), pointer + "ports"}
                           : PageCell{"–"},
             channel.ports ? PageCell{PortSourceText(channel.portSource), pointer + "ports_from"}
                           : PageCell{"–"},
             {TreatmentText(channel.treatment)},
             {channel.source, pointer + "source"}});
    }
    return table;
}

PageTable FigureTable(const LinkResult& result)
{
    PageTable table;
    table.heads = {"column"};
    for (const auto& figure : Figures)
        table.heads.push_back(figure.title);
    for (size_t k = 0; k < result.channel->columns.size(); ++k)
        ForPoints(result, [&](size_t p, const LinkPoint& point) {
            const std::string name = result.PointName(p);
            // The JSON holds those before the first stage and behind the last.
            const bool inJson = p == 0 || p + 1 == result.Points();
            std::vector<PageCell> row = {{result.channel->columns[k].name + " " + name}};
            for (const auto& figure : Figures) {
                row.push_back({FigureText(point.figures[k].*figure.figure, figure.unit)});
                if (inJson)
                    row.back().json =
                        "/columns/" + std::to_string(k) + "/" + figure.json + "_" + name;
            }
            table.rows.push_back(std::move(row));
        });
    return table;
}

std::vector<PageFact> EyeFacts(const LinkResult& result)
{
    std::vector<PageFact> facts;
    ForPoints(result, [&](size_t p, const LinkPoint& point) {
        const std::string name = result.PointName(p);
        facts.push_back({"peak-distortion height " + name, {UnitText(point.height, "V")}});
        if (p == 0 || p + 1 == result.Points())
            facts.back().value.json = "/peak_distortion_height_" + name;
    });
    const std::optional<LinkEye>& eye = result.eye;
    if (!eye) return facts;
    facts.push_back({"peak distortion",
                     {"the height at error rate 0: a statistical height may "
                      "exceed it, for it leaves rarer patterns out"}});
    const std::string rate = ShortText(eye->errorRate);
    facts.push_back({"height at " + rate, {UnitText(eye->height, "V"), "/eye/height"}});
    facts.push_back({"width at " + rate, {ShortText(eye->width, 4) + " UI", "/eye/width_ui"}});
    facts.push_back(
        {"width there in time",
         {ShortText(eye->width * eye->eye.unitInterval * 1e12, 4) + " ps", "/eye/width_ps"}});
    facts.push_back({"phase of this height",
                     {ShortText(eye->phase, 4) + " UI from the middle of the eye", "/eye/phase"}});
    facts.push_back({"sampling instant in the responses",
                     {UnitText(eye->samplingTime, "s", 6), "/eye/sampling_time"}});
    for (size_t k = 0; k < eye->heights.size(); ++k) {
        const std::string at = ShortText(EyeErrorRates[k]);
        facts.push_back(
            {"height there at " + at, {UnitText(eye->heights[k], "V"), "/eye/heights/" + at}});
    }
    return facts;
}

// "Model" for the stage "model".
std::string Heading(std::string name)
{
    if (!name.empty())
        name[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(name[0])));
    return name;
}

}  // namespace

std::string LinkReportHtml(const LinkResult& result, const LinkOptions& options)
{
    std::string strings;
    for (const LinkStage& stage : result.stages)
        strings += stage.setup.model.parameters + " ";
    Page page("Link report: " + result.channel->columns.front().source,
              strings + "at " + UnitText(result.channel->grid.bitRate, "bit/s"));
    if (result.Failed())
        page.Paragraph("The " + result.stages.back().setup.name +
                       " reports failure, so there are no responses after it.");

    page.Section("Eye", "One volt between the rails.");
    page.Facts(EyeFacts(result));
    if (result.eye) {
        page.Picture("eye", "Statistical eye", EyePictureSvg(*result.eye, SvgUse::InPage),
                     "Colours: probability of one of the picture's 200 rows at each phase, ones "
                     "and zeros together. Lines: opening at four error rates.");
        page.Plot(MakeBathtub(*result.eye));
    }

    page.Section("Responses",
                 result.stages.size() > 1
                     ? "Dashed lines are before the models, dotted lines between them, "
                       "solid lines after the last."
                     : "Dashed lines are before the model, solid lines after it.");
    ForResponsePlots(result, [&page](const LinePlot& plot) { page.Plot(plot); });
    page.Table(FigureTable(result));
    page.Table(ChannelTable(result));

    for (size_t stage = 0; stage < result.stages.size(); ++stage) {
        page.Section(Heading(result.stages[stage].setup.name));
        page.Facts(StageFacts(result, stage, options));
    }
    page.Section("Settings");
    page.Facts(Settings(result, options));
    return page.Html(ResultJson(result));
}

std::vector<NamedPicture> LinkPictures(const LinkResult& result)
{
    std::vector<NamedPicture> pictures;
    ForResponsePlots(result, [&pictures](const LinePlot& plot) {
        pictures.push_back({plot.id + ".svg", PlotSvg(plot, SvgUse::Alone)});
    });
    if (result.eye) {
        pictures.push_back({"bathtub.svg", PlotSvg(MakeBathtub(*result.eye), SvgUse::Alone)});
        pictures.push_back({"eye.svg", EyePictureSvg(*result.eye, SvgUse::Alone)});
    }
    return pictures;
}

}  // namespace quell
