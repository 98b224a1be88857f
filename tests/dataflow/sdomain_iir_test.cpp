#include "dataflow/SDomainIIR.h"

#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <limits>
#include <vector>

#include "tests/support/stderr_of.h"

using TalvernQuell::Matrix;
using TalvernQuell::SDomainIIR;

using Complex = std::complex<double>;
using Reals = std::vector<double>;
using Pairs = std::vector<Complex>;

template <typename T>
static void SetList(Matrix<T>& list, const std::vector<T>& values)
{
    list.Reshape(1, values.size());
    if (!values.empty()) list.Fill(values.data(), values.size());
}

static void SetFilter(SDomainIIR& filter, double gain, const Reals& poles, const Pairs& polePairs,
                      const Reals& zeros, const Pairs& zeroPairs)
{
    filter.m_Gain = gain;
    SetList(filter.m_RealPoles, poles);
    SetList(filter.m_ComplexConjugatePoles, polePairs);
    SetList(filter.m_RealZeros, zeros);
    SetList(filter.m_ComplexConjugateZeros, zeroPairs);
}

static Reals Taps(const SDomainIIR& filter)
{
    return {filter.m_Coefficients, filter.m_Coefficients + filter.m_NumberOfTaps};
}

// The cascade's response from its taps.
static Complex Response(const Reals& taps, Complex z)
{
    Complex h = 1.0;
    for (std::size_t k = 0; k < taps.size(); k += 6) {
        const double* const t = &taps[k];
        h *= (t[0] + t[1] / z + t[2] / (z * z)) / (t[3] + t[4] / z + t[5] / (z * z));
    }
    return h;
}

static Complex Factors(Complex s, const Reals& roots, const Pairs& pairs)
{
    Complex product = 1.0;
    for (const double root : roots)
        product *= s - root;
    for (const Complex root : pairs)
        product *= (s - root) * (s - std::conj(root));
    return product;
}

static const struct {
    const char* label;
    double gain;
    Reals poles;
    Pairs polePairs;
    Reals zeros;
    Pairs zeroPairs;
    std::size_t sections;
} filters[] = {
    {"one pole", 3e4, {-3e4}, {}, {}, {}, 1},
    {"two poles", 2e9, {-3e4, -8e4}, {}, {}, {}, 1},
    {"three poles", 2e14, {-3e4, -8e4, -1e5}, {}, {}, {}, 2},
    {"a pair", 1e10, {}, {{-2e4, 9e4}}, {}, {}, 1},
    {"a pair and a pole", 1e15, {-5e4}, {{-2e4, 9e4}}, {}, {}, 2},
    {"a pair and two poles", 1e20, {-5e4, -6e4}, {{-2e4, 9e4}}, {}, {}, 2},
    {"two zeros alone", 1e-9, {}, {}, {-3e4, -7e4}, {}, 1},
    {"one pole, three zeros", 1e-9, {-5e4}, {}, {-3e4, -7e4, -9e4}, {}, 2},
    {"two poles, one zero", 4e4, {-5e4, -2e5}, {}, {-1e4}, {}, 1},
    {"zeros on the axis", 1.0, {}, {{-2e4, 9e4}}, {}, {{0.0, 2e5}}, 1},
    {"more pairs below than above", 1e-5, {-4e4}, {}, {}, {{-1e4, 2e5}}, 1},
};

GTEST_TEST(SDomainIIR, IsTheBilinearTransformOfTheAnalogueFilter)
{
    for (const auto& row : filters) {
        SDomainIIR filter;
        filter.SampleRate = 5e5;
        SetFilter(filter, row.gain, row.poles, row.polePairs, row.zeros, row.zeroPairs);
        ASSERT_TRUE(filter.Initialize()) << row.label;
        const Reals taps = Taps(filter);
        EXPECT_EQ(taps.size(), 6 * row.sections) << row.label;
        for (const double angle : {0.0, 0.1, 0.7, 1.5, 2.6}) {
            const Complex z = std::polar(1.0, angle);
            const Complex s = 2.0 * filter.SampleRate * (1.0 - 1.0 / z) / (1.0 + 1.0 / z);
            const Complex expected = row.gain * Factors(s, row.zeros, row.zeroPairs) /
                                     Factors(s, row.poles, row.polePairs);
            // The taps are rounded a few times each, and a section's terms may cancel by a
            // factor of 100 near zero frequency.
            EXPECT_LT(std::abs(Response(taps, z) - expected), 1e-10 * std::abs(expected))
                << row.label << " at " << angle;
        }
    }
}

GTEST_TEST(SDomainIIR, StartsAsAFifthOrderLowPass)
{
    SDomainIIR filter;
    ASSERT_TRUE(filter.Initialize());
    ASSERT_EQ(filter.m_NumberOfTaps, 18);
    const Reals taps = Taps(filter);
    const double share = taps[0];
    EXPECT_EQ(taps[1], 2 * share);
    EXPECT_EQ(taps[2], share);
    EXPECT_EQ(taps[6], share);
    EXPECT_EQ(taps[13], share);
    EXPECT_EQ(taps[14], 0.0);
    EXPECT_EQ(taps[17], 0.0);
    EXPECT_NEAR(std::abs(Response(taps, 1.0)), 1.0, 1e-12);
    // -3 dB where the bilinear transform puts the corner.
    const Complex corner = std::polar(1.0, 2.0 * std::atan(650148.0708064173 / 2e6));
    EXPECT_NEAR(std::abs(Response(taps, corner)), std::sqrt(0.5), 1e-12);
}

GTEST_TEST(SDomainIIR, WithoutPolesAndZerosIsAGain)
{
    SDomainIIR filter;
    SetFilter(filter, -2.5, {}, {}, {}, {});
    ASSERT_TRUE(filter.Initialize());
    EXPECT_EQ(Taps(filter), (Reals{-2.5, 0, 0, 1, 0, 0}));
}

GTEST_TEST(SDomainIIR, ScalesHertzInPlaceAtEachInitialize)
{
    SDomainIIR filter;
    SetFilter(filter, 1.0, {-1000.0}, {{-1.0, 2.0}}, {-0.5}, {{-3.0, 4.0}});
    filter.m_FrequencyInHz = 2;
    ASSERT_TRUE(filter.Initialize());
    EXPECT_EQ(filter.m_RealPoles.m_Data[0], -1000.0);
    filter.m_FrequencyInHz = 1;
    ASSERT_TRUE(filter.Initialize());
    EXPECT_EQ(filter.m_RealPoles.m_Data[0], -6283.185307179586);
    EXPECT_EQ(filter.m_ComplexConjugatePoles.m_Data[0],
              Complex(-6.283185307179586, 12.566370614359172));
    EXPECT_EQ(filter.m_RealZeros.m_Data[0], -3.141592653589793);
    EXPECT_EQ(filter.m_ComplexConjugateZeros.m_Data[0],
              Complex(-18.849555921538759, 25.132741228718345));
    ASSERT_TRUE(filter.Initialize());
    EXPECT_EQ(filter.m_RealPoles.m_Data[0], -6283.185307179586 * 6.283185307179586);
}

GTEST_TEST(SDomainIIR, RefusesARateThatIsNotPositive)
{
    for (const double rate : {0.0, -1.0, std::numeric_limits<double>::quiet_NaN()}) {
        SDomainIIR filter;
        filter.SampleRate = rate;
        filter.m_FrequencyInHz = 1;
        EXPECT_EQ(StderrOf([&] { EXPECT_FALSE(filter.Initialize()); }),
                  "SampleRate must be positive.\n");
        EXPECT_EQ(filter.m_RealPoles.m_Data[0], -650148.0708064173);
        EXPECT_EQ(filter.m_Coefficients, nullptr);
    }
}

// Nothing guards against a zero where the transform has its own: the taps say so.
GTEST_TEST(SDomainIIR, LeavesAZeroAtTheTransformsOwnUnchecked)
{
    SDomainIIR filter;
    SetFilter(filter, 1.0, {-1000.0}, {}, {2e6}, {});
    EXPECT_TRUE(filter.Initialize());
    EXPECT_FALSE(std::isfinite(filter.m_Coefficients[1]));
}

GTEST_TEST(SDomainIIR, FinalizeGivesTheTapsBackAndInitializeMakesNewOnes)
{
    SDomainIIR filter;
    ASSERT_TRUE(filter.Initialize());
    const Reals taps = Taps(filter);
    for (int i = 0; i < 2; ++i) {
        EXPECT_TRUE(filter.Finalize());
        EXPECT_EQ(filter.m_Coefficients, nullptr);
    }
    ASSERT_TRUE(filter.Initialize());
    EXPECT_EQ(Taps(filter), taps);
    EXPECT_EQ(filter.m_Outputs.m_Count, 1U);
}

GTEST_TEST(Matrix, ReshapesWithoutLosingRoom)
{
    const double table[] = {1, 2, 3};
    Matrix<double> matrix{9, 9, 9, 9};
    matrix.Reshape(2, 2);
    matrix.Fill(table, 3);
    EXPECT_EQ(Reals(matrix.begin(), matrix.end()), (Reals{1, 2, 3, 0}));
    EXPECT_EQ(matrix.m_Strides[1], 2U);
    EXPECT_EQ(matrix.m_Capacity, 4U);
    matrix.Reshape(1, 2);
    matrix.Fill(table, 3);
    EXPECT_EQ(Reals(matrix.begin(), matrix.end()), (Reals{1, 2}));
    matrix.Reshape(0, 0);
    EXPECT_EQ(matrix.m_Count, 0U);
    matrix.Reshape(3, 2);
    EXPECT_EQ(matrix.m_Capacity, 6U);
    EXPECT_EQ(matrix.m_Sizes[0], 3U);
    EXPECT_EQ(matrix.m_Strides[1], 3U);
}
