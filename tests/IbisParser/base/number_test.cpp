// Numbers of the common helpers, table cells and R/L/C tokens.
#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <cstdlib>
#include <random>
#include <string>

#include "IbisParser/base/clocale.h"
#include "IbisParser/cmn.h"
#include "IbisParser/errlog.h"
#include "IbisParser/parse.h"
#include "tests/support/CommaLocale.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TempDir.h"

static const double untouched = -77.0;

GTEST_TEST(CmnNumber, ValuesWithScaleLetters)
{
    static const struct {
        const char* text;
        int result;
        double value;
    } rows[] = {
        {"1.5n", 1, 1.5 * 1e-9}, {"1.5nH", 1, 1.5 * 1e-9},
        {"3mA", 1, 3 * 1e-3},    {"5V", 1, 5.0},
        {"2Meg", 1, 2e6},        {"1k5", 2, 1000.0},
        {"1K", 1, 1.0},          {"1T", 1, 1e12},
        {"1f", 1, 1e-15},        {"1a", 1, 1.0},
        {"1.5 ", 0, untouched},  {"1.5%", 0, untouched},
        {"1.5.2", 0, untouched}, {"V", 0, untouched},
        {"", 0, untouched},      {" +2.5e3p", 1, 2.5e3 * 1e-12},
        {"-.5", 1, -0.5},        {"1.", 1, 1.0},
        {"1e", 1, 1.0},          {"1e+", 0 + 1, 1.0},
        {"2e3V", 1, 2000.0},     {"0x1F", 1, 31.0},
        {"1e400", 1, HUGE_VAL},  {"-1e400", 1, -HUGE_VAL},
        {"1e-400", 1, 0.0},      {"1,5", 0, untouched},
    };
    for (const auto& row : rows) {
        double value = untouched;
        EXPECT_EQ(CMN_Get_Value(row.text, &value), row.result) << row.text;
        EXPECT_EQ(value, row.value) << row.text;
    }
}

// The fast path must be strtod in value and end, whatever the text.
GTEST_TEST(CmnNumber, EqualsStrtodOfTheCLocale)
{
    std::mt19937 random(1);
    const std::string alphabet = "0123456789012345678900..eE+-xXinfNaA pP";
    for (int i = 0; i < 300000; ++i) {
        std::string text(1 + random() % 24, ' ');
        for (char& c : text)
            c = alphabet[random() % alphabet.size()];
        char* end = nullptr;
        const double expected = std::strtod(text.c_str(), &end);
        const char* stop = nullptr;
        const double value = StrtodC(text.c_str(), &stop);
        ASSERT_EQ(stop, end) << text;
        ASSERT_TRUE(value == expected || (std::isnan(value) && std::isnan(expected))) << text;
        ASSERT_EQ(std::signbit(value), std::signbit(expected)) << text;
    }
}

GTEST_TEST(CmnNumber, TableCells)
{
    static const struct {
        const char* label;
        const char* text;
        int result, state;
        double value;
        const char* log;
    } rows[] = {
        {"absent", nullptr, 1, CELL_ABSENT, untouched, ""},
        {"number", "2m", 1, CELL_NUMBER, 2 * 1e-3, ""},
        {"NA", "na", 1, CELL_NA, 0.0, ""},
        {"NA and more", "NAN", 1, CELL_NUMBER, NAN, ""},
        {"digit in the unit", "1k5", 1, CELL_NUMBER, 1000.0,
         "W1910 (line    4) - Suspicious Key Typical Value (\"1k5\"); Numeric in Scale\n"},
        {"text", "x", 0, CELL_ABSENT, untouched, "E1909 (line    4) - Invalid Key Value (\"x\")\n"},
    };
    LogCapture log;
    gulLineNum = 4;
    for (const auto& row : rows) {
        SCOPED_TRACE(row.label);
        double value = untouched;
        int state = 9;
        EXPECT_EQ(CMN_GetColValue(row.text, "Typical", "Key", &value, &state), row.result);
        EXPECT_EQ(state, row.state);
        EXPECT_TRUE(value == row.value || (std::isnan(value) && std::isnan(row.value)));
        EXPECT_EQ(log.Take(), row.log);
    }
}

GTEST_TEST(CmnNumber, PlainNumbers)
{
    static const struct {
        const char* text;
        int uiResult;
        unsigned ui;
        int doubleResult;
        double number;
    } rows[] = {
        {"12", 1, 12, 1, 12.0}, {"12ab", 2, 12, 2, 12.0},
        {"-5", 0, 7, 1, -5.0},  {"", 0, 7, 0, 0.0},
        {"x", 0, 7, 0, 0.0},    {"1.5", 2, 1, 1, 1.5},
        {" 3", 1, 3, 1, 3.0},   {"4294967297", 1, 1, 1, 4294967297.0},
    };
    for (const auto& row : rows) {
        unsigned ui = 7;
        double number = untouched;
        EXPECT_EQ(CMN_StrToUI(row.text, &ui), row.uiResult) << row.text;
        EXPECT_EQ(ui, row.ui) << row.text;
        EXPECT_EQ(CMN_StrToDbl(row.text, &number), row.doubleResult) << row.text;
        EXPECT_EQ(number, row.number) << row.text;
    }
}

GTEST_TEST(CmnNumber, RlcTokens)
{
    static const struct {
        const char* text;
        int result;
        double value;
        const char* rest;  // null: not set
        const char* log;
    } rows[] = {
        {"L=1.2nH R=0.3 /", 4, 1.2 * 1e-9, "R=0.3 /", ""},
        {" \tR\t=\t0.3 /", 2, 0.3, "/", ""},
        {"C=1p/L=2", 3, 1e-12, "/L=2", ""},
        {"Len = 2", 1, 2.0, "", ""},
        {"/  Fork", 5, untouched, "Fork", ""},
        {"  ", 6, untouched, nullptr, ""},
        {"= 3", 0, untouched, nullptr, "E1918 (line    2) - Unexpected '=' found\n"},
        {"len=3", 0, untouched, "=3",
         "E1919 (line    2) - Unexpected token 'len' found in R/L/C section\n"},
        {"L ", 6, untouched, nullptr, "E1920 (line    2) - Premature end of R/L/C section\n"},
        {"L = ", 6, untouched, nullptr, "E1920 (line    2) - Premature end of R/L/C section\n"},
        {"L 3 C=1 / R=2", 0, untouched, " R=2",
         "E1921 (line    2) - Error parsing R/L/C section. Missing '='\n"},
        {"L 3", 0, untouched, "", "E1921 (line    2) - Error parsing R/L/C section. Missing '='\n"},
        {"L=/ R=1", 4, 0.0, "/ R=1", "E1923 (line    2) - Numerical value expected\n"},
        {"L=x1 /", 4, 0.0, "/", "E1922 (line    2) - Illegal number found 'x1'\n"},
        {"L=1n5 /", 4, 1e-9, "/", "E1922 (line    2) - Illegal number found '1n5'\n"},
    };
    LogCapture log;
    gulLineNum = 2;
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        std::string text = row.text;
        double value = untouched;
        char* next = nullptr;
        EXPECT_EQ(CMN_gettok(text.data(), &value, &next), row.result);
        EXPECT_EQ(value, row.value);
        if (row.rest == nullptr)
            EXPECT_EQ(next, nullptr);
        else
            EXPECT_STREQ(next, row.rest);
        EXPECT_EQ(log.Take(), row.log);
    }
    std::string tooLong(5000, 'L');
    double value = 0.0;
    char* next = nullptr;
    EXPECT_EQ(CMN_gettok(tooLong.data(), &value, &next), 0);
    EXPECT_EQ(next, tooLong.data() + tooLong.size());
}

GTEST_TEST(CmnNumber, HostLocaleDoesNotMatter)
{
    const TempDir dir;
    if (SetCommaLocale(dir) == nullptr) GTEST_SKIP() << "no comma locale";
    char printed[8];
    std::snprintf(printed, sizeof printed, "%.1f", 1.5);
    ASSERT_STREQ(printed, "1,5");

    double value = 0.0;
    EXPECT_EQ(CMN_Get_Value("1.5n", &value), 1);
    EXPECT_EQ(value, 1.5 * 1e-9);
    EXPECT_EQ(CMN_Get_Value("+1.5", &value), 1);
    EXPECT_EQ(value, 1.5);
    EXPECT_EQ(CMN_Get_Value("1,5", &value), 0);
    LogCapture log;
    ERRLOG_WarnNew(1403, 1.5);
    EXPECT_EQ(log.Take(), "W1403 - Value 1.500000e+00 repeated in the First Column\n");
    std::snprintf(printed, sizeof printed, "%.1f", 1.5);
    EXPECT_STREQ(printed, "1,5") << "the host's locale was changed";
}
