#include "quell/channel/touchstone.h"

#include <gtest/gtest.h>

#include <cmath>

#include "quell/base/errors.h"

namespace quell {
namespace {

std::string Error(const std::string& text, int ports = 2)
{
    try {
        ParseTouchstone(text, "f", ports);
    } catch (const InputError& error) {
        return error.what();
    }
    return "read";
}

GTEST_TEST(Touchstone, PortsComeFromTheExtension)
{
    static const struct {
        const char* name;
        int ports;
    } rows[] = {
        {"a.s2p", 2}, {"A.S4P", 4},  {"x.y.s12p", 12},       {"a.csv", 0},     {"s2p", 0},
        {"a.sp", 0},  {"a.s2px", 0}, {"a.s99999999999p", 0}, {"dir.s2p/x", 0}, {"a.s-2p", 0},
    };
    for (const auto& row : rows)
        EXPECT_EQ(TouchstonePorts(row.name), row.ports) << row.name;
}

GTEST_TEST(Touchstone, OptionLineInAnyOrderOrMissing)
{
    static const struct {
        const char* options;
        double frequency;
        std::complex<double> s21;
        double reference;
    } rows[] = {
        {"", 1e9, {0, 0.5}, 50},
        {"#\n", 1e9, {0, 0.5}, 50},
        {"# MHz MA S R 75.0\n", 1e6, {0, 0.5}, 75},
        {"# r 33 ri s HZ ! note\n", 1, {0.5, 90}, 33},
        {"#kHz\n", 1e3, {0, 0.5}, 50},
        {"\t#\tGHZ S DB R 50\n", 1e9, {0, std::pow(10.0, 0.025)}, 50},
        {"# Hz S RI R 50\n# GHz S MA R 75\n", 1, {0.5, 90}, 50},
    };
    for (const auto& row : rows) {
        const Touchstone file = ParseTouchstone(
            std::string(row.options) + "1 0 0 0.5 90 0 0 0 0\n2 0 0 0.5 90 0 0 0 0\n", "f", 2);
        ASSERT_EQ(file.frequency.size(), 2u) << row.options;
        EXPECT_EQ(file.frequency[0], row.frequency) << row.options;
        EXPECT_EQ(file.reference, row.reference) << row.options;
        EXPECT_NEAR(std::abs(file.S(0, 2, 1) - row.s21), 0, 1e-15) << row.options;
    }
}

GTEST_TEST(Touchstone, TwoPortsAreWrittenByColumnsAndOthersByRows)
{
    const Touchstone two =
        ParseTouchstone("# Hz S RI R 50\n1 11 0 21 0 12 0 22 0\n2 0 0 0 0 0 0 0 0", "f", 2);
    for (int out = 1; out <= 2; ++out)
        for (int in = 1; in <= 2; ++in)
            EXPECT_EQ(two.S(0, out, in).real(), 10 * out + in);

    std::string text = "# Hz S RI R 50\n";
    for (int point = 1; point <= 2; ++point) {
        text += std::to_string(point);
        for (int out = 1; out <= 4; ++out) {
            for (int in = 1; in <= 4; ++in)
                text += " " + std::to_string(10 * out + in) + " " + std::to_string(point);
            text += " ! row\n";
        }
    }
    const Touchstone four = ParseTouchstone(text, "f", 4);
    for (int out = 1; out <= 4; ++out)
        for (int in = 1; in <= 4; ++in)
            EXPECT_EQ(four.S(1, out, in), std::complex<double>(10 * out + in, 2));
}

GTEST_TEST(Touchstone, LineEndsCommentsWrappingAndNoiseData)
{
    const char* const texts[] = {
        "! caf\xC3\xA9 \xFF\r\n# Hz S RI R 50\r\n1 0 0 1 0 1 0 0 0\r\n2 0 0 1 0 1 0 0 0\r\n",
        "# Hz S RI R 50\r1 0 0 1 0 1 0 0 0\r2 0 0 1 0 1 0 0 0",
        "# Hz S RI R 50\n1 0 0 1\t0 ! half\n\n! between\n1 0 0 0 2 0 0 1 0 1\n0 0 0",
        (R"(# Hz S RI R 50
1 0 0 1 0 1 0 0 0
2 0 0 1 0 1 0 0 0
! noise
1 0.5 0.2 30 0.4
2 0.6 0.2 31 0.5
)"),
    };
    for (const char* text : texts) {
        const Touchstone file = ParseTouchstone(text, "f", 2);
        ASSERT_EQ(file.frequency, (std::vector<double>{1, 2})) << text;
        EXPECT_EQ(file.S(1, 2, 1), 1.0) << text;
    }
}

GTEST_TEST(Touchstone, ABadFileIsOneLineWithItsPlace)
{
    static const struct {
        const char* text;
        const char* message;
    } rows[] = {
        {"", "f: fewer than two frequencies"},
        {"1 0 0 0 0 0 0 0 0\n", "f: fewer than two frequencies"},
        {"# GHz Q\n", "f:1: unknown option 'Q'"},
        {"# GHz Z MA R 50\n", "f:1: the file holds Z-parameters; only S-parameters are read"},
        {"# R\n", "f:1: reference resistance '' is not positive"},
        {"\n# R -50\n", "f:2: reference resistance '-50' is not positive"},
        {"[Version] 2.0\n", "f:1: keyword '[Version]': only Touchstone version 1 is read"},
        {"1 0 0 0 0 0 0 0 0\n2 0 0 0 0 0 0 0 x\n", "f:2: 'x' is not a number"},
        {"1 0 0 0 0 0 0 0 0\n2 0 0 0 0 0 0\n", "f:2: this point has 7 numbers; a 2-port has 9"},
        {"1 0 0 0 0 0 0 0 0\n# Hz\n", "f:2: option line after the data"},
        {"-1 0 0 0 0 0 0 0 0\n", "f:1: bad frequency -1"},
        {"2 0 0 0 0 0 0 0 0\n1 0 0 0 0 0 0 0 0\n",
         "f:2: frequency 1 GHz after 2 GHz: not ascending, or a point before it has a number too "
         "few or too many"},
        {"# DB\n1 9999 0 0 0 0 0 0 0\n", "f:2: a parameter is too large"},
        {"# Hz S RI R 50\n1 0 0 1 0 1 0 0 0\n2 0 0 1 0 1 0 0 0\n1 1 1 1 1\n1 1 1\n",
         "f:5: noise data have five numbers on a line"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(Error(row.text), row.message) << row.text;
    EXPECT_EQ(Error(std::string("1 0\0", 4)), "f:1: '0?' is not a number");
}

}  // namespace
}  // namespace quell
