// A buffer model in pictures.
#include "quell/view/model_plots.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <map>

#include "IbisParser/cmn.h"
#include "quell/base/numbers.h"
#include "quell/view/findings.h"

namespace quell {

namespace {

constexpr Stroke CornerStrokes[CORNER_COUNT] = {Stroke::Solid, Stroke::Dashed, Stroke::Dashed};
constexpr int FirstLoadColour = 3;  // behind those of the corners
constexpr int LoadColours = 4;
constexpr int PlainColour = 7;
constexpr size_t ToldFalls = 6;
constexpr size_t MostLoads = 8;      // load lines in one picture
constexpr double BeyondRails = 0.3;  // of the supply, on both sides

struct StateWords {
    int state;
    const char* name;
    const char* key;
    std::vector<std::string> phrases;
};
const StateWords States[] = {
    {CURVE_LOW, "low state", "low", {"low-state", "low state"}},
    {CURVE_HIGH, "high state", "high", {"high-state", "high state"}},
    {CURVE_OFF, "not driving", "off", {"receive current", "receive-state"}},
};

const StateWords& WordsOf(int state)
{
    return *std::find_if(std::begin(States), std::end(States),
                         [state](const StateWords& words) { return words.state == state; });
}

std::string Join(const std::vector<std::string>& parts)
{
    std::string text;
    for (const std::string& part : parts)
        text += (text.empty() ? "" : " ") + part;
    return text;
}

std::string Capital(std::string text)
{
    if (!text.empty() && text[0] >= 'a' && text[0] <= 'z')
        text[0] = static_cast<char>(text[0] - 32);
    return text;
}

// The curves, then their cells without a number as points.
void AddCorners(const std::vector<CornerCurve>& curves, LinePlot& plot)
{
    for (const CornerCurve& curve : curves)
        plot.series.push_back({CornerNames[curve.corner], curve.x, curve.y, curve.corner,
                               CornerStrokes[curve.corner]});
    for (const CornerCurve& curve : curves) {
        if (curve.holeX.empty()) continue;
        plot.series.push_back({std::string(CornerNames[curve.corner]) + ": no number", curve.holeX,
                               curve.holeY, curve.corner, Stroke::Points});
    }
}

// What is not there, in words.
void DescribeHoles(const std::vector<CornerCurve>& curves, std::vector<std::string>& caption)
{
    std::string empty;
    for (int corner = 0; corner < CORNER_COUNT; ++corner) {
        const auto curve = std::find_if(curves.begin(), curves.end(), [corner](const auto& each) {
            return each.corner == corner;
        });
        const std::string name = CornerNames[corner];
        if (curve == curves.end()) {
            empty += (empty.empty() ? "" : " and ") + name;
            continue;
        }
        const std::string all = " of " + std::to_string(curve->x.size()) + " cells ";
        if (curve->naCells > 0)
            caption.push_back(Capital(name) + ": " + std::to_string(curve->naCells) + all +
                              "are NA.");
        if (curve->missingCells > 0)
            caption.push_back(Capital(name) + ": " + std::to_string(curve->missingCells) + all +
                              "are missing.");
    }
    if (!empty.empty()) caption.push_back("No numbers for " + empty + ".");
}

// Stretches that overlap are one band; the caption tells them apart.
void AddFalls(const std::vector<CurveFall>& falls, ModelPlot& picture,
              std::vector<std::string>& caption)
{
    std::vector<CurveFall> sorted = falls;
    std::sort(sorted.begin(), sorted.end(),
              [](const CurveFall& a, const CurveFall& b) { return a.from < b.from; });
    picture.falls = sorted;
    std::vector<PlotBand>& bands = picture.plot.bands;
    std::string text;
    for (size_t k = 0; k < sorted.size(); ++k) {
        const CurveFall& fall = sorted[k];
        if (bands.empty() || fall.from >= bands.back().to)
            bands.push_back({fall.from, fall.to, "falls", true});
        bands.back().to = std::max(bands.back().to, fall.to);
        picture.bandOfFall.push_back(bands.size() - 1);
        if (k < ToldFalls)
            text += (text.empty() ? "Falls: " : "; ") + std::string(CornerNames[fall.corner]) +
                    " by " + UnitText(fall.loss, "A", 3) + " from " + UnitText(fall.from, "V", 3) +
                    " to " + UnitText(fall.to, "V", 3);
    }
    if (sorted.size() > ToldFalls)
        text += "; " + std::to_string(sorted.size() - ToldFalls) + " more";
    if (!text.empty()) caption.push_back(text + ".");
}

ModelPlot TablePicture(const TableView& view, const std::string& id)
{
    ModelPlot picture;
    picture.group = PlotGroup::Tables;
    LinePlot& plot = picture.plot;
    plot.id = id + view.key;
    plot.title = "[" + std::string(view.table->name) + "]";
    picture.phrases = {plot.title};
    if (view.table->mosfet != 0 && view.table->vds.state == CELL_NUMBER)
        plot.title += " Vds = " + UnitText(view.table->vds.value, "V");
    plot.x = {view.formula.empty() ? "table voltage" : "pin voltage", "V", Scale::Linear, {}, {}};
    plot.y = {"current", "A", Scale::Linear, {}, {}};
    std::vector<std::string> caption = {"Line " + std::to_string(view.table->line) + ", " +
                                        std::to_string(view.table->count) + " points."};
    if (!view.formula.empty()) caption.push_back("Table voltage = " + view.formula + ".");
    DescribeHoles(view.curves, caption);
    AddCorners(view.curves, plot);
    AddFalls(view.falls, picture, caption);
    plot.caption = Join(caption);
    return picture;
}

// The currents that matter: between the rails and where loads are met.
void FrameState(const StateView& view, const RailSpan& rails, LinePlot& plot)
{
    const double supply = rails.high - rails.low;
    if (!(supply > 0)) return;
    double left = rails.low - BeyondRails * supply;
    double right = rails.high + BeyondRails * supply;
    double low = 0, high = 0;
    const auto show = [&](double current) {
        low = std::min(low, current);
        high = std::max(high, current);
    };
    for (const CornerCurve& curve : view.curves)
        for (size_t k = 0; k < curve.x.size(); ++k)
            if (curve.x[k] >= rails.low && curve.x[k] <= rails.high) show(curve.y[k]);
    for (const auto& corners : view.points)
        for (const std::optional<OperatingPoint>& point : corners) {
            if (!point) continue;
            left = std::min(left, point->v);
            right = std::max(right, point->v);
            show(point->i);
        }
    for (const CurveFall& fall : view.falls) {
        left = std::min(left, fall.from);
        right = std::max(right, fall.to);
    }
    plot.x.low = left;
    plot.x.high = right;
    if (view.state == CURVE_OFF || !(high > low)) return;
    plot.y.low = low - 0.15 * (high - low);
    plot.y.high = high + 0.15 * (high - low);
}

std::pair<double, double> Width(const StateView& view, const LinePlot& plot)
{
    std::pair<double, double> width = {plot.x.low.value_or(0), plot.x.high.value_or(1)};
    for (const CornerCurve& curve : view.curves) {
        if (curve.x.empty()) continue;
        width.first = std::min(width.first, curve.x.front());
        width.second = std::max(width.second, curve.x.back());
    }
    return width;
}

void AddLoads(const StateView& view, const std::vector<LoadLine>& loads, LinePlot& plot)
{
    const auto [left, right] = Width(view, plot);
    std::vector<std::pair<double, double>> points;
    for (size_t k = 0; k < view.points.size() && k < MostLoads; ++k) {
        const LoadLine& load = loads[k];
        const int colour = FirstLoadColour + static_cast<int>(k % LoadColours);
        std::optional<double> drawn;
        for (int corner = 0; corner < CORNER_COUNT; ++corner) {
            const auto c = static_cast<size_t>(corner);
            if (view.points[k][c]) points.emplace_back(view.points[k][c]->v, view.points[k][c]->i);
            const std::optional<double> to = load.to[c];
            if (!to || (drawn && *drawn == *to)) continue;
            LoadLine own = load;
            own.to.fill(to);
            std::string name = LoadText(own);
            if (drawn) name += std::string(", ") + CornerNames[corner];
            drawn = drawn ? drawn : to;
            plot.series.push_back(
                {name,
                 {left, right},
                 {(*to - left) / load.resistance, (*to - right) / load.resistance},
                 colour,
                 Stroke::Dotted});
        }
    }
    if (points.empty()) return;
    std::sort(points.begin(), points.end());
    PlotSeries series;
    series.name = "operating points";
    series.colour = PlainColour;
    series.stroke = Stroke::Points;
    for (const auto& [v, i] : points) {
        series.x.push_back(v);
        series.y.push_back(i);
    }
    plot.series.push_back(std::move(series));
}

// Why a corner of a state is not there.
std::string ResultText(int result)
{
    switch (result) {
        case CURVE_NO_REFERENCE:
            return "a reference voltage is not given";
        case CURVE_NO_CORNER:
            return "a table has no numbers there";
        case CURVE_NO_TABLE:
            return "no table conducts";
        default:
            return "not enough memory";
    }
}

std::string SumText(const Mdl& model, int state)
{
    std::vector<std::string> terms;
    if (state == CURVE_LOW && model.pulldown != nullptr) terms.push_back("pulldown");
    if (state == CURVE_HIGH && model.pullup != nullptr) terms.push_back("pullup");
    if (model.gndClamp != nullptr) terms.push_back("GND clamp");
    if (model.powerClamp != nullptr) terms.push_back("POWER clamp");
    std::string text;
    for (const std::string& term : terms)
        text += (text.empty() ? "" : " + ") + term;
    return text;
}

ModelPlot StatePicture(const Mdl& model, const StateView& view, const std::vector<LoadLine>& loads,
                       const std::string& id)
{
    ModelPlot picture;
    picture.group = PlotGroup::Combined;
    const StateWords& words = WordsOf(view.state);
    picture.phrases = words.phrases;
    LinePlot& plot = picture.plot;
    plot.id = id + words.key;
    plot.title = Capital(words.name) + ": combined curve";
    plot.x = {"pin voltage", "V", Scale::Linear, {}, {}};
    plot.y = {"current into the pin", "A", Scale::Linear, {}, {}};
    if (const std::optional<RailSpan> rails = Rails(model)) {
        FrameState(view, *rails, plot);
        for (const double rail : {rails->low, rails->high})
            plot.marks.push_back({PlotMark::AtX, rail, UnitText(rail, "V")});
    }
    AddCorners(view.curves, plot);
    AddLoads(view, loads, plot);

    std::vector<std::string> caption;
    const std::string sum = SumText(model, view.state);
    caption.push_back((sum.empty() ? "Clamps of added submodels" : "Sum of " + sum) +
                      (model.addSubs != nullptr && !sum.empty() ? " and added submodels." : "."));
    std::map<int, std::string> lacking;
    for (int corner = 0; corner < CORNER_COUNT; ++corner) {
        std::string& corners = lacking[view.results[static_cast<size_t>(corner)]];
        corners += (corners.empty() ? "" : " and ") + std::string(CornerNames[corner]);
    }
    for (const auto& [result, corners] : lacking)
        if (result != CURVE_BUILT)
            caption.push_back("No curve for " + corners + ": " + ResultText(result) + ".");
    if (view.points.size() > MostLoads)
        caption.push_back(std::to_string(view.points.size() - MostLoads) +
                          " more loads are in the table only.");
    AddFalls(view.falls, picture, caption);
    plot.caption = Join(caption);
    return picture;
}

std::string Plain(double value)
{
    char text[40];
    std::snprintf(text, sizeof text, "%g", value);
    return text;
}

// "50 Ω to 0 V" with what else is in the fixture.
std::string FixtureText(const Wvfrm& waveform)
{
    if (waveform.R_fixture.state != CELL_NUMBER) return "no fixture";
    LoadLine load;
    load.resistance = waveform.R_fixture.value;
    for (int corner = 0; corner < CORNER_COUNT; ++corner) {
        double volts = 0;
        if (WVFRM_FixtureVoltage(&waveform, corner, &volts) == CELL_NUMBER)
            load.to[static_cast<size_t>(corner)] = volts;
    }
    std::string text = LoadText(load);
    const struct {
        const char* name;
        const RngSingle& value;
        const char* unit;
    } parts[] = {{"C_fixture", waveform.C_fixture, "F"},
                 {"L_fixture", waveform.L_fixture, "H"},
                 {"R_dut", waveform.R_dut, "Ω"},
                 {"L_dut", waveform.L_dut, "H"},
                 {"C_dut", waveform.C_dut, "F"}};
    for (const auto& part : parts)
        if (part.value.state == CELL_NUMBER && part.value.value != 0)
            text += ", " + std::string(part.name) + " " + UnitText(part.value.value, part.unit);
    return text;
}

// What messages call the fixture of a waveform in its corners.
std::vector<std::string> FixturePhrases(const Wvfrm& waveform, bool rising)
{
    std::vector<std::string> phrases;
    if (waveform.R_fixture.state != CELL_NUMBER) return phrases;
    for (int corner = 0; corner < CORNER_COUNT; ++corner) {
        double volts = 0;
        if (WVFRM_FixtureVoltage(&waveform, corner, &volts) != CELL_NUMBER) continue;
        const std::string fixture =
            "(" + Plain(waveform.R_fixture.value) + " ohm, " + Plain(volts) + " V)";
        phrases.push_back((rising ? "rising waveform " : "falling waveform ") + fixture);
        if (rising) phrases.push_back("rising and falling waveforms " + fixture);
    }
    return phrases;
}

void AddWaveform(const WaveformView& view, const std::string& id, bool only,
                 std::vector<ModelPlot>& plots)
{
    const Wvfrm& waveform = *view.waveform;
    const bool rising = WVFRM_Direction(waveform.kind) > 0;
    const std::string keyword = rising ? "[Rising Waveform]" : "[Falling Waveform]";
    ModelPlot picture;
    picture.group = PlotGroup::Waveforms;
    picture.phrases = FixturePhrases(waveform, rising);
    // Messages that name the keyword alone mean one of several.
    if (only) picture.phrases.push_back(keyword);
    LinePlot& plot = picture.plot;
    plot.id = id;
    plot.title = keyword + " " + FixtureText(waveform);
    plot.x = {"time", "s", Scale::Linear, {}, {}};
    plot.y = {"voltage", "V", Scale::Linear, {}, {}};
    AddCorners(view.curves, plot);
    for (int corner = 0; corner < CORNER_COUNT; ++corner) {
        PlotSeries ends;
        ends.name = std::string(CornerNames[corner]) + ": V-I tables";
        ends.colour = corner;
        ends.stroke = Stroke::Points;
        for (const WaveformView::End& end : view.ends) {
            if (end.corner != corner) continue;
            ends.x.push_back(end.time);
            ends.y.push_back(end.volts);
        }
        if (!ends.x.empty()) plot.series.push_back(std::move(ends));
    }
    std::vector<std::string> caption = {"Line " + std::to_string(waveform.line) + ", " +
                                        std::to_string(waveform.count) + " points."};
    if (!view.ends.empty())
        caption.push_back("Dots: where the V-I tables settle into this fixture.");
    DescribeHoles(view.curves, caption);
    plot.caption = Join(caption);
    plots.push_back(std::move(picture));

    if (view.composite.empty()) return;
    ModelPlot current;
    current.group = PlotGroup::Composite;
    current.plot.id = id + "-current";
    current.plot.title = "[Composite Current] of " + keyword + " " + FixtureText(waveform);
    current.plot.x = {"time", "s", Scale::Linear, {}, {}};
    current.plot.y = {"current", "A", Scale::Linear, {}, {}};
    AddCorners(view.composite, current.plot);
    caption.clear();
    DescribeHoles(view.composite, caption);
    current.plot.caption = Join(caption);
    plots.push_back(std::move(current));
}

}  // namespace

const char* StateName(int state)
{
    return WordsOf(state).name;
}

std::string LoadText(const LoadLine& load)
{
    std::string volts;
    const std::optional<double> typ = load.to[CORNER_TYP];
    for (size_t corner = 0; corner < load.to.size(); ++corner) {
        const std::optional<double> to = load.to[corner];
        if (corner > 0 && to == typ) continue;
        const std::string text = to ? UnitText(*to, "V") : "?";
        volts += corner == 0 ? text
                             : (volts.find('(') == std::string::npos ? " (" : ", ") +
                                   std::string(CornerNames[corner]) + " " + text;
    }
    if (volts.find('(') != std::string::npos) volts += ")";
    return UnitText(load.resistance, "Ω") + " to " + volts + (load.timing ? ", timing load" : "");
}

std::vector<ModelPlot> ModelPlots(const Mdl& model, const std::string& id,
                                  const std::vector<LoadLine>& loads,
                                  const std::vector<StateView>& states)
{
    std::vector<ModelPlot> plots;
    plots.reserve(states.size());
    for (const StateView& view : states)
        plots.push_back(StatePicture(model, view, loads, id + "-"));
    for (const TableView& view : TableViews(model))
        plots.push_back(TablePicture(view, id + "-"));
    const std::vector<WaveformView> waveforms = WaveformViews(model);
    const auto count = [](const Wvfrm* list) {
        size_t n = 0;
        for (; list != nullptr; list = list->next)
            ++n;
        return n;
    };
    const bool only[] = {count(model.falling) == 1, count(model.rising) == 1};
    size_t number = 0;
    for (const WaveformView& view : waveforms) {
        const bool rising = WVFRM_Direction(view.waveform->kind) > 0;
        AddWaveform(view, id + "-waveform-" + std::to_string(++number), only[rising], plots);
    }
    std::stable_sort(plots.begin(), plots.end(),
                     [](const ModelPlot& a, const ModelPlot& b) { return a.group < b.group; });
    return plots;
}

size_t TieFinding(const Finding& finding, std::vector<ModelPlot>& plots)
{
    const std::string words = WithoutQuotes(finding.text);
    const auto isAbout = [&words](const ModelPlot& plot) {
        return std::any_of(plot.phrases.begin(), plot.phrases.end(),
                           [&words](const std::string& phrase) {
                               return words.find(phrase) != std::string::npos;
                           });
    };
    const auto found = std::find_if(plots.begin(), plots.end(), isAbout);
    const auto place = static_cast<size_t>(found - plots.begin());
    if (found == plots.end()) return place;
    found->plot.caption += " " + Capital(WordOf(finding.severity).one) + " " +
                           std::to_string(finding.number) + ": " + finding.text;
    if (words.find("not monotonic") == std::string::npos &&
        words.find("beyond the rails") == std::string::npos)
        return place;
    // The message is about the largest of its corner.
    const int corner = CornerOf(finding.text);
    size_t worst = found->falls.size();
    for (size_t k = 0; k < found->falls.size(); ++k)
        if (found->falls[k].corner == corner &&
            (worst == found->falls.size() || found->falls[k].loss > found->falls[worst].loss))
            worst = k;
    if (worst < found->falls.size())
        found->plot.bands[found->bandOfFall[worst]].label =
            "falls: " + std::to_string(finding.number);
    return place;
}

}  // namespace quell
