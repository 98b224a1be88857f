// The curves of a buffer model.
#include "quell/view/buffer_curves.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <set>

#include "IbisParser/cmn.h"
#include "IbisParser/serel.h"

namespace quell {

namespace {

constexpr double NaN = std::numeric_limits<double>::quiet_NaN();

// Where the voltages of a table lie at the pin: v = reference + x or, falling, reference - x.
struct Placing {
    std::array<double, CORNER_COUNT> reference = {};
    bool falling = false;
};

// The drive tables and clamps of a model. An ECL pulldown counts from the pullup reference.
struct PinTable {
    Vitbl* Mdl::*table;
    const char* key;
    int reference;  // MdlRef
    bool falling;
    const char* formula;
};
constexpr PinTable PinTables[] = {
    {&Mdl::pulldown, "pulldown", MDL_REF_PULLDOWN, false, "v − Vpulldown"},
    {&Mdl::pullup, "pullup", MDL_REF_PULLUP, true, "Vpullup − v"},
    {&Mdl::gndClamp, "gnd-clamp", MDL_REF_GND_CLAMP, false, "v − Vgnd clamp"},
    {&Mdl::powerClamp, "power-clamp", MDL_REF_POWER_CLAMP, true, "Vpower clamp − v"},
};
constexpr PinTable EclPulldown = {&Mdl::pulldown, "pulldown", MDL_REF_PULLUP, true, "Vpullup − v"};

class OwnedCurve {
public:
    OwnedCurve() = default;
    ~OwnedCurve() { CURVE_Free(&curve); }
    OwnedCurve(const OwnedCurve&) = delete;
    OwnedCurve& operator=(const OwnedCurve&) = delete;

    Curve curve = {nullptr, 0, 0, 0};
};

// Puts the holes on the straight line between the numbers around them.
void FillHoles(CornerCurve& curve)
{
    const auto isNumber = [&](size_t k) { return !std::isnan(curve.y[k]); };
    std::optional<size_t> before;
    for (size_t k = 0; k < curve.x.size();) {
        if (isNumber(k)) {
            before = k++;
            continue;
        }
        size_t after = k;
        while (after < curve.x.size() && !isNumber(after))
            ++after;
        const bool last = after == curve.x.size();
        for (; k < after; ++k) {
            const size_t left = before.value_or(after);
            const size_t right = last ? left : after;
            const double width = curve.x[right] - curve.x[left];
            const double share = width > 0 ? (curve.x[k] - curve.x[left]) / width : 0;
            curve.holeX.push_back(curve.x[k]);
            curve.holeY.push_back(curve.y[left] + share * (curve.y[right] - curve.y[left]));
        }
    }
}

// The corners of a list of table lines that have a number. Lines without a number in the first
// column are passed over.
std::vector<CornerCurve> Corners(const RngpLine* head, const Placing& placing)
{
    std::vector<const RngpLine*> lines;
    for (const RngpLine* line = head; line != nullptr; line = line->next)
        if (line->xState == CELL_NUMBER) lines.push_back(line);
    std::vector<CornerCurve> corners;
    for (int corner = 0; corner < CORNER_COUNT; ++corner) {
        const double reference = placing.reference[static_cast<size_t>(corner)];
        const auto place = [&](const RngpLine* line) {
            return placing.falling ? reference - line->x : reference + line->x;
        };
        std::stable_sort(lines.begin(), lines.end(),
                         [&](const RngpLine* a, const RngpLine* b) { return place(a) < place(b); });
        CornerCurve curve;
        curve.corner = corner;
        bool any = false;
        for (const RngpLine* line : lines) {
            double value = NaN;
            const int state = VITBL_Cell(line, corner, &value);
            any = any || state == CELL_NUMBER;
            curve.naCells += state == CELL_NA;
            curve.missingCells += state == CELL_ABSENT;
            curve.x.push_back(place(line));
            curve.y.push_back(state == CELL_NUMBER ? value : NaN);
        }
        if (!any) continue;
        FillHoles(curve);
        corners.push_back(std::move(curve));
    }
    return corners;
}

// The points with numbers, in their order.
CornerCurve Numbers(const CornerCurve& curve)
{
    CornerCurve numbers;
    for (size_t k = 0; k < curve.x.size(); ++k) {
        if (std::isnan(curve.y[k])) continue;
        numbers.x.push_back(curve.x[k]);
        numbers.y.push_back(curve.y[k]);
    }
    return numbers;
}

// The loss that counts, of the largest current between two voltages.
double FallLimit(const CornerCurve& curve, double low, double high)
{
    double largest = 0;
    for (size_t k = 0; k < curve.x.size(); ++k)
        if (curve.x[k] >= low && curve.x[k] <= high)
            largest = std::max(largest, std::abs(curve.y[k]));
    for (size_t k = 1; k < curve.x.size(); ++k)
        for (const double v : {low, high}) {
            const double width = curve.x[k] - curve.x[k - 1];
            if (!(curve.x[k - 1] < v && v < curve.x[k])) continue;
            const double share = (v - curve.x[k - 1]) / width;
            largest =
                std::max(largest, std::abs(curve.y[k - 1] + share * (curve.y[k] - curve.y[k - 1])));
        }
    return std::max(CURVE_RUN_FLOOR, CURVE_RUN_SHARE * largest);
}

void AppendFalls(const CornerCurve& curve, double low, double high, std::vector<CurveFall>& falls)
{
    const CornerCurve numbers = Numbers(curve);
    const std::vector<CurveFall> found =
        FindFalls(numbers.x, numbers.y, curve.corner, FallLimit(numbers, low, high));
    falls.insert(falls.end(), found.begin(), found.end());
}

TableView ViewAtPin(const Mdl& model, const PinTable& row)
{
    TableView view;
    view.table = model.*row.table;
    view.key = row.key;
    Placing placing;
    placing.falling = row.falling;
    bool known = true;
    for (int corner = 0; corner < CORNER_COUNT; ++corner)
        known = MDL_RefVoltage(&model, row.reference, corner,
                               &placing.reference[static_cast<size_t>(corner)]) != 0 &&
                known;
    if (!known) placing = {};
    view.curves = Corners(view.table->head, placing);
    if (!known) return view;
    view.formula = row.formula;
    const std::optional<RailSpan> rails = Rails(model);
    const double everywhere = std::numeric_limits<double>::infinity();
    for (const CornerCurve& curve : view.curves)
        AppendFalls(curve, rails ? rails->low : -everywhere, rails ? rails->high : everywhere,
                    view.falls);
    return view;
}

void AppendOwn(const Vitbl* table, const std::string& key, std::vector<TableView>& views)
{
    if (table == nullptr) return;
    TableView view;
    view.table = table;
    view.key = key;
    view.curves = Corners(table->head, {});
    views.push_back(std::move(view));
}

void AppendLoad(const Wvfrm& waveform, std::vector<LoadLine>& loads,
                std::set<std::array<double, 7>>& seen)
{
    if (waveform.R_fixture.state != CELL_NUMBER) return;
    LoadLine load;
    load.resistance = waveform.R_fixture.value +
                      (waveform.R_dut.state == CELL_NUMBER ? waveform.R_dut.value : 0.0);
    if (!(load.resistance > 0)) return;
    std::array<double, 7> mark = {load.resistance};
    for (int corner = 0; corner < CORNER_COUNT; ++corner) {
        double volts = 0;
        if (WVFRM_FixtureVoltage(&waveform, corner, &volts) != CELL_NUMBER) continue;
        const auto c = static_cast<size_t>(corner);
        load.to[c] = volts;
        mark[1 + 2 * c] = 1;
        mark[2 + 2 * c] = volts;
    }
    if (seen.insert(mark).second) loads.push_back(load);
}

std::optional<OperatingPoint> Solve(const Curve& curve, const LoadLine& load, int corner,
                                    double near)
{
    const std::optional<double> to = load.to[static_cast<size_t>(corner)];
    AcdcPoint point;
    if (!to || !ACDC_Solve(&curve, load.resistance, *to, near, &point)) return std::nullopt;
    return OperatingPoint{point.v, (*to - point.v) / load.resistance, point.outside != 0,
                          point.count > 1};
}

StateView ViewState(const Mdl& model, int state, const std::vector<LoadLine>& loads)
{
    StateView view;
    view.state = state;
    view.points.resize(loads.size());
    for (int corner = 0; corner < CORNER_COUNT; ++corner) {
        OwnedCurve owned;
        const auto c = static_cast<size_t>(corner);
        view.results[c] = CURVE_Combine(&model, state, corner, 1, &owned.curve);
        if (view.results[c] != CURVE_BUILT) continue;
        CornerCurve curve;
        curve.corner = corner;
        for (int k = 0; k < owned.curve.count; ++k) {
            curve.x.push_back(owned.curve.points[k].v);
            curve.y.push_back(owned.curve.points[k].i);
        }
        // A buffer settles near the rail that it drives to.
        double near = 0;
        double low = -std::numeric_limits<double>::infinity();
        double high = -low;
        MDL_RefVoltage(&model, state == CURVE_HIGH ? MDL_REF_PULLUP : MDL_REF_PULLDOWN, corner,
                       &near);
        if (const std::optional<RailSpan> rails = Rails(model)) {
            low = rails->low;
            high = rails->high;
        }
        AppendFalls(curve, low, high, view.falls);
        for (size_t k = 0; k < loads.size(); ++k)
            view.points[k][c] = Solve(owned.curve, loads[k], corner, near);
        view.curves.push_back(std::move(curve));
    }
    return view;
}

void AppendEnds(const Mdl& model, const CornerCurve& curve, WaveformView& view)
{
    const CornerCurve numbers = Numbers(curve);
    for (int last = 0; last < 2; ++last) {
        double volts = 0;
        if (!ACDC_EndPoint(&model, view.waveform, curve.corner, last, &volts)) continue;
        view.ends.push_back(
            {curve.corner, last != 0 ? numbers.x.back() : numbers.x.front(), volts});
    }
}

}  // namespace

std::vector<CurveFall> FindFalls(const std::vector<double>& x, const std::vector<double>& y,
                                 int corner, double limit)
{
    std::vector<CurveFall> falls;
    for (size_t k = 0; k + 1 < x.size();) {
        if (!(y[k + 1] < y[k])) {
            ++k;
            continue;
        }
        size_t end = k + 1;
        for (size_t next = end + 1; next < x.size() && y[next] <= y[next - 1]; ++next)
            if (y[next] < y[next - 1]) end = next;
        if (y[k] - y[end] > limit && x[end] > x[k])
            falls.push_back({corner, x[k], x[end], y[k] - y[end]});
        k = end;
    }
    return falls;
}

std::optional<RailSpan> Rails(const Mdl& model)
{
    std::optional<RailSpan> span;
    for (int corner = 0; corner < CORNER_COUNT; ++corner)
        for (int which = MDL_REF_PULLUP; which <= MDL_REF_GND_CLAMP; ++which) {
            double volts = 0;
            if (!MDL_RefVoltage(&model, which, corner, &volts)) return std::nullopt;
            if (!span) span = {volts, volts};
            span->low = std::min(span->low, volts);
            span->high = std::max(span->high, volts);
        }
    return span;
}

std::vector<TableView> TableViews(const Mdl& model)
{
    const MdlTypeInfo* type = MDL_TypeInfo(model.type);
    const bool ecl = type != nullptr && type->ecl != 0;
    std::vector<TableView> views;
    for (const PinTable& row : PinTables) {
        if (model.*row.table == nullptr) continue;
        const bool eclPulldown = ecl && row.table == &Mdl::pulldown;
        views.push_back(ViewAtPin(model, eclPulldown ? EclPulldown : row));
    }
    AppendOwn(model.issoPD, "isso-pd", views);
    AppendOwn(model.issoPU, "isso-pu", views);
    static constexpr const char* SeriesKeys[SEREL_STATES] = {"series", "series-on", "series-off"};
    for (int state = 0; state < SEREL_STATES; ++state) {
        const SerEl* elements = model.series[state];
        if (elements == nullptr) continue;
        const std::string key = SeriesKeys[state];
        AppendOwn(elements->current, key + "-current", views);
        int count = 0;
        for (const Vitbl* table = elements->mosfets; table != nullptr; table = table->next)
            AppendOwn(table, key + "-mosfet-" + std::to_string(++count), views);
    }
    return views;
}

std::vector<LoadLine> LoadLines(const Mdl& model)
{
    std::vector<LoadLine> loads;
    std::set<std::array<double, 7>> seen;
    for (const Wvfrm* list : {model.rising, model.falling})
        for (; list != nullptr; list = list->next)
            AppendLoad(*list, loads, seen);
    if (model.Rref.state == CELL_NUMBER && model.Rref.value > 0 &&
        model.Vref.state == CELL_NUMBER) {
        LoadLine timing;
        timing.resistance = model.Rref.value;
        timing.to.fill(model.Vref.value);
        timing.timing = true;
        loads.push_back(timing);
    }
    return loads;
}

std::vector<StateView> StateViews(const Mdl& model, const std::vector<LoadLine>& loads)
{
    const MdlTypeInfo* type = MDL_TypeInfo(model.type);
    std::vector<StateView> views;
    if (type == nullptr) return views;
    const bool rests = type->receives != 0 || type->floats != 0 || type->type == MDL_TERMINATOR;
    static const std::vector<LoadLine> NoLoads;
    for (const int state : {CURVE_LOW, CURVE_HIGH, CURVE_OFF}) {
        if (state == CURVE_OFF ? !rests : type->drives == 0) continue;
        StateView view = ViewState(model, state, state == CURVE_OFF ? NoLoads : loads);
        const bool conducts = std::any_of(view.results.begin(), view.results.end(),
                                          [](int result) { return result != CURVE_NO_TABLE; });
        if (conducts) views.push_back(std::move(view));
    }
    return views;
}

std::vector<WaveformView> WaveformViews(const Mdl& model)
{
    std::vector<WaveformView> views;
    for (const Wvfrm* list : {model.rising, model.falling})
        for (; list != nullptr; list = list->next) {
            WaveformView view;
            view.waveform = list;
            view.curves = Corners(list->head, {});
            view.composite = Corners(list->composite, {});
            for (const CornerCurve& curve : view.curves)
                AppendEnds(model, curve, view);
            views.push_back(std::move(view));
        }
    return views;
}

}  // namespace quell
