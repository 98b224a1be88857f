#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "dataflow/Add.h"
#include "dataflow/ConstUnTimed.h"
#include "dataflow/Fork.h"
#include "dataflow/Gain.h"
#include "dataflow/VarDelay.h"
#include "tests/support/stderr_of.h"

using TalvernQuell::Add;
using TalvernQuell::CircularBuffer;
using TalvernQuell::ConstUnTimed;
using TalvernQuell::DFModel;
using TalvernQuell::Fork;
using TalvernQuell::Gain;
using TalvernQuell::VarDelay;

using Samples = std::vector<double>;
using Delay = VarDelay<CircularBuffer<double>>;

GTEST_TEST(DFModel, DoesNothingSuccessfully)
{
    DFModel block;
    EXPECT_TRUE(block.Setup() && block.Initialize() && block.Run() && block.Finalize() &&
                block.UpdateDynamicParameters());
}

GTEST_TEST(Gain, WorksOnTheCurrentElements)
{
    Gain<double> gain;
    Samples in = {1.0, 2.0};
    Samples out = {0.0, 0.0, 0.0};
    gain.m_Gain = -0.5;
    gain.m_Input.Attach(in.data(), in.size());
    gain.m_Output.Attach(out.data(), out.size());
    gain.m_Input.m_Position = 1;
    gain.m_Output.m_Position = 2;
    EXPECT_TRUE(gain.Run());
    EXPECT_EQ(out, (Samples{0.0, 0.0, -1.0}));
}

GTEST_TEST(Add, SumsInOrderFromZero)
{
    static const struct {
        const char* label;
        Samples inputs;
        double expected;
    } sums[] = {
        {"no inputs", {}, 0.0},
        {"the order decides", {1e16, 1.0, -1e16}, 0.0},
        {"in the other order", {1e16, -1e16, 1.0}, 1.0},
        {"zero is not negative", {-0.0}, 0.0},
    };
    for (const auto& row : sums) {
        Add<double> add;
        Samples inputs = row.inputs;
        double out = -1.0;
        add.m_Inputs.Initialize(inputs.size());
        for (std::size_t i = 0; i < inputs.size(); ++i)
            add.m_Inputs.Get(i)->Attach(&inputs[i], 1);
        add.m_Output.Attach(&out, 1);
        EXPECT_TRUE(add.Run());
        EXPECT_EQ(out, row.expected) << row.label;
        EXPECT_FALSE(std::signbit(out)) << row.label;
    }
}

GTEST_TEST(Fork, CopiesToEveryOutput)
{
    Fork<CircularBuffer<double>> fork;
    double in = 7.0;
    Samples out = {0.0, 0.0, 0.0};
    fork.m_Input.Attach(&in, 1);
    EXPECT_TRUE(fork.Run());
    fork.m_Outputs.Initialize(3);
    for (std::size_t i = 0; i < 3; ++i)
        fork.m_Outputs.Get(i)->Attach(&out[i], 1);
    EXPECT_TRUE(fork.Run());
    EXPECT_EQ(out, Samples(3, 7.0));
}

GTEST_TEST(ConstUnTimed, BeginsWithZeros)
{
    static const struct {
        std::int32_t initialDelay;
        Samples expected;
    } runs[] = {
        {0, {5, 5, 5, 5, 5}},
        {3, {0, 0, 0, 5, 5}},
        {-1, {5, 5, 5, 5, 5}},  // refused, but a firing takes it as signed
    };
    for (const auto& row : runs) {
        ConstUnTimed<double> source;
        double out = -1.0;
        source.m_Value = 5.0;
        source.InitialDelay = row.initialDelay;
        source.m_Output.Attach(&out, 1);
        for (int use = 0; use < 2; ++use) {
            const std::string posted =
                StderrOf([&] { EXPECT_EQ(source.Initialize(), row.initialDelay >= 0); });
            EXPECT_EQ(posted, row.initialDelay < 0 ? "InitialDelay must be >= 0\n" : "");
            Samples outputs;
            for (std::size_t i = 0; i < row.expected.size(); ++i) {
                EXPECT_TRUE(source.Run());
                outputs.push_back(out);
            }
            EXPECT_EQ(outputs, row.expected) << row.initialDelay;
        }
        EXPECT_EQ(source.m_FiringCount, row.expected.size());
    }
}

namespace {

// A delay with its ports connected.
struct DelayBench {
    Delay delay;
    double in = 0.0;
    double out = 0.0;
    int control = 0;

    DelayBench()
    {
        delay.m_Input.Attach(&in, 1);
        delay.m_Output.Attach(&out, 1);
        delay.m_DelayControl.Attach(&control, 1);
    }

    double Fire(double x)
    {
        in = x;
        EXPECT_TRUE(delay.Run());
        return out;
    }
};

}  // namespace

GTEST_TEST(VarDelay, ClampsTheControlToWholeSamples)
{
    static const struct {
        std::int32_t maxDelay;
        int control;
        bool active;
        std::uint64_t expected;
    } delays[] = {
        {4, 0, true, 0},  {4, 3, true, 3},
        {4, 4, true, 4},  {4, 5, true, 4},
        {4, 7, true, 4},  {4, -3, true, 0},
        {4, 2, false, 4}, {0, 9, true, 0},
        {0, 0, false, 0}, {3, -2147483647 - 1, true, 0},
    };
    for (const auto& row : delays) {
        DelayBench bench;
        bench.delay.MaxDelay = row.maxDelay;
        bench.delay.m_DelayControl.m_Active = row.active;
        bench.control = row.control;
        ASSERT_TRUE(bench.delay.Initialize());
        for (std::uint64_t n = 0; n < 12; ++n) {
            const double expected = n < row.expected ? 0.0 : 100.0 + double(n - row.expected);
            EXPECT_EQ(bench.Fire(100.0 + double(n)), expected)
                << row.maxDelay << " " << row.control << " at " << n;
        }
        EXPECT_EQ(bench.delay.m_CurrentDelay, row.expected);
    }
}

GTEST_TEST(VarDelay, KeepsTheLastControlledDelayWhenTheControlGoesOff)
{
    DelayBench bench;
    bench.delay.MaxDelay = 4;
    ASSERT_TRUE(bench.delay.Initialize());
    bench.control = 1;
    bench.Fire(1.0);
    bench.delay.m_DelayControl.m_Active = false;
    bench.control = 3;
    EXPECT_EQ(bench.Fire(2.0), 1.0);
}

GTEST_TEST(VarDelay, KeepsTheLineWhenItIsLongEnough)
{
    DelayBench bench;
    bench.delay.m_DelayControl.m_Active = false;
    bench.delay.MaxDelay = 3;
    ASSERT_TRUE(bench.delay.Initialize());
    for (const double x : {1.0, 2.0, 3.0, 4.0, 5.0})
        bench.Fire(x);

    // Five firings in a line of four: the last samples come out first.
    ASSERT_TRUE(bench.delay.Initialize());
    EXPECT_EQ(bench.Fire(6.0), 3.0);

    // A shorter delay in the same line keeps its capacity: it reads what lies where it looks.
    bench.delay.MaxDelay = 1;
    ASSERT_TRUE(bench.delay.Initialize());
    EXPECT_EQ(bench.delay.m_DelayLine.m_Capacity, 4U);
    EXPECT_EQ(bench.delay.m_DelayLine.m_Size, 2U);
    EXPECT_EQ(bench.Fire(7.0), 4.0);
    EXPECT_EQ(bench.Fire(8.0), 7.0);

    bench.delay.MaxDelay = 4;
    ASSERT_TRUE(bench.delay.Initialize());
    EXPECT_EQ(bench.delay.m_DelayLine.m_Position, 0U);
    for (const double x : {9.0, 10.0, 11.0, 12.0})
        EXPECT_EQ(bench.Fire(x), 0.0);
    EXPECT_EQ(bench.Fire(13.0), 9.0);
}

GTEST_TEST(VarDelay, RefusesANegativeMaximum)
{
    Delay delay;
    delay.MaxDelay = -1;
    EXPECT_EQ(StderrOf([&] { EXPECT_FALSE(delay.Initialize()); }), "MaxDelay must be >= 0\n");
}
