#include "quell/channel/channel.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "quell/base/errors.h"
#include "quell/base/numbers.h"
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
    // Of the tail, which falls with t^-1.5 only, three parts in a hundred lie behind 21 ns.
    EXPECT_NEAR(DcGain(file.columns[0].impulse, file.grid.Interval()), 0.97, 0.01);
    EXPECT_NEAR(DcGain(line.columns[0].impulse, line.grid.Interval()), 1, 1e-12);
    // The file ends at 20 GHz; what lies above is continued.
    for (size_t n = 80; n < 400; ++n)
        EXPECT_NEAR(file.columns[0].impulse[n], line.columns[0].impulse[n], 5e8) << n;
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
    EXPECT_NEAR(matrix.grid.samplesPerBit, 1 / 0.044, 1e-12);
    EXPECT_NE(Warnings(matrix).find("22.7273 samples per bit: not an integer"), std::string::npos);
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

GTEST_TEST(Channel, NamesThatAreNoChannel)
{
    const TempDir scratch;
    const std::string two = scratch.Write("t.s2p", "1 0 0 1 0 1 0 0 0\n2 0 0 1 0 1 0 0 0\n");
    static const struct {
        std::string name;
        std::string message;
    } rows[] = {
        {"loss:8@", "'loss:8@' is not of the form loss:8dB@2.5GHz"},
        {"loss:-8dB@2.5GHz", "'loss:-8dB@2.5GHz' is not of the form loss:8dB@2.5GHz"},
        {"loss:8dB@0", "'loss:8dB@0' is not of the form loss:8dB@2.5GHz"},
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
