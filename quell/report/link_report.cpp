// The report of one run.
#include "quell/report/link_report.h"

#include <algorithm>
#include <cmath>

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

using Response = std::vector<double>;

std::vector<double> Times(size_t samples, double interval)
{
    std::vector<double> times(samples);
    for (size_t n = 0; n < samples; ++n)
        times[n] = static_cast<double>(n) * interval;
    return times;
}

// Which columns a plot shows: a crosstalk response would be a flat line beside the victim's.
struct ColumnRange {
    size_t begin, end;
    const char* id;
    const char* title;
};

std::vector<ColumnRange> TimePlotColumns(const LinkResult& result)
{
    std::vector<ColumnRange> ranges = {{0, 1, "", ""}};
    if (result.columns.size() > 1)
        ranges.push_back({1, result.columns.size(), "-aggressors", " of the aggressors"});
    return ranges;
}

// What a time plot shows at first: from shortly before the pulse responses rise to where they have
// died away to half a percent of the greatest one. At least eight unit intervals.
std::pair<double, double> InterestingTime(const LinkResult& result, const ColumnRange& columns)
{
    std::vector<const Response*> pulses;
    for (size_t k = columns.begin; k < columns.end; ++k) {
        pulses.push_back(&result.columns[k].before.pulse);
        if (result.columns[k].after) pulses.push_back(&result.columns[k].after->pulse);
    }
    double largest = 0;
    for (const Response* pulse : pulses)
        for (const double v : *pulse)
            if (std::isfinite(v)) largest = std::max(largest, std::abs(v));
    const size_t samples = pulses.front()->size();
    size_t first = samples - 1, last = 0;
    for (const Response* pulse : pulses)
        for (size_t n = 0; n < samples; ++n)
            if (std::abs((*pulse)[n]) > 0.005 * largest) {
                first = std::min(first, n);
                last = std::max(last, n);
            }
    const double interval = result.grid.Interval();
    const double bit = result.grid.BitTime();
    const double low = std::max(0.0, static_cast<double>(first) * interval - bit);
    const double high = std::max(static_cast<double>(last) * interval, low + 8 * bit);
    return {low, std::min(high, static_cast<double>(samples - 1) * interval)};
}

struct TimePlot {
    const char* id;
    const char* title;
    const char* unit;
    const char* label;
    Response (*response)(const ResponseFigures& figures, double interval);
    bool cursors;
};

const TimePlot TimePlots[] = {
    {"impulse-response", "Impulse response", "V/s", "response",
     [](const ResponseFigures& figures, double) { return figures.impulse; }, false},
    {"step-response", "Step response", "V", "response to a step of 1 V",
     [](const ResponseFigures& figures, double interval) {
         return StepResponse(figures.impulse, interval);
     },
     false},
    {"pulse-response", "Pulse response", "V", "response to one bit of 1 V",
     [](const ResponseFigures& figures, double) { return figures.pulse; }, true},
};

// The samples of the phase at which the eye height is taken, one per unit interval.
PlotSeries CursorSeries(const std::string& name, const std::vector<double>& pulse,
                        const TimeGrid& grid, size_t phase)
{
    PlotSeries series;
    series.name = name;
    series.colour = CursorColour;
    series.stroke = Stroke::Points;
    series.y = CursorsAt(pulse, grid.samplesPerBit, static_cast<double>(phase));
    for (size_t k = 0; k < series.y.size(); ++k)
        series.x.push_back(static_cast<double>(phase) * grid.Interval() +
                           static_cast<double>(k) * grid.BitTime());
    return series;
}

LinePlot MakeTimePlot(const LinkResult& result, const TimePlot& kind, const ColumnRange& columns)
{
    LinePlot plot;
    plot.id = std::string(kind.id) + columns.id;
    plot.title = std::string(kind.title) + columns.title;
    plot.x = {"time", "s", Scale::Linear, {}, {}};
    plot.y = {kind.label, kind.unit, Scale::Linear, {}, {}};
    for (size_t k = columns.begin; k < columns.end; ++k) {
        const LinkColumn& column = result.columns[k];
        const auto add = [&](const ResponseFigures& figures, const char* when, Stroke stroke) {
            PlotSeries series;
            series.name = column.channel.name + " " + when;
            series.y = kind.response(figures, result.grid.Interval());
            series.x = Times(series.y.size(), result.grid.Interval());
            series.colour = ColumnColour(k);
            series.stroke = stroke;
            plot.series.push_back(std::move(series));
        };
        add(column.before, "before", Stroke::Dashed);
        if (column.after) add(*column.after, "after", Stroke::Solid);
    }
    const auto [low, high] = InterestingTime(result, columns);
    plot.x.low = low;
    plot.x.high = high;
    if (kind.cursors && columns.begin == 0) {
        const LinkColumn& victim = result.columns.front();
        const bool after = victim.after.has_value();
        plot.series.push_back(CursorSeries(after ? "cursors after" : "cursors before",
                                           after ? victim.after->pulse : victim.before.pulse,
                                           result.grid,
                                           after ? result.phaseAfter : result.phaseBefore));
        plot.caption =
            "The cursors are one unit interval apart, at the phase of the largest "
            "peak-distortion eye height.";
    }
    return plot;
}

// Magnitude in dB over the frequencies of the transform; without frequency 0, which a logarithmic
// axis does not have.
PlotSeries MagnitudeSeries(const std::vector<double>& impulse, double interval)
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
    for (size_t k = 0; k < result.columns.size(); ++k) {
        const LinkColumn& column = result.columns[k];
        const auto add = [&](const ResponseFigures& figures, const char* when, Stroke stroke) {
            PlotSeries series = MagnitudeSeries(figures.impulse, result.grid.Interval());
            series.name = column.channel.name + " " + when;
            series.colour = ColumnColour(k);
            series.stroke = stroke;
            plot.series.push_back(std::move(series));
        };
        add(column.before, "before", Stroke::Dashed);
        if (column.after) add(*column.after, "after", Stroke::Solid);
    }
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
    plot.marks.push_back({PlotMark::AtX, result.grid.Nyquist(),
                          UnitText(result.grid.Nyquist(), "Hz") + ", half the bit rate"});
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

std::vector<LinePlot> ResponsePlots(const LinkResult& result)
{
    std::vector<LinePlot> plots;
    for (const TimePlot& kind : TimePlots)
        for (const ColumnRange& columns : TimePlotColumns(result))
            plots.push_back(MakeTimePlot(result, kind, columns));
    plots.push_back(MakeFrequencyPlot(result));
    return plots;
}

std::string EyeSvg(const LinkResult& result, const LinkEye& eye, const LinkOptions& options,
                   SvgUse use)
{
    // 64 phases or more draw smooth transitions, and a row of the picture is several cells high.
    const size_t phases =
        std::max<size_t>(1, static_cast<size_t>(64 / std::ceil(result.grid.samplesPerBit)));
    const StatisticalEye fine =
        FinerLinkEye(result, eye, options.eye.eye, phases, 8 * eye.eye.voltageStep);
    return EyePictureSvg(eye, fine, use);
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
    const TimeGrid& grid = result.grid;
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

std::vector<PageFact> ModelFacts(const LinkResult& result, const LinkOptions& options)
{
    const AmiResult& ami = result.ami;
    std::vector<PageFact> facts = {
        {"model file", {result.model.model, "/model"}, true},
        {"its SHA-256", {Sha256OfFile(result.model.model)}, true},
        {"settings", {OrNone(Joined(options.settings, "\n"))}, true},
        {"string sent", {result.model.parameters, "/parameters"}, true},
        {"AMI_Init returned", {std::to_string(ami.returnCode), "/return_code"}},
        {"message", {ami.message ? *ami.message : "none"}, ami.message.has_value()},
    };
    if (ami.parametersOut) facts.push_back({"parameters out", {*ami.parametersOut}, true});
    if (!ami.printed.empty()) facts.push_back({"printed by the model", {ami.printed}, true});
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
    table.heads = {"column", "loss at " + UnitText(result.grid.Nyquist(), "Hz"), "delay", "ports",
                   "channel"};
    table.words = true;
    for (size_t k = 0; k < result.columns.size(); ++k) {
        const Column& channel = result.columns[k].channel;
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
    for (size_t k = 0; k < result.columns.size(); ++k) {
        const LinkColumn& column = result.columns[k];
        const auto add = [&](const ResponseFigures& figures, const char* when) {
            std::vector<PageCell> row = {{column.channel.name + " " + when}};
            for (const auto& figure : Figures)
                row.push_back({FigureText(figures.*figure.figure, figure.unit),
                               "/columns/" + std::to_string(k) + "/" + figure.json + "_" + when});
            table.rows.push_back(std::move(row));
        };
        add(column.before, "before");
        if (column.after) add(*column.after, "after");
    }
    return table;
}

std::vector<PageFact> EyeFacts(const LinkResult& result, const std::optional<LinkEye>& eye)
{
    std::vector<PageFact> facts = {
        {"peak-distortion height before",
         {UnitText(result.heightBefore, "V"), "/peak_distortion_height_before"}}};
    if (result.heightAfter)
        facts.push_back({"peak-distortion height after",
                         {UnitText(*result.heightAfter, "V"), "/peak_distortion_height_after"}});
    if (!eye) return facts;
    const std::string rate = ShortText(eye->errorRate);
    facts.push_back({"height at " + rate, {UnitText(eye->height, "V"), "/eye/height"}});
    facts.push_back({"width at " + rate, {ShortText(eye->width, 4) + " UI", "/eye/width_ui"}});
    facts.push_back({"phase of this height",
                     {ShortText(eye->phase, 4) + " UI from the middle of the eye", "/eye/phase"}});
    for (size_t k = 0; k < eye->heights.size(); ++k) {
        const std::string at = ShortText(EyeErrorRates[k]);
        facts.push_back(
            {"height there at " + at, {UnitText(eye->heights[k], "V"), "/eye/heights/" + at}});
    }
    return facts;
}

}  // namespace

std::string LinkReportHtml(const LinkResult& result, const std::optional<LinkEye>& eye,
                           const LinkOptions& options)
{
    const LinkColumn& victim = result.columns.front();
    Page page("Link report: " + victim.channel.source,
              result.model.parameters + " at " + UnitText(result.grid.bitRate, "bit/s"));
    if (result.Failed())
        page.Paragraph("The model reports failure, so there are no responses after it.");

    page.Section("Eye", "One volt between the rails.");
    page.Facts(EyeFacts(result, eye));
    if (eye) {
        page.Picture("eye", "Statistical eye", EyeSvg(result, *eye, options, SvgUse::InPage),
                     "Colours: probability of one of the picture's 200 rows at each phase, ones "
                     "and zeros together. Lines: opening at four error rates.");
        page.Plot(MakeBathtub(*eye));
    }

    page.Section("Responses", "Dashed lines are before the model, solid lines after it.");
    for (const LinePlot& plot : ResponsePlots(result))
        page.Plot(plot);
    page.Table(FigureTable(result));
    page.Table(ChannelTable(result));

    page.Section("Model");
    page.Facts(ModelFacts(result, options));
    page.Section("Settings");
    page.Facts(Settings(result, options));
    return page.Html(ResultJson(result, eye));
}

std::vector<NamedPicture> LinkPictures(const LinkResult& result, const std::optional<LinkEye>& eye,
                                       const LinkOptions& options)
{
    std::vector<NamedPicture> pictures;
    for (const LinePlot& plot : ResponsePlots(result))
        pictures.push_back({plot.id + ".svg", PlotSvg(plot, SvgUse::Alone)});
    if (eye) {
        pictures.push_back({"bathtub.svg", PlotSvg(MakeBathtub(*eye), SvgUse::Alone)});
        pictures.push_back({"eye.svg", EyeSvg(result, *eye, options, SvgUse::Alone)});
    }
    return pictures;
}

}  // namespace quell
