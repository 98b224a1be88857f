#include "dataflow/BiquadCascade.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "tests/support/stderr_of.h"

using TalvernQuell::BiquadCascade;

using Samples = std::vector<double>;

namespace {

// A cascade with its ports connected.
struct CascadeBench {
    BiquadCascade cascade;
    Samples taps;
    Samples out;
    double in = 0.0;

    CascadeBench(Samples coefficients, std::size_t outputs)
        : taps(std::move(coefficients)), out(outputs, -1.0)
    {
        cascade.m_Coefficients = taps.data();
        cascade.m_NumberOfTaps = static_cast<std::int32_t>(taps.size());
        cascade.m_Input.Attach(&in, 1);
        cascade.m_Outputs.Initialize(outputs);
        for (std::size_t i = 0; i < outputs; ++i)
            cascade.m_Outputs.Get(i)->Attach(&out[i], 1);
    }

    void Fire(double x)
    {
        in = x;
        EXPECT_TRUE(cascade.Run());
    }
};

}  // namespace

GTEST_TEST(BiquadCascade, RefusesTapsThatAreNoWholeSections)
{
    static const struct {
        std::int32_t taps;
        const char* expected;
    } counts[] = {
        {0, "There are currently 0 taps.\n"},
        {5, "There are currently 5 taps.\n"},
        {7, "There are currently 7 taps.\n"},
        {-6, "There are currently -6 taps.\n"},
        {1234567, "There are currently 1234567 taps.\n"},
    };
    for (const auto& row : counts) {
        BiquadCascade cascade;
        cascade.m_NumberOfTaps = row.taps;
        EXPECT_EQ(StderrOf([&] { EXPECT_FALSE(cascade.Initialize()); }),
                  std::string("The number of parameter taps must not be zero and must be a "
                              "multiple of 6 taps. ") +
                      row.expected);
    }
}

GTEST_TEST(BiquadCascade, TestsTheIntegerPartOfD0)
{
    static const struct {
        double d0;
        bool accepted;
    } values[] = {
        {0.0, false},          {0.5, false},
        {-0.999, false},       {1.0, true},
        {-1.0, true},          {1.5, true},
        {2147483647.5, true},  {2147483648.0, false},
        {-2147483647.0, true}, {-2147483648.0, false},
        {1e300, false},        {std::numeric_limits<double>::quiet_NaN(), false},
    };
    for (const auto& row : values) {
        // The bad section is the second: the first one is normalised by then.
        CascadeBench bench({4, 4, 4, 2, 4, 4, 1, 0, 0, row.d0, 0, 0}, 0);
        EXPECT_EQ(StderrOf([&] { EXPECT_EQ(bench.cascade.Initialize(), row.accepted); }),
                  row.accepted ? "" : "The D0 coefficient for biquad number 2 cannot be zero. \n")
            << row.d0;
        EXPECT_EQ(Samples(bench.taps.begin(), bench.taps.begin() + 6), (Samples{2, 2, 2, 1, 2, 2}));
        if (row.accepted) {
            EXPECT_EQ(bench.taps[9], 1.0) << row.d0;
            EXPECT_EQ(bench.taps[6], 1.0 / row.d0) << row.d0;
        }
    }
}

GTEST_TEST(BiquadCascade, RefusesMoreOutputsThanSections)
{
    CascadeBench bench({1, 0, 0, 1, 0, 0, 1, 0, 0, 1, 0, 0}, 3);
    EXPECT_EQ(StderrOf([&] { EXPECT_FALSE(bench.cascade.Initialize()); }),
              "The number of outputs must be less than or equal to the number of biquads in the "
              "cascade.  Currently, there are 3 outputs and 2 biquads.\n");
}

// Taps that are powers of two, so that the difference equation can be worked out exactly by hand.
GTEST_TEST(BiquadCascade, FollowsTheDifferenceEquation)
{
    CascadeBench bench({2, 4, 8, 2, 1, 0.5}, 1);  // (1 + 2 z^-1 + 4 z^-2) / (1 + z^-1/2 + z^-2/4)
    ASSERT_TRUE(bench.cascade.Initialize());
    Samples out;
    for (const double x : {1.0, 0.0, 0.0, 0.0}) {
        bench.Fire(x);
        out.push_back(bench.out[0]);
    }
    EXPECT_EQ(out, (Samples{1.0, 1.5, 3.0, -1.875}));
}

GTEST_TEST(BiquadCascade, TapsTheLastSectionsInReverse)
{
    const Samples threeSections = {2, 0, 0, 1, 0, 0, 3, 0, 0, 1, 0, 0, 5, 0, 0, 1, 0, 0};
    static const struct {
        Samples expected;
    } outputs[] = {{{}}, {{30}}, {{30, 6}}, {{30, 6, 2}}};
    for (const auto& row : outputs) {
        CascadeBench bench(threeSections, row.expected.size());
        ASSERT_TRUE(bench.cascade.Initialize());
        bench.Fire(1.0);
        EXPECT_EQ(bench.out, row.expected);
        EXPECT_EQ(bench.cascade.m_State1[2], 6.0);
    }
}

GTEST_TEST(BiquadCascade, RunsOnlyOnceItIsInitialised)
{
    CascadeBench bench({1, 1, 0, 1, 0, 0}, 1);
    bench.Fire(5.0);
    EXPECT_EQ(bench.out[0], -1.0);
    for (int use = 0; use < 2; ++use) {
        ASSERT_TRUE(bench.cascade.Initialize());
        bench.Fire(5.0);
        EXPECT_EQ(bench.out[0], 5.0);
        bench.Fire(0.0);
        EXPECT_EQ(bench.out[0], 5.0);
    }
    EXPECT_TRUE(bench.cascade.Finalize());
}
