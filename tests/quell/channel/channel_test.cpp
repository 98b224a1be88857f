#include "quell/channel/channel.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <numbers>

#include "quell/base/errors.h"
#include "quell/base/numbers.h"
#include "quell/signal/pulse.h"
#include "tests/quell/command.h"
#include "tests/support/TempDir.h"

namespace quell {
namespace {

// A 4-port file from 50 MHz to 20 GHz: a loss line from each odd port to the next even one.
std::string LineFile(double through, double firstPointTurn)
{
    const LossLine line = {6, 2.5e9};
    std::string text = "# Hz S RI R 50\n";
    for (int k = 1; k <= 400; ++k) {
        const double f = 50e6 * k;
        std::complex<double> gain = through * line.Gain(f);
        if (k == 1) gain *= std::polar(1.0, firstPointTurn);
        text += ExactText(f);
        for (int out = 1; out <= 4; ++out) {
            for (int in = 1; in <= 4; ++in) {
                const bool path = (out + 1) / 2 == (in + 1) / 2 && out != in;
                const std::complex<double> s = path ? gain : 0;
                text += " " + ExactText(s.real()) + " " + ExactText(s.imag());
            }
        }
        text += '\n';
    }
    return text;
}

std::string Warnings(const ImpulseMatrix& matrix)
{
    std::string text;
    for (const std::string& warning : matrix.warnings)
        text += warning + "\n";
    return text;
}

std::string Error(const std::string& victim, const std::vector<std::string>& aggressors,
                  const ChannelOptions& options = {})
{
    try {
        BuildImpulseMatrix(victim, aggressors, options);
    } catch (const InputError& error) {
        return error.what();
    }
    return "built";
}

GTEST_TEST(Channel, FileOfALossLineAgreesWithTheLine)
{
    const TempDir scratch;
    const std::string path = scratch.Write("line.s4p", LineFile(1, 0));
    const ImpulseMatrix file = BuildImpulseMatrix(path, {}, {});
    const ImpulseMatrix line = BuildImpulseMatrix("loss:6dB@2.5GHz", {}, {});
    EXPECT_EQ(Warnings(file), "");
    EXPECT_NEAR(*file.columns[0].loss, 6, 1e-3);
    EXPECT_EQ(file.columns[0].ports, (PortOrder{1, 3, 2, 4}));
    const Treatment& treatment = file.columns[0].treatment;
    EXPECT_NEAR(DcGain(file.columns[0].impulse, file.grid.Interval()), treatment.dc, 1e-9);
    EXPECT_NEAR(DcGain(line.columns[0].impulse, line.grid.Interval()), 1, 1e-12);
    EXPECT_NEAR(treatment.dc, 1, 0.01);
    EXPECT_EQ(treatment.dcFrom, "the lowest octave over sqrt(f)");
    EXPECT_EQ(treatment.band->low, 50e6);
    EXPECT_EQ(treatment.band->high, 20e9);
    EXPECT_EQ(treatment.continuedTo, 40e9);
    // The file ends at 20 GHz; what lies above is continued.
    for (size_t n = 80; n < 400; ++n)
        EXPECT_NEAR(file.columns[0].impulse[n], line.columns[0].impulse[n], 1e9) << n;
}

GTEST_TEST(Channel, ColumnsHaveOneLengthAndEndInZeros)
{
    const TempDir scratch;
    const std::string table = scratch.Write("two.csv", "time,a,b\n0,8e10,0\n12.5e-12,0,8e10\n");
    const ImpulseMatrix matrix = BuildImpulseMatrix("loss:3dB@2.5GHz", {table}, {});
    ASSERT_EQ(matrix.columns.size(), 3u);
    EXPECT_EQ(matrix.columns[0].name, "victim");
    EXPECT_EQ(matrix.columns[2].name, "aggressor 2");
    EXPECT_EQ(matrix.columns[2].source, table + ", b");
    for (const Column& column : matrix.columns) {
        ASSERT_EQ(column.impulse.size(), 4096u + 32);
        for (size_t n = 4096; n < 4128; ++n)
            EXPECT_EQ(column.impulse[n], 0);
    }
    EXPECT_EQ(matrix.columns[1].impulse[0], 8e10);
    EXPECT_EQ(matrix.columns[2].impulse[1], 8e10);
}

GTEST_TEST(Channel, ATableMakesTheGridUnlessAnotherIsAskedFor)
{
    const TempDir scratch;
    std::string text = "0,0\n1e-11,1e11\n2e-11,0\n3e-11,0\n";
    const std::string table = scratch.Write("t.csv", text);
    ChannelOptions options;
    ImpulseMatrix matrix = BuildImpulseMatrix(table, {}, options);
    EXPECT_EQ(matrix.grid.samplesPerBit, 20);
    EXPECT_EQ(matrix.columns[0].impulse[1], 1e11);

    options.samplesPerBit = 10;
    matrix = BuildImpulseMatrix(table, {}, options);
    EXPECT_EQ(matrix.columns[0].impulse[0], 5e10);

    options.samplesPerBit.reset();
    options.bitRate = 4.4e9;
    matrix = BuildImpulseMatrix(table, {}, options);
    EXPECT_EQ(matrix.grid.samplesPerBit, 23);
    EXPECT_NE(Warnings(matrix).find("22.7273 samples per bit are resampled to 23\n"),
              std::string::npos);
    EXPECT_NEAR(DcGain(matrix.columns[0].impulse, matrix.grid.Interval()), 1, 1e-12);
}

GTEST_TEST(Channel, UnitsAndResponseKindsGiveOneImpulse)
{
    const TempDir scratch;
    ChannelOptions options;
    options.sampleInterval = 12.5e-12;
    const std::string impulse = scratch.Write("h.csv", "0.25\n0.5\n0.25\n0\n");
    options.unit = ImpulseUnit::VoltPerSample;
    EXPECT_DOUBLE_EQ(BuildImpulseMatrix(impulse, {}, options).columns[0].impulse[1], 4e10);
    const std::string step = scratch.Write("s.csv", "0.25\n0.75\n1\n1\n");
    options.response = ResponseKind::Step;
    EXPECT_DOUBLE_EQ(BuildImpulseMatrix(step, {}, options).columns[0].impulse[1], 4e10);
}

GTEST_TEST(Channel, CrosstalkTakesTheVictimsPorts)
{
    const TempDir scratch;
    const std::string victim = scratch.Write("v.s4p", LineFile(1, 0));
    const std::string crosstalk = scratch.Write("x.s4p", LineFile(0.05, 0));
    ImpulseMatrix matrix = BuildImpulseMatrix(victim, {crosstalk}, {});
    EXPECT_EQ(matrix.columns[1].ports, (PortOrder{1, 3, 2, 4}));
    matrix = BuildImpulseMatrix(victim, {crosstalk + ":31,24"}, {});
    EXPECT_EQ(matrix.columns[1].ports, (PortOrder{3, 1, 2, 4}));

    const std::string no = ": no through path at 50 MHz; give the port order ";
    EXPECT_EQ(Error(crosstalk, {}), crosstalk + no + "with --ports 13,24");
    EXPECT_EQ(Error("loss:3dB@2.5GHz", {crosstalk}), crosstalk + no + "as " + crosstalk + ":13,24");
}

GTEST_TEST(Channel, AStrayLowestPointIsLeftOut)
{
    const TempDir scratch;
    const ImpulseMatrix good = BuildImpulseMatrix(scratch.Write("a.s4p", LineFile(1, 0)), {}, {});
    const ImpulseMatrix stray = BuildImpulseMatrix(scratch.Write("b.s4p", LineFile(1, 1)), {}, {});
    EXPECT_NE(Warnings(stray).find("degrees off its neighbours; this point is left out"),
              std::string::npos);
    for (size_t n = 0; n < 400; ++n)
        EXPECT_NEAR(stray.columns[0].impulse[n], good.columns[0].impulse[n], 2e8) << n;
}

GTEST_TEST(Channel, WhatWouldSpoilTheResultIsWarnedOf)
{
    const TempDir scratch;
    static const struct {
        const char* label;
        const char* table;
        double bitRate;
        const char* warning;
    } rows[] = {
        {"unit", "0,0\n12.5e-12,0.5\n25e-12,0.5\n37.5e-12,0\n", 5e9,
         "victim: the DC gain of this channel is 1.25e-11; expected about 1: is the unit "
         "V/sample?"},
        {"not settled", "0,0\n12.5e-12,8e10\n25e-12,1e10\n37.5e-12,1e10\n", 80e9,
         "victim: not settled: the last tenth of its 50 ps still holds 12 % of the pulse "
         "response's peak"},
        {"rising", "0,0\n12.5e-12,0\n25e-12,0\n37.5e-12,8e10\n", 80e9,
         "victim: the response is still rising at the end of its record; 50 ps may be shorter "
         "than the channel's delay"},
    };
    for (const auto& row : rows) {
        ChannelOptions options;
        options.bitRate = row.bitRate;
        const ImpulseMatrix matrix =
            BuildImpulseMatrix(scratch.Write("t.csv", row.table), {}, options);
        EXPECT_EQ(Warnings(matrix), std::string(row.warning) + "\n") << row.label;
    }
    ChannelOptions options;
    options.bitRate = 1e12;
    EXPECT_EQ(Warnings(BuildImpulseMatrix("loss:3dB@2.5GHz", {}, options)),
              "victim: the record of 256 ps is shorter than the channel's delay of 1 ns\n");
}

// A 2-port file of a response at these frequencies.
std::string TwoPortFile(const std::vector<double>& frequency,
                        const std::function<std::complex<double>(double)>& gain)
{
    std::string text = "# Hz S RI R 50\n";
    for (const double f : frequency) {
        const std::complex<double> s = gain(f);
        const std::string pair = ExactText(s.real()) + " " + ExactText(s.imag());
        text += ExactText(f) + " 0 0 " + pair + " " + pair + " 0 0\n";
    }
    return text;
}

std::vector<double> Frequencies(double first, double step, double last)
{
    std::vector<double> frequency;
    for (double f = first; f <= last; f += step)
        frequency.push_back(f);
    return frequency;
}

double HeightBefore(const ImpulseMatrix& matrix)
{
    const double samplesPerBit = matrix.grid.samplesPerBit;
    return AnalysePeakDistortion(
               PulseResponse(matrix.columns[0].impulse, matrix.grid.Interval(), samplesPerBit),
               samplesPerBit)
        .height;
}

GTEST_TEST(Channel, AShortLineKeepsItsGainAtEverySampling)
{
    const TempDir scratch;
    for (const double delay : {0.0, 1e-12, 14e-12, 300e-12}) {
        const std::string path =
            scratch.Write("short.s2p", TwoPortFile(Frequencies(0, 10e6, 40e9), [delay](double f) {
                              return 0.998 * std::exp(-0.02 * std::sqrt(f / 40e9)) *
                                     std::polar(1.0, -2 * std::numbers::pi * f * delay);
                          }));
        for (const double bitRate : {1e9, 2.5e9, 16e9}) {
            double lowest = INFINITY;
            double highest = 0;
            for (const double samplesPerBit : {8, 15, 16, 17, 128}) {
                ChannelOptions options;
                options.bitRate = bitRate;
                options.samplesPerBit = samplesPerBit;
                const ImpulseMatrix matrix = BuildImpulseMatrix(path, {}, options);
                const std::string label = ExactText(delay) + " s at " + ExactText(bitRate) + " x " +
                                          ExactText(samplesPerBit);
                EXPECT_NEAR(DcGain(matrix.columns[0].impulse, matrix.grid.Interval()), 0.998, 0.002)
                    << label;
                EXPECT_EQ(Warnings(matrix), "") << label;
                const double height = HeightBefore(matrix);
                EXPECT_LE(height, 0.998) << label;
                if (samplesPerBit < 15 || samplesPerBit > 17) continue;
                lowest = std::min(lowest, height);
                highest = std::max(highest, height);
            }
            EXPECT_LT(highest / lowest, 1.01) << delay << " s at " << bitRate;
        }
        const ImpulseMatrix matrix = BuildImpulseMatrix(path, {}, {});
        const double moved = -matrix.columns[0].treatment.delayRemoved / matrix.grid.Interval();
        EXPECT_NEAR(moved, 32 - std::floor(delay / matrix.grid.Interval()), 1.001) << delay;
        EXPECT_NEAR(moved, std::round(moved), 1e-9);
    }
}

GTEST_TEST(Channel, ACouplingCapacitorIsLeftOutUnlessItIsWanted)
{
    const TempDir scratch;
    const LossLine line = {8, 2.5e9};
    std::vector<double> decades;
    for (int k = 0; k < 40; ++k)
        decades.push_back(1e3 * std::pow(10, k / 10.0));
    const std::vector<double> even = Frequencies(10e6, 10e6, 20e9);
    std::vector<double> both = decades;
    both.insert(both.end(), even.begin() + 1, even.end());
    std::vector<double> zero = {0};
    zero.insert(zero.end(), even.begin(), even.end());
    const std::string uncoupled =
        scratch.Write("u.s2p", TwoPortFile(zero, [&](double f) { return line.Gain(f); }));
    const double expected = HeightBefore(BuildImpulseMatrix(uncoupled, {}, {}));

    static const struct {
        const char* label;
        const std::vector<double>& frequency;
        double corner;
        const char* warning;
    } rows[] = {
        {"swept from far below", both, 16e3, "AC-coupled, a high-pass at 16 kHz is left out: "},
        {"within the band", both, 3e6, "AC-coupled, a high-pass at 3.0"},
        {"below the band", even, 3e6, "AC-coupled, a high-pass at 2.98 MHz is left out: "},
        {"only the point at 0 Hz", zero, 1,
         "AC-coupled, a high-pass between 0 Hz and 10 MHz is left out: "},
    };
    for (const auto& row : rows) {
        const std::string path = scratch.Write("c.s2p", TwoPortFile(row.frequency, [&](double f) {
                                                   const std::complex<double> jf(0, f);
                                                   return line.Gain(f) * jf / (jf + row.corner);
                                               }));
        const ImpulseMatrix matrix = BuildImpulseMatrix(path, {}, {});
        EXPECT_NE(Warnings(matrix).find(row.warning), std::string::npos)
            << row.label << ": " << Warnings(matrix);
        EXPECT_EQ(matrix.warnings.size(), 1u) << row.label << ": " << Warnings(matrix);
        EXPECT_NEAR(DcGain(matrix.columns[0].impulse, matrix.grid.Interval()), 1, 5e-3)
            << row.label;
        // The extrapolation over sqrt(f) is straight where the line is not.
        EXPECT_NEAR(HeightBefore(matrix), expected, 5e-3) << row.label;

        ChannelOptions options;
        options.keepHighPass = true;
        const ImpulseMatrix kept = BuildImpulseMatrix(path, {}, options);
        EXPECT_NE(Warnings(kept).find("is kept: its baseline wander is in the result"),
                  std::string::npos)
            << row.label;
    }
    // A corner above a thousandth of the bit rate is the channel's own.
    const std::string path = scratch.Write("h.s2p", TwoPortFile(both, [&](double f) {
                                               const std::complex<double> jf(0, f);
                                               return line.Gain(f) * jf / (jf + 20e6);
                                           }));
    EXPECT_NE(Warnings(BuildImpulseMatrix(path, {}, {})).find("is kept: its baseline wander"),
              std::string::npos);
}

GTEST_TEST(Channel, WhatAFileDoesNotHoldIsTold)
{
    const TempDir scratch;
    const LossLine line = {8, 2.5e9};
    const auto file = [&](double last, double gain) {
        return scratch.Write("f.s2p", TwoPortFile(Frequencies(10e6, 10e6, last),
                                                  [&](double f) { return gain * line.Gain(f); }));
    };
    static const struct {
        double last, gain;
        const char* warning;
    } rows[] = {
        {4e9, 1,
         "victim: the file ends at 4 GHz, below the bit rate of 5 Gbit/s: what lies above is "
         "extrapolated from its last quarter\n"},
        {2e9, 1, "victim: half the bit rate, 2.5 GHz, lies outside the file's 10 MHz to 2 GHz\n"},
        {20e9, 0.4,
         "victim: ports 1->2 pass 0.399 at low frequency; expected 0.5 to 1: are these the right "
         "ports?\n"},
        {20e9, 1.2,
         ": |S12| is 1.132 at 10 MHz: a passive channel gives back no more than it "
         "gets\nvictim: ports 1->2 pass 1.13 "},
        {20e9, 1, ""},
    };
    for (const auto& row : rows) {
        const std::string warnings = Warnings(BuildImpulseMatrix(file(row.last, row.gain), {}, {}));
        if (*row.warning == 0)
            EXPECT_EQ(warnings, "");
        else
            EXPECT_NE(warnings.find(row.warning), std::string::npos) << warnings;
    }
}

GTEST_TEST(Channel, TablesOfSimulators)
{
    const TempDir scratch;
    ChannelOptions options;
    // A ramp of one bit over uneven steps, with an offset: one volt in all, 16 samples of 5 V/ns.
    options.response = ResponseKind::Step;
    ImpulseMatrix matrix = BuildImpulseMatrix(
        scratch.Write("s.csv", "time (ps),v\n0,0.25\n100,0.25\n101,0.255\n300,1.25\n900,1.25\n"),
        {}, options);
    EXPECT_EQ(Warnings(matrix),
              "victim: the step response begins at 0.25 V, which is taken for its offset\n"
              "victim: time steps of 1 ps to 600 ps are resampled to 12.5 ps\n");
    EXPECT_EQ(matrix.columns[0].impulse[8], 0);
    for (size_t n = 10; n <= 24; ++n)
        EXPECT_NEAR(matrix.columns[0].impulse[n], 5e9, 3e7) << n;
    EXPECT_NEAR(DcGain(matrix.columns[0].impulse, 12.5e-12), 1, 1e-12);

    // A triangle of 1 V x 300 ps as an impulse response in V/s, its top not on the grid.
    options.response = ResponseKind::Impulse;
    matrix = BuildImpulseMatrix(scratch.Write("h.csv", "t_ps,h\n0,0\n107,6e9\n300,0\n900,0\n"), {},
                                options);
    EXPECT_NEAR(DcGain(matrix.columns[0].impulse, 12.5e-12), 0.9, 1e-12);

    // One bit of 200 ps is no bit of 100 ps.
    std::string pulse = "time,p\n";
    for (int n = 0; n < 160; ++n)
        pulse += ExactText(n * 12.5e-12) + (n >= 40 && n < 56 ? ",0.5\n" : ",0\n");
    const std::string path = scratch.Write("p.csv", pulse);
    options.response = ResponseKind::Pulse;
    EXPECT_EQ(Warnings(BuildImpulseMatrix(path, {}, options)), "");
    options.bitRate = 8e9;
    EXPECT_NE(Warnings(BuildImpulseMatrix(path, {}, options))
                  .find("this pulse adds up to 0.5 to 1 V over the phases"),
              std::string::npos);
}

GTEST_TEST(Channel, ATableOfItsOwnHasTwoSides)
{
    const TempDir scratch;
    const std::string path =
        scratch.Write("impulse.csv",
                      "time,victim_before,victim_after,aggressor_1_before,aggressor_1_after\n"
                      "0,8e10,4e10,1e9,5e8\n12.5e-12,0,0,0,0\n");
    ChannelOptions options;
    ImpulseMatrix matrix = BuildImpulseMatrix(path, {}, options);
    ASSERT_EQ(matrix.columns.size(), 2u);
    EXPECT_EQ(matrix.columns[0].impulse[0], 8e10);
    EXPECT_EQ(matrix.columns[1].impulse[0], 1e9);
    EXPECT_EQ(matrix.columns[1].source, path + ", aggressor_1_before");
    EXPECT_NE(Warnings(matrix).find(": written by quell: its columns before the model are taken"),
              std::string::npos);
    options.ownColumns = OwnColumns::After;
    matrix = BuildImpulseMatrix(path, {}, options);
    EXPECT_EQ(matrix.columns[0].impulse[0], 4e10);
    EXPECT_EQ(matrix.columns[1].impulse[0], 5e8);
    const std::string other = scratch.Write("o.csv", "time,v\n0,1\n1e-12,0\n");
    EXPECT_EQ(Error(other, {}, options),
              other + ": --column is for tables that quell wrote: no column victim_before");
}

GTEST_TEST(Channel, TheBuiltInLineKeepsItsBits)
{
    EXPECT_EQ(LossLine::Samples(1), 4096u);
    EXPECT_EQ(LossLine::Samples(16), 4096u);
    EXPECT_EQ(LossLine::Samples(17), 4374u);
    EXPECT_EQ(LossLine::Samples(128), 32768u);
    ChannelOptions options;
    options.samplesPerBit = 128;
    // The height of 16 samples a bit is that of the best of fewer phases.
    EXPECT_NEAR(HeightBefore(BuildImpulseMatrix("loss:8dB@2.5GHz", {}, options)),
                HeightBefore(BuildImpulseMatrix("loss:8dB@2.5GHz", {}, {})), 5e-3);
}

GTEST_TEST(Channel, NamesThatAreNoChannel)
{
    const TempDir scratch;
    const std::string two = scratch.Write("t.s2p", "1 0 0 1 0 1 0 0 0\n2 0 0 1 0 1 0 0 0\n");
    const std::string form = " is not of the form loss:8dB@2.5GHz; a frequency needs its unit";
    static const struct {
        std::string name;
        std::string message;
    } rows[] = {
        {"loss:8@", "'loss:8@'" + form},
        {"loss:-8dB@2.5GHz", "'loss:-8dB@2.5GHz'" + form},
        {"loss:8dB@0", "'loss:8dB@0'" + form},
        {"loss:8dB@2.5", "'loss:8dB@2.5'" + form},
        {"x.ibs", "'x.ibs' is no channel: expected a .s2p, .s4p or .csv file or loss:8dB@2.5GHz"},
        {"x.s8p", "x.s8p: 8-ports are not read, only 2 and 4 ports"},
        {"/no/x.s2p", "/no/x.s2p: no such file"},
        {"/dev/null/x.s2p", "/dev/null/x.s2p: no such file"},
        {two + ":13,24", two + ": the port order of a 2-port looks like 1,2"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(Error(row.name, {}), row.message);
}

}  // namespace
}  // namespace quell
