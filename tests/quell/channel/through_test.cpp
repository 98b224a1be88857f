#include "quell/channel/through.h"

#include <gtest/gtest.h>

namespace quell {
namespace {

// A 4-port with one value everywhere and the given entries on top, the same both ways.
struct Entry {
    int out;
    int in;
    std::complex<double> value;
};

Touchstone FourPort(double elsewhere, const std::vector<Entry>& entries)
{
    Touchstone file;
    file.ports = 4;
    file.frequency = {1e7, 2e7};
    file.parameters.assign(32, elsewhere);
    for (size_t point = 0; point < 2; ++point) {
        for (const Entry& e : entries) {
            const size_t out = static_cast<size_t>(e.out - 1);
            const size_t in = static_cast<size_t>(e.in - 1);
            file.parameters[point * 16 + out * 4 + in] = e.value;
            file.parameters[point * 16 + in * 4 + out] = e.value;
        }
    }
    return file;
}

GTEST_TEST(Through, PortOrderIsThatOfTheStrongPaths)
{
    static const struct {
        const char* label;
        std::vector<Entry> entries;
        std::optional<PortOrder> order;
    } rows[] = {
        {"odd to even", {{2, 1, 0.9}, {4, 3, 0.8}}, PortOrder{1, 3, 2, 4}},
        {"halves", {{3, 1, 0.9}, {4, 2, 0.8}}, PortOrder{1, 2, 3, 4}},
        {"crossed", {{4, 1, 0.9}, {3, 2, 0.8}}, PortOrder{1, 2, 4, 3}},
        {"with coupling of a quarter",
         {{2, 1, 0.9}, {4, 3, 0.9}, {3, 1, 0.22}, {4, 2, 0.22}},
         PortOrder{1, 3, 2, 4}},
        {"one path broken", {{2, 1, 0.9}, {4, 3, 0.05}}, std::nullopt},
        {"two ways alike", {{2, 1, 0.5}, {4, 3, 0.5}, {3, 1, 0.4}, {4, 2, 0.4}}, std::nullopt},
        {"crosstalk", {{3, 1, 0.09}, {4, 2, 0.085}}, std::nullopt},
    };
    for (const auto& row : rows)
        EXPECT_EQ(FindPortOrder(FourPort(0.001, row.entries)), row.order) << row.label;
}

GTEST_TEST(Through, DifferentialResponseOfAHandBuiltFourPort)
{
    // In at 1 and 3, out at 2 and 4: (S21 - S23 - S41 + S43) / 2.
    const Touchstone file =
        FourPort(0, {{2, 1, {0, -0.75}}, {4, 3, {0, -0.5}}, {2, 3, 0.25}, {4, 1, 0.125}});
    const FrequencyResponse straight = ThroughResponse(file, {1, 3, 2, 4});
    EXPECT_EQ(straight.gain[0], std::complex<double>(-0.1875, -0.625));
    // Both ends turned over change nothing; one of them changes the sign.
    EXPECT_EQ(ThroughResponse(file, {3, 1, 4, 2}).gain[0], straight.gain[0]);
    EXPECT_EQ(ThroughResponse(file, {1, 3, 4, 2}).gain[0], -straight.gain[0]);
}

GTEST_TEST(Through, PortOrderAsText)
{
    EXPECT_EQ(ParsePortOrder("13,24"), (PortOrder{1, 3, 2, 4}));
    EXPECT_EQ(ParsePortOrder("2,1"), (PortOrder{2, 0, 1, 0}));
    EXPECT_EQ(PortOrderText({1, 3, 2, 4}), "1->2, 3->4");
    for (const char* text :
         {"", ",", "13", "13,2", "13,23", "15,24", "1,1", "1,3", "13,24,", "a,b"})
        EXPECT_EQ(ParsePortOrder(text), std::nullopt) << text;
}

}  // namespace
}  // namespace quell
