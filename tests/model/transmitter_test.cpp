#include <gtest/gtest.h>

#include <cmath>
#include <numeric>
#include <vector>

#include "tests/model/model_bench.h"
#include "tests/support/stderr_of.h"

using Column = std::vector<double>;

// What wire 6 carries, the sum of the two taps and the offset, for one use of the model.
static Column SumsOf(ModelBench& bench, const Column& input)
{
    EXPECT_TRUE(bench.Prepare());
    Column sums;
    for (const double x : input) {
        bench.input = x;
        EXPECT_TRUE(bench.model.Run());
        sums.push_back(*bench.model.m_Wire6);
    }
    EXPECT_TRUE(bench.model.Finalize());
    return sums;
}

// With a ratio of 2 the taps are 0.75 and -0.25, and every sum is exact.
GTEST_TEST(Transmitter, CarriesTheDelayLineFromUseToUse)
{
    ModelBench bench(2.0, 4);
    EXPECT_EQ(SumsOf(bench, {1, 0, 0, 0, 0, 0}), (Column{1, 0.25, 0.25, 0.25, 0, 0.25}));
    EXPECT_EQ(SumsOf(bench, {0, 0, 8}), (Column{0.25, 0.25, 6.25}));
    // Three samples went into a line of four: the oldest is still from the first use.
    EXPECT_EQ(SumsOf(bench, {0, 0, 0, 0}), (Column{0.25, 0.25, 0.25, -1.75}));

    bench.model.m_SamplesPerBit = 2;
    EXPECT_EQ(SumsOf(bench, {4, 0, 0}), (Column{3.25, 0.25, -0.75}));
    // A longer line is a new one.
    bench.model.m_SamplesPerBit = 5;
    EXPECT_EQ(SumsOf(bench, {4, 0, 0, 0, 0, 0}), (Column{3.25, 0.25, 0.25, 0.25, 0.25, -0.75}));
}

GTEST_TEST(Transmitter, AUseShorterThanTheDelayStillMovesTheLine)
{
    ModelBench bench(2.0, 16);
    Column first(10);
    std::iota(first.begin(), first.end(), 1.0);
    SumsOf(bench, first);
    const Column sums = SumsOf(bench, Column(16, 0.0));
    for (std::size_t n = 0; n < 16; ++n)
        EXPECT_EQ(sums[n], n < 6 ? 0.25 : 0.25 - 0.25 * first[n - 6]) << n;
}

GTEST_TEST(Transmitter, LeavesATransitionAtFullSwingAndARepetitionAtTheRatio)
{
    const double ratio = std::pow(10.0, 3.5 / 20.0);
    ModelBench bench(ratio, 16);
    ASSERT_TRUE(bench.model.Setup());
    EXPECT_EQ(bench.model.m_MainTap, 0.8341719587843073);
    EXPECT_EQ(bench.model.m_PostTap, -0.16582804121569272);
    EXPECT_DOUBLE_EQ(bench.model.m_MainTap + bench.model.m_PostTap, 1.0 / ratio);
    EXPECT_EQ(bench.model.m_Filter.SampleRate, 16.0 / 2e-10);
}

// The filter has unity gain at zero frequency: a constant input settles at its own value.
GTEST_TEST(Transmitter, SettlesAtTheInput)
{
    ModelBench bench(1.0, 16);
    ASSERT_TRUE(bench.Prepare());
    Column column(500, 1.0);
    ASSERT_TRUE(bench.model.RunColumn(column.data(), 500));
    // The gain is given to 15 digits.
    EXPECT_NEAR(column.back(), 1.0, 1e-14);
}

GTEST_TEST(Transmitter, KeepsPortArraysAndDropsWiresBetweenUses)
{
    ModelBench bench(2.0, 4);
    ASSERT_TRUE(bench.Prepare());
    const void* const inputs = bench.model.m_Sum.m_Inputs.m_Buffers;
    const void* const outputs = bench.model.m_Split.m_Outputs.m_Buffers;
    EXPECT_TRUE(bench.model.Finalize());
    EXPECT_EQ(bench.model.m_Wire1, nullptr);
    EXPECT_EQ(bench.model.m_Wire10, nullptr);
    bench.model.DeleteBuffers();
    bench.model.m_Input.m_Size = 0;
    bench.model.m_Input.m_Step = 7;
    ASSERT_TRUE(bench.Prepare());
    EXPECT_EQ(bench.model.m_Sum.m_Inputs.m_Buffers, inputs);
    EXPECT_EQ(bench.model.m_Split.m_Outputs.m_Buffers, outputs);
    EXPECT_EQ(bench.model.m_Input.m_Size, 1U);
    EXPECT_EQ(bench.model.m_Input.m_Step, 1U);
    // Initialize alone starts from new wires too.
    EXPECT_TRUE(bench.model.Initialize());
}

GTEST_TEST(Transmitter, ReportsAllThatIsWrongWithItsRate)
{
    static const struct {
        int samplesPerBit;
        const char* posted;
    } rates[] = {
        {0, "SampleRate must be positive.\n"},
        {-15, "SampleRate must be positive.\nMaxDelay must be >= 0\n"},
    };
    for (const auto& row : rates) {
        ModelBench bench(2.0, row.samplesPerBit);
        EXPECT_TRUE(bench.model.Setup());
        EXPECT_EQ(StderrOf([&] { EXPECT_FALSE(bench.model.Initialize()); }), row.posted);
        EXPECT_TRUE(bench.model.Finalize());
    }
    // A negative unit interval turns a negative count into a good rate.
    ModelBench bench(2.0, -15);
    bench.model.m_BitTime = -2e-10;
    EXPECT_TRUE(bench.model.Setup());
    EXPECT_EQ(StderrOf([&] { EXPECT_FALSE(bench.model.Initialize()); }), "MaxDelay must be >= 0\n");
}
