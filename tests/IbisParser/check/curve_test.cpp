// Piecewise linear curves and their operating points against closed forms.
#include "IbisParser/curve.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <string>
#include <vector>

#include "IbisParser/acdc.h"
#include "IbisParser/cmn.h"
#include "IbisParser/keyword.h"
#include "IbisParser/mdl.h"
#include "IbisParser/wvfrm.h"
#include "tests/support/LogCapture.h"

namespace {

struct FreeTable {
    void operator()(Vitbl* table) const { VITBL_Free(table); }
};
using Table = std::unique_ptr<Vitbl, FreeTable>;

// Reads a table as a file would give it; the log stays silent about these.
Table MakeTable(const char* name, const std::vector<const char*>& lines)
{
    const LogCapture log;
    Vitbl* table = nullptr;
    VITBL_New(&table, name, "m");
    for (const char* line : lines)
        VITBL_ReceiveLine(table, line);
    VITBL_Fini(table);
    return Table(table);
}

// A curve by its points, straight on beyond them.
class Points {
public:
    explicit Points(std::vector<CurvePoint> points) : m_Points(std::move(points))
    {
        const std::size_t n = m_Points.size();
        const auto slope = [&](std::size_t k) {
            return (m_Points[k + 1].i - m_Points[k].i) / (m_Points[k + 1].v - m_Points[k].v);
        };
        curve = {m_Points.data(), static_cast<int>(n), slope(0), slope(n - 2)};
    }
    Curve curve;

private:
    std::vector<CurvePoint> m_Points;
};

// Rounding of a handful of operations on values near 1.
constexpr double kRounding = 1e-14;

const Points kResistor({{-2, -40e-3}, {4, 80e-3}});                     // 50 ohm
const Points kDiode({{0, 0}, {0.6, 0}, {0.7, 10e-3}, {0.8, 50e-3}});    // 0.1 S, 0.4 S
const Points kClamps({{-2.7, -0.2}, {-0.7, 0}, {4.0, 0}, {6.0, 0.2}});  // 0.1 S outside
const Points kSource({{0, -0.1}, {2, -0.1}});                           // 100 mA
const Points kValley({{0, 0}, {1, 20e-3}, {2, 0}, {3, 30e-3}});         // falls from 1 to 2 V
const Points kRunaway({{0, 0}, {1, -0.1}});                             // -0.1 S
const Points kFalling({{0, 0.2}, {1, 0.1}});

GTEST_TEST(AcdcSolve, FindsTheOperatingPointOfTheClosedForm)
{
    static const struct {
        const char* label;
        const Points* curve;
        double r, vf, near;
        double v;
        int count, outside;
    } cases[] = {
        {"divider of 50 and 50 ohm", &kResistor, 50, 2, 0, 1.0, 1, 0},
        {"divider of 50 and 150 ohm", &kResistor, 150, 2, 0, 0.5, 1, 0},
        {"load at a breakpoint", &kResistor, 50, 4, 0, 2.0, 1, 0},
        {"load to zero", &kResistor, 50, 0, 1, 0.0, 1, 0},
        {"load beyond the table, solution inside", &kResistor, 50, 6, 0, 3.0, 1, 0},
        {"diode, first slope", &kDiode, 50, 1.0, 0, 0.08 / 0.12, 1, 0},
        {"diode, second slope", &kDiode, 50, 1.5, 0, 0.30 / 0.42, 1, 0},
        {"diode, at its knee", &kDiode, 50, 1.2, 0, 0.7, 1, 0},
        {"lower clamp", &kClamps, 10, -3, 0, -1.85, 1, 0},
        {"upper clamp", &kClamps, 10, 6.3, 0, 5.15, 1, 0},
        {"between the clamps", &kClamps, 10, 1.0, 0, 1.0, 1, 0},
        {"beyond the table", &kSource, 50, 1.0, 0, 6.0, 1, 1},
        {"three solutions, lowest", &kValley, 100, 2.5, 0.9, 2.5 / 3, 3, 0},
        {"three solutions, middle", &kValley, 100, 2.5, 1.4, 1.5, 3, 0},
        {"three solutions, highest", &kValley, 100, 2.5, 9, 2.125, 3, 0},
        {"no load at all", &kDiode, HUGE_VAL, 0.9, 0.9, 0.6, 2, 0},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.label);
        AcdcPoint point;
        ASSERT_EQ(1, ACDC_Solve(&each.curve->curve, each.r, each.vf, each.near, &point));
        EXPECT_NEAR(each.v, point.v, kRounding * std::fmax(1.0, std::fabs(each.v)));
        EXPECT_EQ(each.count, point.count);
        EXPECT_EQ(each.outside, point.outside);
    }
}

GTEST_TEST(AcdcSolve, FindsNothingWhereTheLoadLineNeverMeetsTheCurve)
{
    AcdcPoint point;
    EXPECT_EQ(0, ACDC_Solve(&kRunaway.curve, 100, 5, 0, &point));
    EXPECT_EQ(0, ACDC_Solve(&kFalling.curve, 50, -1, 0, &point));
    const Curve open = {nullptr, 0, 0.0, 0.0};
    ASSERT_EQ(1, ACDC_Solve(&open, 50, 1.25, 0, &point));
    EXPECT_EQ(1.25, point.v) << "an open pin follows its load";
}

GTEST_TEST(CurvePrepare, TakesTheNumbersInAnyOrder)
{
    static const struct {
        const char* label;
        std::vector<const char*> lines;
    } cases[] = {
        {"ascending", {"-1 -2 NA 1", "0 0 NA 1", "2 8 NA 1"}},
        {"descending", {"2 8 NA 1", "0 0 NA 1", "-1 -2 NA 1"}},
        {"mixed", {"0 0 NA 1", "2 8 NA 1", "-1 -2 NA 1"}},
        {"NA inside", {"-1 -2 NA 1", "0 0 NA 1", "1 NA NA 1", "2 8 NA 1"}},
        {"one voltage twice", {"-1 -2 NA 1", "0 -1 NA 1", "0 1 NA 1", "2 8 NA 1"}},
        {"not finite", {"-1 -2 NA 1", "0 0 NA 1", "1 inf NA 1", "2 8 NA 1", "inf 9 NA 1"}},
    };
    static const struct {
        double x, current;
        int outside;
    } values[] = {{-2, -4, 1}, {-1, -2, 0}, {-0.5, -1, 0}, {0, 0, 0},
                  {1, 4, 0},   {2, 8, 0},   {3, 12, 1}};
    for (const auto& each : cases) {
        const Table table = MakeTable("Pulldown", each.lines);
        for (const auto& value : values) {
            SCOPED_TRACE(std::string(each.label) + " at " + std::to_string(value.x));
            double current = 99;
            int outside = 9;
            ASSERT_EQ(1, CURVE_Eval(table.get(), CORNER_TYP, value.x, 0, &current, &outside));
            EXPECT_DOUBLE_EQ(value.current, current);
            EXPECT_EQ(value.outside, outside);
            EXPECT_EQ(0, CURVE_Eval(table.get(), CORNER_MIN, value.x, 0, &current, nullptr));
        }
        double current = 0;
        ASSERT_EQ(1, CURVE_Eval(table.get(), CORNER_TYP, 3, 1, &current, nullptr));
        EXPECT_EQ(8, current) << "held above the last voltage";
        ASSERT_EQ(1, CURVE_Eval(table.get(), CORNER_TYP, -2, 1, &current, nullptr));
        EXPECT_EQ(-4, current) << "never held below the first";
    }
}

// A model of 2 V with a clamp supply of 3 V and a raised ground of the minimum corner.
class Buffer {
public:
    Buffer()
    {
        model.type = MDL_3_STATE;
        model.voltageRange = &m_Range;
        model.powerClampRef = &m_PowerClamp;
        model.pulldownRef = &m_Pulldown;
        model.pulldown = m_Low.get();
        model.pullup = m_High.get();
        model.gndClamp = m_Gnd.get();
        model.powerClamp = m_Power.get();
    }
    double Total(int state, int corner, double v, int hold = 0)
    {
        double current = NAN;
        return CURVE_Total(&model, state, corner, v, hold, &current) ? current : NAN;
    }
    Mdl model = {};

private:
    RngRange m_Range = {2.0, CELL_NUMBER, 1.5, CELL_NUMBER, 0.0, CELL_NA};
    RngRange m_PowerClamp = {3.0, CELL_NUMBER, 3.0, CELL_NUMBER, 3.0, CELL_NUMBER};
    RngRange m_Pulldown = {0.0, CELL_NUMBER, 0.25, CELL_NUMBER, 0.0, CELL_NUMBER};
    // In ampere: 2 v, -4 (Vpu - v), 8 (v + 1) below -1, -16 (4 - v) above 4.
    Table m_Low = MakeTable("Pulldown", {"-4 -8 -8 -8", "8 16 16 16"});
    Table m_High = MakeTable("Pullup", {"-4 16 16 16", "8 -32 -32 -32"});
    Table m_Gnd = MakeTable("GND Clamp", {"-3 -16 -16 NA", "-1 0 0 NA", "0 0 0 NA"});
    Table m_Power = MakeTable("POWER Clamp", {"-3 32 32 NA", "-1 0 0 NA"});
};

GTEST_TEST(CurveTotal, AddsTheTablesThatConductAtTheirOwnReferences)
{
    Buffer buffer;
    static const struct {
        const char* label;
        int state, corner;
        double v, free, held;
    } cases[] = {
        // POWER clamp: goes on as -16 (x + 1) above x = -1, that is below v = 4.
        {"low", CURVE_LOW, CORNER_TYP, 1, 2 - 48, 2},
        {"high", CURVE_HIGH, CORNER_TYP, 1, -4 - 48, -4},
        {"off", CURVE_OFF, CORNER_TYP, 1, -48, 0},
        {"below ground", CURVE_OFF, CORNER_TYP, -2, -8 - 96, -8},
        {"above the clamp", CURVE_LOW, CORNER_TYP, 5, 10 + 16, 10 + 16},
        {"raised ground", CURVE_LOW, CORNER_MIN, 1, 1.5 - 48, 1.5},
        {"lower supply", CURVE_HIGH, CORNER_MIN, 1, -2 - 48, -2},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.label);
        EXPECT_NEAR(each.free, buffer.Total(each.state, each.corner, each.v, 0), 1e-13);
        EXPECT_NEAR(each.held, buffer.Total(each.state, each.corner, each.v, 1), 1e-13);
    }
    EXPECT_TRUE(std::isnan(buffer.Total(CURVE_LOW, CORNER_MAX, 1))) << "the clamps lack the corner";
    buffer.model.gndClamp = nullptr;
    buffer.model.powerClamp = nullptr;
    EXPECT_EQ(2, buffer.Total(CURVE_LOW, CORNER_MAX, 1));
    EXPECT_EQ(0, buffer.Total(CURVE_OFF, CORNER_TYP, 1)) << "nothing conducts";
    buffer.model.type = MDL_OUTPUT_ECL;
    EXPECT_EQ(2, buffer.Total(CURVE_LOW, CORNER_TYP, 1)) << "x = 2 V - v in both tables";
    EXPECT_EQ(-2, buffer.Total(CURVE_LOW, CORNER_TYP, 3));
    buffer.model.voltageRange = nullptr;
    EXPECT_TRUE(std::isnan(buffer.Total(CURVE_HIGH, CORNER_TYP, 1))) << "no reference";
}

GTEST_TEST(AcdcEndPoint, StandsAtTheFixture)
{
    Buffer buffer;
    Wvfrm* waveform = nullptr;
    Wvfrm* list = nullptr;
    WVFRM_New(&list, KEY_RISING_WAVEFORM, "m", &waveform);
    for (const char* line :
         {"R_fixture = 0.5", "V_fixture = 0", "R_dut = 0.5", "0 0 NA NA", "1n 0.8 NA NA"})
        WVFRM_ReceiveLine(waveform, line);
    {
        const LogCapture log;
        WVFRM_Fini(waveform);
    }
    double volts = NAN;
    // -4 (2 - v) + v / 1 = 0 at the pin, with the clamps held; the fixture sees half of it.
    ASSERT_EQ(1, ACDC_EndPoint(&buffer.model, waveform, CORNER_TYP, 1, &volts));
    EXPECT_NEAR(0.8, volts, kRounding);
    ASSERT_EQ(1, ACDC_EndPoint(&buffer.model, waveform, CORNER_TYP, 0, &volts));
    EXPECT_NEAR(0.0, volts, kRounding);
    EXPECT_EQ(0, ACDC_EndPoint(&buffer.model, waveform, CORNER_MIN, 1, &volts));
    WVFRM_FreeList(waveform);
}

GTEST_TEST(WaveformEdge, IsTimedByLinearInterpolation)
{
    static const struct {
        const char* label;
        std::vector<const char*> lines;
        double seconds;  // 0: there is no edge
    } cases[] = {
        {"straight", {"0 0 NA NA", "1 2 NA NA"}, 0.6},
        {"falling, levels", {"0 5 NA NA", "2 5 NA NA", "4 1 NA NA", "9 1 NA NA"}, 1.2},
        {"two slopes", {"0 0 NA NA", "1 1 NA NA", "4 2 NA NA"}, (1 + 0.6 * 3) - 0.4},
        {"NA inside", {"0 0 NA NA", "0.5 NA NA NA", "1 2 NA NA"}, 0.6},
        {"overshoot counts once", {"0 0 NA NA", "1 3 NA NA", "2 1 NA NA", "3 2 NA NA"}, 0.4},
        {"flat", {"0 1 NA NA", "1 1 NA NA"}, 0},
        {"step at one time", {"0 0 NA NA", "1 0 NA NA", "1 2 NA NA", "2 2 NA NA"}, 0},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.label);
        const LogCapture log;
        Wvfrm* list = nullptr;
        Wvfrm* waveform = nullptr;
        WVFRM_New(&list, KEY_RISING_WAVEFORM, "m", &waveform);
        for (const char* line : each.lines)
            WVFRM_ReceiveLine(waveform, line);
        double seconds = 0;
        EXPECT_EQ(each.seconds > 0, WVFRM_EdgeTime(waveform, CORNER_TYP, &seconds) == 1);
        EXPECT_NEAR(each.seconds, seconds, kRounding);
        WVFRM_FreeList(list);
    }
}

}  // namespace
