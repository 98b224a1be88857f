// The statistical eye against enumeration, closed forms and the bounds that must hold.
#include "quell/signal/statistical_eye.h"

#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <numbers>
#include <random>

using namespace quell;

namespace {

const double ErrorRates[] = {0.25, 1e-3, 1e-6, 1e-9, 1e-12, 1e-15};

double AbsoluteSum(const std::vector<double>& pulse)
{
    double sum = 0.0;
    for (const double p : pulse)
        sum += std::abs(p);
    return sum;
}

// Sampled once per unit interval, so there is one phase and its cursors are the pulse.
StatisticalEye OnePhase(const std::vector<double>& pulse, const EyeOptions& options = {})
{
    return ComputeEye(pulse, {}, 1, 200e-12, options);
}

// A pulse of some unit intervals with decaying, ringing cursors.
std::vector<double> RandomPulse(std::mt19937* random, std::size_t samplesPerUi)
{
    std::normal_distribution<double> normal;
    std::vector<double> pulse(12 * samplesPerUi, 0.0);
    for (std::size_t i = samplesPerUi; i < pulse.size(); ++i) {
        const double t = static_cast<double>(i) / static_cast<double>(samplesPerUi) - 2.0;
        pulse[i] = std::exp(-t * t) + 0.05 * normal(*random) * std::exp(-std::abs(t) / 3.0);
    }
    return pulse;
}

}  // namespace

// Every cursor is a whole number of steps of 1/256 V, so the density is the histogram of patterns.
GTEST_TEST(StatisticalEye, EqualsTheEnumerationOfBitPatterns)
{
    const std::vector<double> cursors = {0.0,        6.0 / 256,   -20.0 / 256, 160.0 / 256,
                                         48.0 / 256, -12.0 / 256, 10.0 / 256,  4.0 / 256,
                                         -2.0 / 256, 2.0 / 256};
    const StatisticalEye eye = OnePhase(cursors, {.voltageStep = 1.0 / 256});
    ASSERT_EQ(1u, eye.phases.size());
    ASSERT_EQ(160.0 / 256, eye.phases[0].mainCursor);

    std::map<long, double> patterns;
    constexpr unsigned Others = 9;
    for (unsigned bits = 0; bits < 1u << Others; ++bits) {
        double sum = 0.0;
        unsigned used = 0;
        for (const double cursor : cursors)
            if (cursor != 160.0 / 256) sum += (bits >> used++ & 1) ? cursor : -cursor;
        patterns[std::lround(sum / 2 * 256)] += 1.0 / (1u << Others);
    }
    const Density& isi = eye.phases[0].isi;
    EXPECT_EQ(patterns.begin()->first, isi.first);
    EXPECT_EQ(patterns.rbegin()->first, isi.last());
    for (long cell = isi.first; cell <= isi.last(); ++cell)
        EXPECT_NEAR(patterns.count(cell) ? patterns[cell] : 0.0,
                    isi.mass[static_cast<std::size_t>(cell - isi.first)], 1e-12)
            << cell;
}

GTEST_TEST(StatisticalEye, SingleCursorIsOpenAtEveryErrorRate)
{
    const StatisticalEye eye = OnePhase({0.0, 0.0, 0.375, 0.0});
    for (const double q : ErrorRates)
        EXPECT_EQ(0.375, EyeHeight(eye, 0, q));
    EXPECT_EQ(0.0, ErrorRate(eye, 0));
    EXPECT_EQ(1.0, EyeWidth(eye, 1e-12));
}

GTEST_TEST(StatisticalEye, HeightsAreOrderedAndBoundedByPeakDistortion)
{
    std::mt19937 random(7);
    for (int round = 0; round < 20; ++round) {
        const std::size_t samplesPerUi = 1 + random() % 16;
        const std::vector<double> pulse = RandomPulse(&random, samplesPerUi);
        const StatisticalEye eye = ComputeEye(pulse, {}, samplesPerUi, 1e-12);
        for (std::size_t phase = 0; phase < eye.phases.size(); ++phase) {
            const EyePhase& p = eye.phases[phase];
            std::size_t main = 0;
            while (main < pulse.size() && pulse[main] != p.mainCursor)
                ++main;
            ASSERT_LT(main, pulse.size());
            double others = -std::abs(p.mainCursor);
            for (std::size_t i = main % samplesPerUi; i < pulse.size(); i += samplesPerUi)
                others += std::abs(pulse[i]);
            double higher = INFINITY;
            for (const double q : ErrorRates) {
                const double height = EyeHeight(eye, phase, q);
                EXPECT_LE(height, higher);
                EXPECT_GE(height, p.mainCursor - others - 1.000001 * eye.voltageStep);
                higher = height;
            }
        }
    }
}

GTEST_TEST(StatisticalEye, RoundingKeepsTheSumOfCursors)
{
    std::mt19937 random(3);
    std::exponential_distribution<double> small(20.0);
    for (int round = 0; round < 50; ++round) {
        std::vector<double> amplitudes(1 + random() % 300);
        for (double& a : amplitudes)
            a = (random() % 2 ? 1 : -1) * small(random);
        long cells = 0;
        for (const long c : RoundToGrid(amplitudes, 0.01))
            cells += c;
        EXPECT_NEAR(AbsoluteSum(amplitudes) / 0.01, static_cast<double>(cells), 0.5000001);
    }
}

// One cursor and noise alone: the error rate is the normal distribution's tail.
GTEST_TEST(StatisticalEye, NoiseHasTheTailOfTheNormalDistribution)
{
    const struct {
        double sigmas;
        double tail;  // P(x < -sigmas), tabulated
    } rows[] = {{3.0, 1.3498980316300945e-3},
                {6.0, 9.865876450376946e-10},
                {7.034484, 1.0e-12},
                {7.941345, 1.0e-15}};
    for (const auto& row : rows) {
        const double main = 0.4;
        const double sigma = main / 2 / row.sigmas;
        const StatisticalEye eye = OnePhase({0.0, main, 0.0}, {.noise = sigma});
        EXPECT_NEAR(1.0, ErrorRate(eye, 0) / row.tail, 2e-3) << row.sigmas;
        EXPECT_NEAR(0.0, EyeHeight(eye, 0, row.tail), 4 * eye.voltageStep) << row.sigmas;
    }
}

// A triangular pulse two unit intervals long has an open eye whose height falls linearly from the
// middle: 1 - 2 |t| of the peak at t unit intervals from it.
GTEST_TEST(StatisticalEye, TrianglePulseOpensLikeADiamond)
{
    constexpr std::size_t N = 32;
    std::vector<double> pulse(4 * N, 0.0);
    for (std::size_t i = 0; i < 2 * N; ++i)
        pulse[N + i] = 1.0 - std::abs(static_cast<double>(i) - N) / N;
    const StatisticalEye eye = ComputeEye(pulse, {}, N, 1e-12);
    for (std::size_t i = 0; i < N; ++i) {
        const double t = (static_cast<double>(i) - static_cast<double>(eye.centre)) / N;
        EXPECT_NEAR(1.0 - 2.0 * std::abs(t), EyeHeight(eye, i, 1e-12), 2 * eye.voltageStep);
    }
    EXPECT_NEAR(1.0, EyeWidth(eye, 1e-12), 1e-3);

    // Dual-Dirac jitter of a quarter unit interval takes just that from the height at the middle,
    // and random jitter takes the slope times the tail's 7.03 sigma.
    const double dual = 0.25 * N * 1e-12;
    const StatisticalEye shaken = ComputeEye(pulse, {}, N, 1e-12, {.dualDirac = dual});
    EXPECT_NEAR(0.75, EyeHeight(shaken, shaken.centre, 1e-12), 0.01);
    const double sigma = 0.01 * N * 1e-12;
    const StatisticalEye noisy = ComputeEye(pulse, {}, N, 1e-12, {.randomJitter = sigma});
    EXPECT_NEAR(1.0 - 2.0 * 0.01 * 7.03, EyeHeight(noisy, noisy.centre, 1e-12), 0.02);
}

// An aggressor with one cursor at one of its phases hits only that share of the bits.
GTEST_TEST(StatisticalEye, AggressorsAreAveragedOverPhase)
{
    const std::vector<double> victim = {0.0, 0.0, 0.0, 0.0, 0.5, 0.5, 0.5, 0.5};
    const std::vector<std::vector<double>> aggressors = {{0.0, 0.125, 0.0, 0.0}};
    const StatisticalEye eye = ComputeEye(victim, aggressors, 4, 1e-12, {.voltageStep = 1.0 / 64});
    const Density& isi = eye.phases[eye.centre].isi;
    ASSERT_EQ(-4, isi.first);
    ASSERT_EQ(9u, isi.mass.size());
    EXPECT_DOUBLE_EQ(0.125, isi.mass[0]);
    EXPECT_DOUBLE_EQ(0.75, isi.mass[4]);
    EXPECT_DOUBLE_EQ(0.125, isi.mass[8]);
}
