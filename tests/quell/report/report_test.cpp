// The pictures and pages of reports.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>

#include "quell/base/errors.h"
#include "quell/base/files.h"
#include "quell/report/axis.h"
#include "quell/report/markup.h"
#include "quell/report/page.h"
#include "quell/report/plot.h"
#include "quell/report/thin.h"
#include "tests/quell/command.h"
#include "tests/support/TempDir.h"

using namespace quell;

namespace {

const double None = std::nan("");

std::string TickTexts(const AxisLayout& layout)
{
    std::string texts;
    for (const Tick& tick : layout.ticks)
        texts += (texts.empty() ? "" : " ") + tick.text;
    return texts;
}

size_t Count(const std::string& text, const std::string& part)
{
    size_t count = 0;
    for (size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1))
        ++count;
    return count;
}

LinePlot PlotOf(const std::vector<double>& x, const std::vector<double>& y)
{
    LinePlot plot;
    plot.id = "p";
    plot.title = "P";
    plot.series.push_back({"curve", x, y, 0, Stroke::Solid});
    return plot;
}

// The d attribute of the curve.
std::string CurveOf(const LinePlot& plot)
{
    const std::string svg = PlotSvg(plot, SvgUse::InPage);
    const size_t clip = svg.find("<g clip-path");
    const size_t begin = svg.find(" d=\"", clip);
    if (begin == std::string::npos || begin > svg.find("</g>", clip)) return "";
    return svg.substr(begin + 4, svg.find('"', begin + 4) - begin - 4);
}

}  // namespace

GTEST_TEST(Report, TicksAreRoundNumbersInEngineeringUnits)
{
    const struct {
        Axis axis;
        double low, high;
        const char* title;
        const char* ticks;
    } rows[] = {
        {{"t", "s", Scale::Linear, {}, {}}, 0, 3.1e-9, "t, ns", "0.0 0.5 1.0 1.5 2.0 2.5 3.0"},
        {{"t", "s", Scale::Linear, {}, {}}, -2e-10, 4e-10, "t, ps", "-200 -100 0 100 200 300 400"},
        {{"h", "V/s", Scale::Linear, {}, {}}, 0, 8.3e9, "h, GV/s", "0 2 4 6 8"},
        {{"a", "dB", Scale::Linear, {}, {}}, -0.04, 0, "a, dB", "-0.04 -0.03 -0.02 -0.01 0.00"},
        {{"n", "", Scale::Linear, {}, {}}, 1e4, 2e4, "n", "10000 12000 14000 16000 18000 20000"},
        {{"flat", "V", Scale::Linear, {}, {}}, 1, 1, "flat, V", "0.90 0.95 1.00 1.05 1.10"},
        {{"f", "Hz", Scale::Log, {}, {}}, 1e7, 4e10, "f", "10 MHz 100 MHz 1 GHz 10 GHz"},
        {{"f", "Hz", Scale::Log, {}, {}}, 1e9, 6e9, "f", "1 GHz 2 GHz 5 GHz"},
        {{"q", "", Scale::Log, {}, {}}, 1e-18, 1, "q", "1e-16 1e-12 1e-08 0.0001 1"},
    };
    for (const auto& row : rows) {
        const AxisLayout layout = LayOutAxis(row.axis, {row.low, row.high}, 6, false);
        EXPECT_EQ(row.title, layout.title);
        EXPECT_EQ(row.ticks, TickTexts(layout)) << row.title;
    }
}

// Whatever a model leaves behind, an axis has an end and labels of reasonable length.
GTEST_TEST(Report, AxesOfHostileRangesStayFinite)
{
    const double ends[] = {0, 1, -1, 1e-320, 1e299, -1e299, HUGE_VAL, -HUGE_VAL, None, 1e308};
    for (const double low : ends)
        for (const double high : ends)
            for (const Scale scale : {Scale::Linear, Scale::Log}) {
                const AxisLayout layout =
                    LayOutAxis({"x", "V", scale, {}, {}}, {low, high}, 6, true);
                EXPECT_LT(layout.low, layout.high) << low << " " << high;
                EXPECT_LE(layout.ticks.size(), 40u) << low << " " << high;
                for (const Tick& tick : layout.ticks)
                    EXPECT_LE(tick.text.size(), 16u) << tick.text;
            }
}

GTEST_TEST(Report, TextOfOthersIsEscapedEverywhere)
{
    EXPECT_EQ("&lt;a href=&quot;x&quot;&gt;&amp;&#39;", Escaped("<a href=\"x\">&'"));
    EXPECT_EQ("a\n\t\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD", Escaped("a\n\t\x01\x7f\xff"));
    EXPECT_EQ("µ", Escaped("µ"));
    EXPECT_EQ("\"\\u003c/script>\"", ScriptJson("</script>"));

    const std::string evil = "</script><script>x</script>\"'&";
    LinePlot plot = PlotOf({0, 1}, {0, 1});
    plot.title = plot.caption = plot.x.label = plot.y.unit = plot.series[0].name = evil;
    plot.marks.push_back({PlotMark::AtX, 0.5, evil});
    plot.bands.push_back({0.2, 0.4, evil, true});
    Page page(evil, evil);
    page.Section(evil, evil);
    page.Paragraph(evil);
    page.Facts({{evil, {evil, evil}, true}});
    page.Table({{evil}, {{{evil, evil, true}, {evil}}}, false});
    page.Plot(plot);
    const std::string html = page.Html({{"name", evil}});
    EXPECT_EQ(0u, Count(html, "<script>x"));
    // The plot's data, the result, the library and the page's own script.
    EXPECT_EQ(4u, Count(html, "</script>"));
}

// A gap is no line to zero: the pen is lifted, and a point between two gaps is a dot.
GTEST_TEST(Report, GapsInterruptTheCurve)
{
    const struct {
        const char* label;
        std::vector<double> y;
        size_t lines;  // begun
        size_t dots;
    } rows[] = {
        {"whole", {0, 1, 0, 1, 0}, 1, 0},
        {"gap inside", {0, 1, None, 1, 0}, 2, 0},
        {"wide gap", {0, None, None, None, 1}, 2, 2},
        {"gaps at the ends", {None, 1, 0, 1, None}, 1, 0},
        {"a point alone", {None, None, 1, None, None}, 1, 1},
        {"infinite", {0, 1, HUGE_VAL, 1, 0}, 2, 0},
        {"nothing", {None, None, None, None, None}, 0, 0},
    };
    for (const auto& row : rows) {
        const std::string curve = CurveOf(PlotOf({0, 1, 2, 3, 4}, row.y));
        EXPECT_EQ(row.lines, Count(curve, "M")) << row.label << ": " << curve;
        EXPECT_EQ(row.dots, Count(curve, "h0")) << row.label << ": " << curve;
        EXPECT_EQ(0u, Count(curve, "nan")) << row.label;
    }
    EXPECT_EQ("gap", PlotJson(PlotOf({0, 1, 2}, {0, None, 1}))["columns"][1][1]);
    LinePlot log = PlotOf({0, 1, 2}, {1, 0, 10});
    log.y.scale = Scale::Log;
    EXPECT_EQ(2u, Count(CurveOf(log), "M"));
}

// Curves of different points share rows; what a curve does not have at an x is null.
GTEST_TEST(Report, DataOfCurvesWithDifferentPoints)
{
    LinePlot plot = PlotOf({0, 1, 2}, {0, 5, 1});
    plot.series.push_back({"other", {0.5, 1, 1}, {7, 8, 9}, 1, Stroke::Points});
    const nlohmann::json columns = PlotJson(plot)["columns"];
    EXPECT_EQ(nlohmann::json::parse("[[0,0.5,1,1,2],[0,null,5,null,1],[null,7,8,9,null]]"),
              columns);
}

GTEST_TEST(Report, ThinnedCurvesStayWithinTheTolerance)
{
    std::vector<double> x, y;
    for (int i = 0; i < 4000; ++i) {
        x.push_back(i);
        y.push_back(std::exp(-i / 300.0) * std::sin(i / 40.0));
    }
    const double tolerance = 1e-3;
    const std::vector<size_t> kept = VisiblePoints(x, y, tolerance, 10000);
    EXPECT_LT(kept.size(), 400u);
    ASSERT_EQ(0u, kept.front());
    ASSERT_EQ(3999u, kept.back());
    for (size_t k = 1; k < kept.size(); ++k)
        for (size_t i = kept[k - 1]; i <= kept[k]; ++i) {
            const double t = (x[i] - x[kept[k - 1]]) / (x[kept[k]] - x[kept[k - 1]]);
            const double line = y[kept[k - 1]] + t * (y[kept[k]] - y[kept[k - 1]]);
            ASSERT_NEAR(line, y[i], tolerance * 1.001) << i;
        }

    // A single high sample and a gap survive any thinning.
    std::vector<double> noise(100000), times(noise.size());
    for (size_t i = 0; i < noise.size(); ++i) {
        times[i] = static_cast<double>(i);
        noise[i] = static_cast<double>(i * 7919 % 1000);
    }
    noise[54321] = 1e6;
    noise[777] = None;
    const std::vector<size_t> few = VisiblePoints(times, noise, 0, 1000);
    EXPECT_LE(few.size(), 1503u);
    EXPECT_NE(few.end(), std::find(few.begin(), few.end(), 54321u));
    EXPECT_NE(few.end(), std::find(few.begin(), few.end(), 777u));
}

// Noise thins out least; still, seven plots of a link with two aggressors must fit on a page.
GTEST_TEST(Report, PlotsOfNoiseStaySmall)
{
    LinePlot plot;
    for (int k = 0; k < 4; ++k) {
        PlotSeries& series = plot.series.emplace_back();
        for (int n = 0; n < 4000; ++n) {
            series.x.push_back(n * 12.5e-12);
            series.y.push_back(((n + k) * 7919 % 4001 - 2000) * 1e5);
        }
    }
    EXPECT_LT(ScriptJson(PlotJson(plot)).size() + PlotSvg(plot, SvgUse::InPage).size(), 130000u);
}

GTEST_TEST(Report, FilesAreWholeOrNotThere)
{
    const TempDir folder;
    const std::string path = folder.Path("page.html");
    WriteWholeFile(path, "one");
    WriteWholeFile(path, "two");
    EXPECT_EQ("two", ReadFile(path));
    std::filesystem::create_symlink(path, folder.Path("link"));
    WriteWholeFile(folder.Path("link"), "three");
    EXPECT_EQ("three", ReadFile(path));
    EXPECT_TRUE(std::filesystem::is_symlink(folder.Path("link")));
    EXPECT_THROW(WriteWholeFile(folder.Path("."), "x"), InputError);
    EXPECT_THROW(WriteWholeFile(folder.Path("no/such/file"), "x"), InputError);
    EXPECT_THROW(WriteWholeFile("/dev/full", "x"), InputError);
    size_t files = 0;
    for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(folder.Path(".")))
        ++files;
    EXPECT_EQ(2u, files);  // no half file beside them
    // By another program.
    EXPECT_EQ("3fc4ccfe745870e2c0d99f71f30ff0656c8dedd41cc1d7d3d376b0dbe685e2f3",
              Sha256OfFile(folder.Write("sum", "two")));
}

GTEST_TEST(Report, CommandsWriteReportsOrSayWhyNot)
{
    const TempDir folder;
    const std::string page = folder.Path("page.html");
    const std::string run = "run loss:8dB@2.5GHz --set de_emphasis=3.5 ";
    ASSERT_EQ(0, RunQuell(run + "--html " + page + " --svg " + folder.Path("svg")).exitCode);
    EXPECT_LT(ReadFile(page).size(), 1u << 20);
    for (const char* name : {"impulse-response", "step-response", "pulse-response",
                             "frequency-response", "bathtub", "eye"})
        EXPECT_EQ(1u, Count(ReadFile(folder.Path("svg/" + std::string(name) + ".svg")), "</svg>"))
            << name;
    const struct {
        std::string arguments;
        std::string error;
    } rows[] = {
        {run + "--html /no/such/page.html",
         "quell: /no/such/page.html: cannot be written: No such file or directory\n"},
        {"sweep loss:8dB@2.5GHz --set de_emphasis=3 --html /dev/full",
         "quell: /dev/full: cannot be written: No space left on device\n"},
    };
    for (const auto& row : rows) {
        const CommandResult result = RunQuell(row.arguments);
        EXPECT_EQ(2, result.exitCode);
        EXPECT_EQ(row.error, result.err);
    }
    // A report of a model that fails shows what there is.
    const CommandResult failed = RunQuell("run loss:8dB@2.5GHz --model " QUELL_BINARY_DIR
                                          "/tests/models/test_model.so --set do=fail --html " +
                                          page);
    EXPECT_EQ(3, failed.exitCode);
    EXPECT_EQ(1u, Count(ReadFile(page), "The model reports failure"));
    const CommandResult noNumbers =
        RunQuell("run loss:8dB@2.5GHz --model " QUELL_BINARY_DIR
                 "/tests/models/test_model.so --set do=no_numbers --html " +
                 page);
    EXPECT_EQ(0, noNumbers.exitCode) << noNumbers.err;
    // A parameter file without a list of the model's parameters allows any.
    const std::string open = " --ami " + folder.Write("open.ami", "(Tx (Reserved_Parameters))\n");
    EXPECT_EQ(
        0,
        RunQuell("sweep loss:8dB@2.5GHz --set a=x,y --set b=1:3:1 --html " + page + open).exitCode);
    EXPECT_EQ(6u, Count(ReadFile(page), "<tr><th>a="));
}
