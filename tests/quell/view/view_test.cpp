// quell view: the curves of a buffer against closed forms, findings with their pictures, the page.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "IbisParser/parse.h"
#include "quell/base/errors.h"
#include "quell/check/read_file.h"
#include "quell/view/buffer_curves.h"
#include "quell/view/findings.h"
#include "quell/view/model_plots.h"
#include "quell/view/view_page.h"
#include "tests/quell/command.h"
#include "tests/support/TempDir.h"

namespace quell {
namespace {

// Reads and checks a text as an IBIS file; the store lives as long as this.
class ReadText {
public:
    explicit ReadText(const std::string& text)
    {
        m_Opening.path = m_Opening.name = m_Folder.Write(
            "t.ibs", "[IBIS Ver] 4.2\n[File Name] t.ibs\n[File Rev] 1\n" + text + "[End]\n");
        report.name = "t.ibs";
        FindingCollector collector(report, 1000);
        const FindingSink sink(m_Opening, [&](Finding finding) {
            if (finding.file.empty()) finding.file = report.name;
            collector.Add(std::move(finding));
        });
        INIT();
        PARSE(m_Opening.path.c_str(), FILE_IBS);
        IBIS_GetIBIS(&root);
        TEST(FILE_IBS, 0);
        collector.Finish();
    }
    ~ReadText()
    {
        const FindingSink sink(m_Opening, [](const Finding&) {});
        FINI();
    }
    ReadText(const ReadText&) = delete;
    ReadText& operator=(const ReadText&) = delete;

    const Mdl& Model() const { return *root->mdls; }
    const Finding& Find(unsigned number) const
    {
        for (const Finding& finding : report.findings)
            if (finding.number == number) return finding;
        throw std::runtime_error("no finding " + std::to_string(number));
    }

    IbisRoot* root = nullptr;
    FileReport report;

private:
    TempDir m_Folder;
    Opening m_Opening;
};

std::string Component(const std::string& model)
{
    return R"([Component] parts
[Manufacturer] m
[Package]
R_pkg 0 NA NA
L_pkg 1n NA NA
C_pkg 1p NA NA
[Pin] signal_name model_name R_pin L_pin C_pin
1 a )" + model +
           "\n";
}

// A pulldown of 50 ohm and a pullup of 25 ohm; the supply of the minimum corner is 3 V. Waveforms
// are into 50 ohm: the high state gives 2.2 V to ground, the low state half the supply.
const std::string Resistors =
    R"([Model] r
Model_type Output
C_comp 1p 1p 1p
[Voltage Range] 3.3 3.0 3.6
[Pulldown]
-3.3 -66m -66m -66m
0 0 0 0
6.6 132m 132m 132m
[Pullup]
-3.3 132m 132m 132m
0 0 0 0
6.6 -264m -264m -264m
[Ramp]
dV/dt_r 1.32/1n 1.2/1n 1.44/1n
dV/dt_f 0.99/1n 0.9/1n 1.08/1n
)";
const std::string WaveformModel =
    R"([Rising Waveform]
R_fixture = 50
V_fixture = 0
0 0 0 0
1n 1.1 1.0 1.2
2n 2.2 2.0 2.4
3n 2.2 2.0 2.4
[Falling Waveform]
R_fixture = 50
V_fixture = 3.3
V_fixture_min = 3.0
V_fixture_max = 3.6
0 3.3 3.0 3.6
1n 2 2 2
2n 1.65 1.5 1.8
3n 1.65 1.5 1.8
)";

constexpr double Rounding = 1e-12;

GTEST_TEST(ViewCurves, TablesStandOverThePinVoltage)
{
    const ReadText text(Component("r") + Resistors);
    const std::vector<TableView> views = TableViews(text.Model());
    ASSERT_EQ(views.size(), 2U);
    const struct {
        size_t table, corner;
        double from, to;
    } spans[] = {{0, CORNER_TYP, -3.3, 6.6},
                 {0, CORNER_MIN, -3.3, 6.6},
                 {1, CORNER_TYP, -3.3, 6.6},
                 {1, CORNER_MIN, -3.6, 6.3}};
    for (const auto& span : spans) {
        const CornerCurve& curve = views[span.table].curves[span.corner];
        ASSERT_EQ(curve.x.size(), 3U);
        EXPECT_NEAR(curve.x.front(), span.from, Rounding) << span.table << span.corner;
        EXPECT_NEAR(curve.x.back(), span.to, Rounding) << span.table << span.corner;
        EXPECT_LT(curve.y.front(), curve.y.back());
    }
    EXPECT_TRUE(views[0].falls.empty() && views[1].falls.empty());
}

GTEST_TEST(ViewCurves, OperatingPointsOfResistors)
{
    const ReadText text(Component("r") + Resistors + WaveformModel);
    const std::vector<LoadLine> loads = LoadLines(text.Model());
    ASSERT_EQ(loads.size(), 2U);
    const std::vector<StateView> states = StateViews(text.Model(), loads);
    ASSERT_EQ(states.size(), 2U);  // an output is never off
    const struct {
        size_t state, load, corner;
        double v, i;
    } points[] = {
        {0, 0, CORNER_TYP, 0, 0},        {0, 1, CORNER_TYP, 1.65, 33e-3},
        {0, 1, CORNER_MIN, 1.5, 30e-3},  {1, 0, CORNER_TYP, 2.2, -44e-3},
        {1, 0, CORNER_MAX, 2.4, -48e-3}, {1, 1, CORNER_MIN, 3.0, 0},
    };
    for (const auto& each : points) {
        const std::optional<OperatingPoint>& point =
            states[each.state].points[each.load][each.corner];
        ASSERT_TRUE(point);
        EXPECT_NEAR(point->v, each.v, Rounding);
        EXPECT_NEAR(point->i, each.i, Rounding);
        EXPECT_FALSE(point->outside || point->several);
    }
    const std::vector<WaveformView> waveforms = WaveformViews(text.Model());
    ASSERT_EQ(waveforms.size(), 2U);
    const std::vector<WaveformView::End>& ends = waveforms[1].ends;
    ASSERT_EQ(ends.size(), 6U);  // start and end of three corners
    EXPECT_NEAR(ends[0].volts, 3.3, Rounding);
    EXPECT_DOUBLE_EQ(ends[1].time, 3e-9);
    EXPECT_NEAR(ends[5].volts, 1.8, Rounding);
}

GTEST_TEST(ViewCurves, CellsWithoutNumbersLieOnTheLineAcross)
{
    const ReadText text(Component("c") +
                        R"([Model] c
Model_type Input
Vinl 1
Vinh 2
C_comp 1p 1p 1p
[Voltage Range] 3 3 3
[GND Clamp]
-3 -3 NA NA
-2 NA -1 NA
-1 -1 -0.5 NA
0 0 NA NA
1 0
)");
    const std::vector<CornerCurve> curves = TableViews(text.Model())[0].curves;
    ASSERT_EQ(curves.size(), 2U);  // none of the maximum column
    EXPECT_EQ(curves[0].holeX, std::vector<double>{-2});
    EXPECT_EQ(curves[0].holeY, std::vector<double>{-2});
    EXPECT_TRUE(std::isnan(curves[0].y[1]));
    // Beyond the numbers a hole is level with the last of them.
    EXPECT_EQ(curves[1].holeX, (std::vector<double>{-3, 0, 1}));
    EXPECT_EQ(curves[1].holeY, (std::vector<double>{-1, -0.5, -0.5}));
    EXPECT_EQ(curves[1].naCells, 2U);
    EXPECT_EQ(curves[1].missingCells, 1U);
}

GTEST_TEST(ViewCurves, Falls)
{
    static const struct {
        const char* label;
        std::vector<double> y;
        std::vector<std::pair<double, double>> falls;
    } cases[] = {
        {"rising", {0, 1, 1, 2}, {}},
        {"flat before and behind", {1, 1, 0, 0, 2}, {{1, 2}}},
        {"flat inside", {3, 2, 2, 1, 4}, {{0, 3}}},
        {"two", {2, 0, 2, 0}, {{0, 1}, {2, 3}}},
        {"below the limit", {1, 0.6, 1}, {}},
        {"to the end", {0, 3, 2, 1}, {{1, 3}}},
    };
    for (const auto& each : cases) {
        std::vector<double> x;
        for (size_t k = 0; k < each.y.size(); ++k)
            x.push_back(static_cast<double>(k));
        std::vector<std::pair<double, double>> found;
        for (const CurveFall& fall : FindFalls(x, each.y, CORNER_TYP, 0.5))
            found.emplace_back(fall.from, fall.to);
        EXPECT_EQ(found, each.falls) << each.label;
    }
}

GTEST_TEST(ViewFindings, BelongToTheModelThatTheyName)
{
    ModelIndex index;
    index.AddModel("a", 10);
    index.AddModel("b", 20);
    index.AddSection(30);
    static const struct {
        unsigned long line;
        const char* text;
        size_t model;
    } cases[] = {
        {0, "Model 'b', typ: x", 1},
        {0, "Pin '1': [Pullup] of 'a' x", 0},
        {12, "bad number 'x'", 0},
        {20, "no name", 1},
        {30, "of a later section", ModelIndex::None},
        {9, "of an earlier one", ModelIndex::None},
        {0, "open 'a", ModelIndex::None},
        {0, "a b", ModelIndex::None},
    };
    for (const auto& each : cases)
        EXPECT_EQ(index.Find({Severity::Error, 1, 1, "", each.line, each.text}), each.model)
            << each.text;
    EXPECT_EQ(CornerOf("Model 'm, max: x', min: falls"), CORNER_MIN);
    EXPECT_EQ(CornerOf("[Pullup] of 'm', maximum column: falls"), CORNER_MAX);
    EXPECT_EQ(CornerOf("Model 'max': falls"), -1);
}

GTEST_TEST(ViewFindings, StandWithThePictureThatShowsThem)
{
    // The pulldown falls between 1 and 2 V, and the rising waveform ends 0.2 V too low.
    std::string model = Resistors + WaveformModel;
    model.replace(model.find("6.6 132m 132m 132m"), 18,
                  "1 40m 40m 40m\n2 20m 20m 20m\n6.6 132m 132m 132m");
    model.replace(model.find("3n 2.2 2.0 2.4"), 14, "3n 2.0 2.0 2.4");
    const ReadText text(Component("r") + model);
    const std::vector<LoadLine> loads = LoadLines(text.Model());
    std::vector<ModelPlot> plots =
        ModelPlots(text.Model(), "m1", loads, StateViews(text.Model(), loads));
    const struct {
        unsigned number;
        const char* plot;
    } ties[] = {{4703, "m1-low"}, {2413, "m1-waveform-1"}};
    for (const auto& tie : ties) {
        const size_t plot = TieFinding(text.Find(tie.number), plots);
        ASSERT_LT(plot, plots.size()) << tie.number;
        EXPECT_EQ(plots[plot].plot.id, tie.plot);
        EXPECT_NE(plots[plot].plot.caption.find(std::to_string(tie.number)), std::string::npos);
    }
    const LinePlot& low = plots[0].plot;
    ASSERT_EQ(low.bands.size(), 1U);  // the same in all corners
    EXPECT_EQ(low.bands[0].label, "falls: 4703");
    EXPECT_NEAR(low.bands[0].from, 1, Rounding);
    EXPECT_NEAR(low.bands[0].to, 2, Rounding);
    EXPECT_EQ(TieFinding({Severity::Note, 1, 1, "", 0, "Model 'low state' x"}, plots),
              plots.size());
}

GTEST_TEST(ViewPage, ShowsWhatIsAskedFor)
{
    std::string models;
    for (const char* name : {"a<script>", "b", "c", "d"}) {
        std::string model = Resistors;
        models += model.replace(8, 1, name);
    }
    const ReadText text(Component("a<script>") + models);
    const std::string all = ViewPage(text.root, text.report, {"t.ibs", "", ""});
    EXPECT_NE(all.find("<details class=\"fold\" id=\"m4\">"), std::string::npos);
    EXPECT_NE(all.find("a&lt;script&gt;"), std::string::npos);
    EXPECT_EQ(all.find("a<script>"), std::string::npos);
    EXPECT_NE(all.find("id=\"m1-low\""), std::string::npos);

    const std::string one = ViewPage(text.root, text.report, {"t.ibs", "c", ""});
    EXPECT_EQ(one.find("class=\"fold\""), std::string::npos);
    EXPECT_NE(one.find("id=\"m3-low\""), std::string::npos);
    EXPECT_EQ(one.find("id=\"m1-low\""), std::string::npos);
    EXPECT_THROW(ViewPage(text.root, text.report, {"t.ibs", "e", ""}), InputError);
}

GTEST_TEST(ViewCommand, ExitCodesAndOutput)
{
    const TempDir folder;
    const std::string head = "[IBIS Ver] 4.2\n[File Name] t.ibs\n[File Rev] 1\n";
    const std::string good =
        folder.Write("t.ibs", head + Component("r") + Resistors + WaveformModel + "[End]\n");
    const std::string later =
        folder.Write("later.ibs", "[IBIS Ver] 7.0\n[File Name] later.ibs\n[File Rev] 1\n" +
                                      Component("r") + Resistors + "[End]\n");
    const std::string empty = folder.Write("empty.ibs", "");
    const std::string none = folder.Write("none.ibs", head + "[End]\n");
    const struct {
        std::string arguments;
        int exitCode;
        std::string said;
    } cases[] = {
        {good, 0, folder.Path("page.html") + "\n"},
        {good + " --model r", 0, ""},
        {good + " --model q", 2, "has no model q"},
        {later, 0, "declares version 7.0"},
        {none, 0, ""},
        {empty, 2, "quell: " + empty},
        {folder.Path("gone.ibs"), 2, "no such file"},
        {folder.Write("x.txt", ""), 2, "is no .ibs file"},
    };
    for (const auto& each : cases) {
        std::filesystem::remove(folder.Path("page.html"));
        const CommandResult result =
            RunQuell("view " + each.arguments + " -o " + folder.Path("page.html"));
        EXPECT_EQ(result.exitCode, each.exitCode) << each.arguments << result.err;
        EXPECT_NE((result.out + result.err).find(each.said), std::string::npos)
            << each.arguments << result.out << result.err;
        EXPECT_EQ(std::filesystem::exists(folder.Path("page.html")), each.exitCode == 0);
    }
    const CommandResult printed = RunQuell("view " + good + " -o -");
    EXPECT_TRUE(printed.out.starts_with("<!DOCTYPE html>")) << printed.err;
}

}  // namespace
}  // namespace quell
