#include "quell/signal/pulse.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "quell/signal/time_grid.h"

namespace quell {
namespace {

GTEST_TEST(Pulse, IntegralOverOneUnitInterval)
{
    // Interval 1/2 s: exact in binary.
    const std::vector<double> impulse = {0, 2, 4, 8, 0, 0, 0};
    EXPECT_EQ(PulseResponse(impulse, 0.5, 2), (std::vector<double>{0, 1, 3, 6, 4, 0, 0}));
    // One and a half samples: half of the sample that leaves.
    EXPECT_EQ(PulseResponse(impulse, 0.5, 1.5), (std::vector<double>{0, 1, 2.5, 5, 2, 0, 0}));
}

GTEST_TEST(Pulse, HeightIsThatOfTheWorstOfAllPatterns)
{
    // Cursors at two phases; every pattern of the other bits is tried.
    const std::vector<double> pulse = {0.1, 0.0, 0.6, 0.7, -0.2, 0.25, 0.05, -0.1};
    double best = -1;
    for (size_t phase = 0; phase < 2; ++phase) {
        const std::vector<double> cursors = CursorsAt(pulse, 2, static_cast<double>(phase));
        ASSERT_EQ(cursors.size(), 4u);
        double worst = 1;
        for (unsigned pattern = 0; pattern < 16; ++pattern) {
            // Bits of +-1/2 V; the main cursor's bit is a one.
            double level = 0;
            for (size_t k = 0; k < 4; ++k)
                level += (k == 1 || (pattern >> k & 1U) != 0 ? 0.5 : -0.5) * cursors[k];
            worst = std::min(worst, 2 * level);
        }
        best = std::max(best, worst);
    }
    const PeakDistortion eye = AnalysePeakDistortion(pulse, 2);
    EXPECT_NEAR(eye.height, best, 1e-15);
    EXPECT_EQ(eye.mainCursor, 0.7);
    EXPECT_EQ(eye.phase, 1u);
    EXPECT_EQ(eye.cursor, 1u);
}

GTEST_TEST(Pulse, AnInvertingChannelHasTheSameEye)
{
    const PeakDistortion eye = AnalysePeakDistortion(std::vector<double>{-0.5, -0.25, 0.125, 0}, 1);
    EXPECT_EQ(eye.height, 0.125);
    EXPECT_EQ(eye.mainCursor, -0.5);
}

GTEST_TEST(Pulse, CrosstalkTakesItsWorstPhase)
{
    const Crosstalk crosstalk =
        AnalyseCrosstalk(std::vector{0.01, -0.05, 0.02, 0.03, 0.0, 0.01}, 2);
    EXPECT_DOUBLE_EQ(crosstalk.sum, 0.09);
    EXPECT_EQ(crosstalk.largest, -0.05);
}

GTEST_TEST(TimeGrid, StepAndPulseResponsesGiveTheImpulseBack)
{
    const std::vector<double> impulse = {0, 3, -1, 0.5, 2, 0, 0, 0, 0};
    EXPECT_EQ(ToImpulse(StepResponse(impulse, 0.25), ResponseKind::Step, 0.25, 1), impulse);
    EXPECT_EQ(ToImpulse(PulseResponse(impulse, 0.25, 4), ResponseKind::Pulse, 0.25, 1), impulse);
    EXPECT_EQ(ToImpulse(impulse, ResponseKind::Impulse, 0.25, 1), impulse);
}

GTEST_TEST(TimeGrid, ResamplingKeepsTheAreaAndTheSteps)
{
    const std::vector<double> impulse = {0, 8, 4, 0, 0, 0};
    EXPECT_EQ(Resample(impulse, 1, 0.5), (std::vector<double>{0, 0, 8, 8, 4, 4, 0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(Resample(impulse, 1, 2), (std::vector<double>{4, 2, 0}));
    EXPECT_NEAR(DcGain(Resample(impulse, 1, 0.7), 0.7), 12, 1e-12);
}

GTEST_TEST(TimeGrid, ModelsCountTheSamplesOfABitByTruncation)
{
    for (int samplesPerBit = 4; samplesPerBit < 99; ++samplesPerBit)
        for (double bitRate = 0.5e9; bitRate <= 25e9; bitRate += 0.7e9) {
            const TimeGrid grid = {bitRate, static_cast<double>(samplesPerBit)};
            const double interval = grid.ModelInterval();
            EXPECT_EQ(static_cast<int>(grid.BitTime() / interval), samplesPerBit)
                << bitRate << " x " << samplesPerBit;
            EXPECT_NEAR(interval / grid.Interval(), 1, 1e-14);
        }
}

GTEST_TEST(TimeGrid, UnevenSamplesKeepTheArea)
{
    // A triangle of area 3 whose top lies between the new instants, and a step along it.
    const std::vector<double> time = {1, 2.3, 2.3, 7};
    const std::vector<double> triangle = {0, 1, 1, 0};
    const std::vector<double> impulse = ToImpulse(time, triangle, ResponseKind::Impulse, 0.5, 1);
    EXPECT_NEAR(DcGain(impulse, 0.5), 3, 1e-12);
    const std::vector<double> step =
        ToImpulse(time, std::vector<double>{5, 6, 8, 8}, ResponseKind::Step, 0.5, 1);
    EXPECT_NEAR(DcGain(step, 0.5), 3, 1e-12);
    EXPECT_NEAR(step[2] * 0.5, 0.5 / 1.3, 1e-12);
}

GTEST_TEST(TimeGrid, GainAtAFrequencyIsTheTransform)
{
    // Two samples half a period apart cancel at that frequency and add at twice of it.
    const std::vector<double> impulse = {1, 0, 1, 0};
    EXPECT_NEAR(std::abs(GainAt(impulse, 1, 0.25)), 0, 1e-15);
    EXPECT_NEAR(std::abs(GainAt(impulse, 1, 0.5)), 2, 1e-15);
}

}  // namespace
}  // namespace quell
