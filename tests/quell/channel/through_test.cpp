#include "quell/channel/through.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <utility>

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
    for (const auto& row : rows) {
        const std::optional<FoundPorts> found = FindPortOrder(FourPort(0.001, row.entries));
        ASSERT_EQ(found.has_value(), row.order.has_value()) << row.label;
        if (!found) continue;
        EXPECT_EQ(found->order, *row.order) << row.label;
        // Two points tell nothing of when coupled waves arrive.
        EXPECT_TRUE(found->assumed) << row.label;
    }
}

GTEST_TEST(Through, PortsAreFoundWhereSomethingPasses)
{
    // A capacitor lets nothing pass at the first of the points.
    Touchstone file = FourPort(1e-4, {{3, 1, 0.9}, {4, 2, 0.8}});
    for (size_t k = 0; k < 16; ++k)
        file.parameters[k] *= 1e-3;
    ASSERT_TRUE(FindPortOrder(file).has_value());
    EXPECT_EQ(FindPortOrder(file)->order, (PortOrder{1, 2, 3, 4}));
    // Crosstalk that grows with frequency is no through path.
    file = FourPort(1e-4, {{3, 1, 0.4}, {4, 2, 0.4}});
    for (size_t k = 0; k < 16; ++k)
        file.parameters[k] *= 1e-3;
    EXPECT_FALSE(FindPortOrder(file).has_value());
}

// Two coupled lines of a nanosecond: what couples forwards arrives with the wave, what couples
// backwards from time zero on. near: the port beside port 1; the other lines end at 2 and far.
Touchstone CoupledLines(int nearEnd, int farEnd, double coupling)
{
    Touchstone file;
    file.ports = 4;
    const auto set = [&](int a, int b, std::complex<double> value) {
        std::complex<double>* point = &file.parameters[file.parameters.size() - 16];
        point[(a - 1) * 4 + b - 1] = value;
        point[(b - 1) * 4 + a - 1] = value;
    };
    for (int k = 1; k <= 400; ++k) {
        const double f = 50e6 * k;
        const auto delayed = [f](double delay) {
            return std::polar(1.0, -2 * std::numbers::pi * f * delay);
        };
        file.frequency.push_back(f);
        file.parameters.resize(file.parameters.size() + 16);
        const std::complex<double> backward = coupling * (1.0 - delayed(2e-9));
        const std::complex<double> forward =
            std::complex<double>(0, -coupling * f / 5e9) * delayed(1e-9);
        set(1, 2, 0.9 * delayed(1e-9));
        set(nearEnd, farEnd, 0.9 * delayed(1e-9));
        set(1, nearEnd, backward);
        set(2, farEnd, backward);
        set(1, farEnd, forward);
        set(2, nearEnd, forward);
    }
    return file;
}

GTEST_TEST(Through, CouplingTellsARingFromTheUsualOrder)
{
    static const struct {
        const char* label;
        int nearEnd, farEnd;
        double coupling;
        FoundPorts found;
    } rows[] = {
        {"usual", 3, 4, 0.03, {{1, 3, 2, 4}, false}},
        {"ring", 4, 3, 0.03, {{1, 4, 2, 3}, false}},
        {"too weak to tell", 4, 3, 1e-5, {{1, 3, 2, 4}, true}},
    };
    for (const auto& row : rows) {
        const auto found = FindPortOrder(CoupledLines(row.nearEnd, row.farEnd, row.coupling));
        ASSERT_TRUE(found.has_value()) << row.label;
        EXPECT_EQ(found->order, row.found.order) << row.label;
        EXPECT_EQ(found->assumed, row.found.assumed) << row.label;
    }
}

GTEST_TEST(Through, TheLargestParameterHasItsPlace)
{
    Touchstone file = FourPort(0.5, {});
    file.parameters[16 + 2 * 4 + 1] = {0, -1.25};
    const LargestParameter largest = FindLargestParameter(file);
    EXPECT_EQ(largest.magnitude, 1.25);
    EXPECT_EQ(largest.frequency, 2e7);
    EXPECT_EQ(largest.out, 3);
    EXPECT_EQ(largest.in, 2);
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
