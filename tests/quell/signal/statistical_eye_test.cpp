// The statistical eye against enumeration, closed forms and the bounds that must hold.
#include "quell/signal/statistical_eye.h"

#include <gtest/gtest.h>

#include <algorithm>
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
StatisticalEye OnePhase(const std::vector<double>& pulse, EyeOptions options = {})
{
    options.phases = 1;
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
        const StatisticalEye eye = ComputeEye(pulse, {}, samplesPerUi, 1e-12, {.phases = 1});
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
    for (std::size_t i = eye.firstSample; i < eye.phases.size(); i += eye.samplePhases) {
        const double t = (static_cast<double>(i) - static_cast<double>(eye.centre)) / 64;
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
    const StatisticalEye eye =
        ComputeEye(victim, aggressors, 4, 1e-12, {.voltageStep = 1.0 / 64, .phases = 1});
    const Density& isi = eye.phases[eye.centre].isi;
    ASSERT_EQ(-4, isi.first);
    ASSERT_EQ(9u, isi.mass.size());
    EXPECT_DOUBLE_EQ(0.125, isi.mass[0]);
    EXPECT_DOUBLE_EQ(0.75, isi.mass[4]);
    EXPECT_DOUBLE_EQ(0.125, isi.mass[8]);
}

// The height of a triangle two unit intervals long falls by 2 V per unit interval from its middle,
// so jitter between two instants takes just their distance from the width, wherever they lie
// between the samples and phases.
GTEST_TEST(StatisticalEye, DualDiracJitterTakesItsDistanceFromTheWidth)
{
    constexpr double UnitInterval = 200e-12;
    for (const std::size_t samplesPerUi : {15U, 16U, 17U}) {
        const double n = static_cast<double>(samplesPerUi);
        std::vector<double> pulse(6 * samplesPerUi, 0.0);
        for (std::size_t i = 0; i < pulse.size(); ++i)
            pulse[i] = std::max(0.0, 1.0 - std::abs(static_cast<double>(i) / n - 2.5));
        const auto width = [&](double dualDirac) {
            const StatisticalEye eye =
                ComputeEye(pulse, {}, samplesPerUi, UnitInterval / n, {.dualDirac = dualDirac});
            EXPECT_GE(eye.phases.size(), 65u);
            EXPECT_EQ(eye.phases.size() % 2, 1u);
            EXPECT_NEAR(eye.middle, 2.5 * UnitInterval, 1.01 * eye.phaseStep);
            return EyeWidth(eye, 1e-12) * UnitInterval;
        };
        double before = width(0);
        EXPECT_NEAR(before, UnitInterval, 4e-12);
        for (int ps = 1; ps <= 40; ++ps) {
            const double now = width(ps * 1e-12);
            EXPECT_LE(now, before) << samplesPerUi << " samples, " << ps << " ps";
            // The cubic rounds the triangle's feet by part of a sample.
            if (ps >= 4) {
                EXPECT_NEAR(now, UnitInterval - ps * 1e-12, 0.3e-12) << samplesPerUi;
            }
            before = now;
        }
    }
}

// A mixture of the eyes at the two instants, not of cells around them.
GTEST_TEST(StatisticalEye, DualDiracJitterIsTheMixtureOfTwoInstants)
{
    std::mt19937 random(5);
    const std::vector<double> pulse = RandomPulse(&random, 16);
    const EyeOptions plain = {.voltageStep = 1e-4};
    const StatisticalEye still = ComputeEye(pulse, {}, 16, 12.5e-12, plain);
    // Two phases to each side, which lie on the grid of the eye without jitter.
    EyeOptions options = plain;
    options.dualDirac = 4 * still.phaseStep;
    const StatisticalEye shaken = ComputeEye(pulse, {}, 16, 12.5e-12, options);
    for (std::size_t i = 2; i + 2 < still.phases.size(); ++i) {
        // The densities apply to the main cursors of their own phases.
        const double least = 0.5 * (ErrorRate(still, i - 2) + ErrorRate(still, i + 2));
        EXPECT_NEAR(ErrorRate(shaken, i), least, 1e-2 * least + 1e-12) << i;
    }
}

GTEST_TEST(StatisticalEye, MoreJitterAndNoiseNeverOpenTheEye)
{
    std::mt19937 random(11);
    for (const std::size_t samplesPerUi : {9U, 16U}) {
        const std::vector<double> pulse = RandomPulse(&random, samplesPerUi);
        const double interval = 200e-12 / static_cast<double>(samplesPerUi);
        double width = 2;
        for (const double ps : {0.0, 0.2, 0.5, 1.0, 1.5, 1.7, 2.5, 4.0, 7.0, 14.0, 30.0}) {
            const StatisticalEye eye =
                ComputeEye(pulse, {}, samplesPerUi, interval, {.randomJitter = ps * 1e-12});
            const double now = EyeWidth(eye, 1e-12);
            EXPECT_LE(now, width) << ps;
            width = now;
        }
        EXPECT_EQ(width, 0);
        double height = 2;
        for (const double volts : {0.0, 0.001, 0.01, 0.1, 1.0}) {
            const StatisticalEye eye =
                ComputeEye(pulse, {}, samplesPerUi, interval, {.noise = volts});
            const double now = EyeHeight(eye, BestPhase(eye, 1e-12), 1e-12);
            EXPECT_LT(now, height) << volts;
            height = now;
        }
    }
}

// The response is told at its samples; the phases between them are for width and bathtub.
GTEST_TEST(StatisticalEye, TheBestPhaseLiesAtASample)
{
    std::mt19937 random(13);
    for (const std::size_t samplesPerUi : {1U, 5U, 16U, 65U, 128U}) {
        const std::vector<double> pulse = RandomPulse(&random, samplesPerUi);
        const StatisticalEye eye = ComputeEye(pulse, {}, samplesPerUi, 1e-12);
        const std::size_t best = BestPhase(eye, 1e-12);
        const double cursor = eye.phases[best].mainCursor;
        EXPECT_EQ(std::count(pulse.begin(), pulse.end(), cursor), 1) << samplesPerUi;
        const double place =
            eye.middle +
            (static_cast<double>(best) - static_cast<double>(eye.centre)) * eye.phaseStep;
        EXPECT_EQ(pulse[static_cast<std::size_t>(std::lround(place / 1e-12))], cursor)
            << samplesPerUi;
    }
}

GTEST_TEST(Density, ConvolutionOfAnySizesAgreesWithItsDefinition)
{
    std::mt19937 random(17);
    for (int round = 0; round < 40; ++round) {
        Density a = {-3, std::vector<double>(1 + random() % 9)};
        Density b = {5, std::vector<double>(1 + random() % 9)};
        for (Density* density : {&a, &b}) {
            for (double& m : density->mass)
                m = static_cast<double>(random() % 8) / 8;
            // Every other round of symmetric densities.
            if (round % 2 == 0)
                std::copy(
                    density->mass.begin(),
                    density->mass.begin() + static_cast<std::ptrdiff_t>(density->mass.size() / 2),
                    density->mass.rbegin());
        }
        std::vector<double> expected(a.mass.size() + b.mass.size() - 1, 0.0);
        for (std::size_t i = 0; i < a.mass.size(); ++i)
            for (std::size_t k = 0; k < b.mass.size(); ++k)
                expected[i + k] += a.mass[i] * b.mass[k];
        const Density sum = Convolve(a, b);
        EXPECT_EQ(sum.first, 2);
        EXPECT_EQ(sum.mass, expected);
    }
}
