#include "quell/base/numbers.h"

#include <gtest/gtest.h>

#include <cmath>

#include "quell/base/lines.h"

namespace quell {
namespace {

GTEST_TEST(Numbers, TextThatIsANumberAndTextThatIsNone)
{
    static const struct {
        const char* text;
        std::optional<double> value;
    } rows[] = {
        {"1.5", 1.5},
        {"+2", 2.0},
        {"-.5", -0.5},
        {"5.00000000e+007", 5e7},
        {"1e-400", 0.0},
        {"0.0000e-999", 0.0},
        {"1e400", std::nullopt},
        {"inf", std::nullopt},
        {"-nan", std::nullopt},
        {"1,5", std::nullopt},
        {"1.5x", std::nullopt},
        {"+-1", std::nullopt},
        {"0x10", std::nullopt},
        {"-", std::nullopt},
        {"", std::nullopt},
    };
    for (const auto& row : rows)
        EXPECT_EQ(ParseNumber(row.text), row.value) << row.text;
}

GTEST_TEST(Numbers, QuantitiesTakeAScaleLetterAndTheirUnit)
{
    static const struct {
        const char* text;
        const char* unit;
        std::optional<double> value;
    } rows[] = {
        {"2.5GHz", "Hz", 2.5e9},
        {"2.5 GHz", "Hz", 2.5e9},
        {"5e9", "bit/s", 5e9},
        {"12.5p", "s", 12.5e-12},
        {"2mV", "V", 2e-3},
        {"8dB", "dB", 8.0},
        {"8dBm", "dB", std::nullopt},
        {"2.5GHzz", "Hz", std::nullopt},
        {"1e308T", "Hz", std::nullopt},
        {"GHz", "Hz", std::nullopt},
    };
    for (const auto& row : rows)
        EXPECT_EQ(ParseQuantity(row.text, row.unit), row.value) << row.text;
}

GTEST_TEST(Numbers, ExactTextReadsBackBitForBit)
{
    for (const double value : {0.1, 1.0 / 3, 5e-324, -1.7976931348623157e308, 1e9, 0.0})
        EXPECT_EQ(ParseNumber(ExactText(value)), value);
}

GTEST_TEST(Numbers, EngineeringNotationRoundsIntoTheNextPrefix)
{
    EXPECT_EQ(UnitText(1.25e-11, "s"), "12.5 ps");
    EXPECT_EQ(UnitText(2.5e9, "Hz"), "2.5 GHz");
    EXPECT_EQ(UnitText(999.99, "Hz"), "1 kHz");
    EXPECT_EQ(UnitText(9.999999e8, "Hz"), "1 GHz");
    EXPECT_EQ(UnitText(0, "s"), "0 s");
    EXPECT_EQ(UnitText(1e-20, "s"), "1e-20 s");
}

GTEST_TEST(Lines, AllThreeLineEndsCount)
{
    LineWalker lines(
        "\xEF\xBB\xBF"
        "a\r\nb\rc\n\nd");
    std::string_view line;
    std::string seen;
    while (lines.Next(line))
        seen += std::to_string(lines.Number()) + std::string(line) + ";";
    EXPECT_EQ(seen, "1a;2b;3c;4;5d;");
}

}  // namespace
}  // namespace quell
