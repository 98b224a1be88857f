// A column at once against a column sample by sample.
#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "model/drive_internal.h"
#include "tests/model/model_bench.h"

using Column = std::vector<double>;
using Bits = std::vector<std::uint64_t>;

static void Append(Bits& bits, const double* values, std::uint64_t count)
{
    for (std::uint64_t i = 0; i < count; ++i)
        bits.push_back(std::bit_cast<std::uint64_t>(values[i]));
}

static Bits BitsOf(const Column& column)
{
    Bits bits;
    Append(bits, column.data(), column.size());
    return bits;
}

// Everything that a firing changes.
static Bits StateOf(const ModelBench& bench)
{
    const Quell_PCIe_Gen2_Tx& model = bench.model;
    Bits bits = {model.m_UIDelay.m_DelayLine.m_Position, model.m_UIDelay.m_DelayLine.m_Capacity,
                 model.m_UIDelay.m_CurrentDelay, model.m_Offset.m_FiringCount};
    Append(bits, model.m_UIDelay.m_DelayLine.Elements(), model.m_UIDelay.m_DelayLine.m_Capacity);
    Append(bits, model.m_Filter.m_State1, model.m_Filter.m_NumberOfBiquads);
    Append(bits, model.m_Filter.m_State2, model.m_Filter.m_NumberOfBiquads);
    const double* const wires[] = {&bench.input,  &bench.output, model.m_Wire1, model.m_Wire2,
                                   model.m_Wire3, model.m_Wire4, model.m_Wire5, model.m_Wire6,
                                   model.m_Wire7, model.m_Wire8, model.m_Wire9, model.m_Wire10};
    for (const double* wire : wires)
        Append(bits, wire, 1);
    return bits;
}

// Two models that get the same uses, one by column and one by sample.
class Twins {
public:
    Twins(double ratio, int samplesPerBit)
        : m_Fast(ratio, samplesPerBit), m_Slow(ratio, samplesPerBit)
    {
    }

    void Use(int samplesPerBit, const Column& input, const std::string& label)
    {
        for (ModelBench* bench : {&m_Fast, &m_Slow}) {
            bench->model.m_SamplesPerBit = samplesPerBit;
            ASSERT_TRUE(bench->Prepare()) << label;
        }
        Column fast = input;
        Column slow = input;
        const auto count = static_cast<long>(input.size());
        EXPECT_TRUE(m_Fast.model.RunColumn(fast.data(), count));
        EXPECT_TRUE(Drive::FireColumn(m_Slow.model, slow.data(), count));
        ASSERT_EQ(BitsOf(fast), BitsOf(slow)) << label;
        if (count != 0) {
            ASSERT_EQ(StateOf(m_Fast), StateOf(m_Slow)) << label;
        }
        for (ModelBench* bench : {&m_Fast, &m_Slow})
            EXPECT_TRUE(bench->model.Finalize());
    }

private:
    ModelBench m_Fast;
    ModelBench m_Slow;
};

static Column MakeColumn(std::mt19937_64& random, std::size_t size)
{
    std::normal_distribution<double> noise;
    Column column(size);
    const auto cut = [&] { return random() % (size + 1); };
    switch (random() % 6) {
        case 0:
            for (double& x : column)
                x = noise(random);
            break;
        case 1:  // a pulse, then zeros
            std::generate_n(column.begin(), std::min<std::size_t>(cut(), 40),
                            [&] { return noise(random); });
            break;
        case 2:  // steps
            for (int i = 0; i < 4; ++i)
                std::fill_n(column.begin(), cut(), noise(random));
            break;
        case 3:  // a tail that changes only the sign of its zeros
            std::fill(column.begin() + static_cast<std::ptrdiff_t>(cut()), column.end(), -0.0);
            break;
        case 4:  // interrupted zeros
            for (int i = 0; i < 3 && size != 0; ++i)
                column[random() % size] = noise(random);
            break;
        default:  // numbers that run down into the subnormal range
            for (double& x : column)
                x = noise(random) * 1e-308;
            break;
    }
    return column;
}

GTEST_TEST(Column, EqualsTheSamplesBitForBit)
{
    std::mt19937_64 random(20061);
    for (int round = 0; round < 200; ++round) {
        const double ratio = std::pow(10.0, (round % 4 == 0 ? 0.0 : double(round % 9) - 2.5) / 20);
        Twins twins(ratio, 16);
        for (int use = 0; use < 5; ++use) {
            const int samplesPerBit = 1 + static_cast<int>(random() % (round % 3 == 0 ? 4 : 70));
            const std::size_t size = random() % (use == 2 ? 6000 : 300);
            twins.Use(samplesPerBit, MakeColumn(random, size),
                      "round " + std::to_string(round) + " use " + std::to_string(use));
            if (HasFatalFailure()) return;
        }
    }
}

// The lengths around the blocks in which a column is looked through.
GTEST_TEST(Column, EqualsTheSamplesAtEveryLength)
{
    Twins twins(1.0, 3);
    for (std::size_t size = 0; size < 400; ++size) {
        Column column(size);
        if (size != 0) column[0] = 1e-300;
        twins.Use(3, column, "length " + std::to_string(size));
        if (HasFatalFailure()) return;
    }
}

// What a run-down filter keeps may change sign each sample, where low rates put the poles at
// negative z, or go round a longer cycle, at high rates. The end of the constant run may meet any
// part of it.
GTEST_TEST(Column, FindsTheTailAtEveryRate)
{
    for (const double ratio : {1.0, 1.5, 0.7}) {
        for (int samplesPerBit = 1; samplesPerBit < 170; ++samplesPerBit) {
            Twins twins(ratio, samplesPerBit);
            Column column(7000);
            column[1] = 1.0;
            column[2] = -0.3;
            column[5000 + static_cast<std::size_t>(samplesPerBit) * 3] = 1e-3;
            twins.Use(samplesPerBit, column, std::to_string(samplesPerBit));
            if (HasFatalFailure()) return;
        }
    }
}

GTEST_TEST(Column, EqualsTheSamplesBeyondTheFiniteNumbers)
{
    const double infinity = std::numeric_limits<double>::infinity();
    const double nan = std::numeric_limits<double>::quiet_NaN();
    for (const double strange : {infinity, -infinity, nan, 1.7e308}) {
        ModelBench fast(1.5, 4);
        ModelBench slow(1.5, 4);
        ASSERT_TRUE(fast.Prepare() && slow.Prepare());
        Column column(300, 0.25);
        column[100] = strange;
        Column expected = column;
        fast.model.RunColumn(column.data(), 300);
        Drive::FireColumn(slow.model, expected.data(), 300);
        // Which NaN it is depends on the order in which an instruction takes its operands.
        for (std::size_t i = 0; i < column.size(); ++i)
            EXPECT_TRUE(column[i] == expected[i] ||
                        (std::isnan(column[i]) && std::isnan(expected[i])))
                << strange << " at " << i;
    }
}
