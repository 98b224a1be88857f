#include "ami/ParamParser.h"

#include <gtest/gtest.h>

#include <clocale>
#include <limits>
#include <string>

#include "tests/support/CommaLocale.h"

using TalvernQuell::AMI::ParamParser;

static const double Infinity = std::numeric_limits<double>::infinity();
static const int Smallest = std::numeric_limits<int>::min();

static const struct {
    const char* text;
    const char* name;
    double expected;
    int truncated;
    bool found;
} numbers[] = {
    {"(Tx (Gain 2) (Mode (Level 3)))", "Tx.Gain", 2.0, 2, true},
    {"(Tx (Gain 2) (Mode (Level 3)))", "Tx.Mode.Level", 3.0, 3, true},
    {"(Tx (Mode (Level 3)) (Gain 2))", "Tx.Gain", 2.0, 2, true},
    {"(Tx (Gain 2))", "Gain", 0, 0, false},
    {"(Tx (Gain 2))", "tx.Gain", 0, 0, false},
    {"(Tx (Gain 2))", "Tx.Gai", 0, 0, false},
    {"(Tx (Gain 2))", "Tx.Gain ", 0, 0, false},
    {"(Tx (Gain 2))", "Tx", 0, 0, false},
    {"(Tx (Gain 2))", "", 0, 0, false},
    {"(Tx (Mode (Level 3)))", "Tx.Mode", 0, 0, false},
    {"(Tx (Swing 1.9))", "Tx.Swing", 1.9, 1, true},
    {"(Tx (Swing -1.9))", "Tx.Swing", -1.9, -1, true},
    {"(Tx (Swing +2e0))", "Tx.Swing", 2.0, 2, true},
    {"(Tx (Swing 0x1p-1))", "Tx.Swing", 0.5, 0, true},
    {"(Tx (Swing inf))", "Tx.Swing", Infinity, Smallest, true},
    {"(Tx (Swing 3000000000))", "Tx.Swing", 3e9, Smallest, true},
    {"(Tx (Swing \"5\"))", "Tx.Swing", 5.0, 5, true},
    {"(Tx (De \"x\" 3))", "Tx.De", 0, 0, false},
    {"(Tx (De 4 x))", "Tx.De", 4.0, 4, true},
    {"(Tx (De 3.5dB))", "Tx.De", 0, 0, false},
    {"(Tx (De True))", "Tx.De", 0, 0, false},
    {"(Tx (De \"\"))", "Tx.De", 0, 0, false},
    {"(Tx (A (G 1)) (A (G 2)) (G 3))", "Tx.A.G", 1.0, 1, true},
    {"(Tx (A (H 1)) (A (G 2)))", "Tx.A.G", 2.0, 2, true},
    {"(Tx (A (B.G 7)))", "Tx.A.B.G", 7.0, 7, true},
    {"(Tx (A.B (G 8)) (A (B.G 7)))", "Tx.A.B.G", 8.0, 8, true},
    {"(Tx ((G 6)))", "Tx..G", 6.0, 6, true},
    {"((G 6))", ".G", 6.0, 6, true},
    {"(Tx (None) (G 6))", "Tx.G", 6.0, 6, true},
    {"(Tx 5)", "Tx", 0, 0, false},
    {"", "Tx.G", 0, 0, false},
    {"(Tx (G 6)", "Tx.G", 0, 0, false},
    {"Tx (G 6)", "Tx.G", 0, 0, false},
    {"(Root (None))", "Root.None", 0, 0, false},
};

GTEST_TEST(ParamParser, FindsTheFirstValueOfALeafAsANumber)
{
    for (const auto& row : numbers) {
        const ParamParser parser(row.text);
        double real = -77.0;
        int integer = -77;
        EXPECT_EQ(parser.GetValue(real, row.name), row.found) << row.text << " " << row.name;
        EXPECT_EQ(parser.GetValue(integer, row.name), row.found) << row.text << " " << row.name;
        EXPECT_EQ(real, row.found ? row.expected : -77.0) << row.text << " " << row.name;
        EXPECT_EQ(integer, row.found ? row.truncated : -77) << row.text << " " << row.name;
    }
}

GTEST_TEST(ParamParser, ReadsThePointWhereTheHostHasAComma)
{
    const TempDir dir;
    if (SetCommaLocale(dir) == nullptr) GTEST_SKIP() << "no comma locale";
    ASSERT_STREQ(std::localeconv()->decimal_point, ",");
    const ParamParser parser("(Tx (Point 3.5) (Comma 3,5))");
    double value = 0.0;
    EXPECT_TRUE(parser.GetValue(value, "Tx.Point"));
    EXPECT_EQ(value, 3.5);
    EXPECT_FALSE(parser.GetValue(value, "Tx.Comma"));
}

GTEST_TEST(ParamParser, TakesOnlyTheTwoWordsAsBooleans)
{
    static const struct {
        const char* text;
        bool found;
        bool expected;
    } words[] = {
        {"(Tx (On True))", true, true},     {"(Tx (On False))", true, false},
        {"(Tx (On \"True\"))", true, true}, {"(Tx (On true))", false, false},
        {"(Tx (On TRUE))", false, false},   {"(Tx (On 1))", false, false},
    };
    for (const auto& row : words) {
        const ParamParser parser(row.text);
        for (const bool before : {false, true}) {
            bool on = before;
            EXPECT_EQ(parser.GetValue(on, "Tx.On"), row.found) << row.text;
            EXPECT_EQ(on, row.found ? row.expected : before) << row.text;
        }
    }
}

GTEST_TEST(ParamParser, SaysWhetherThereIsAStringAndTakesTheOldArray)
{
    const ParamParser parser("(Tx (Name \"a b\") (Level 3))");
    EXPECT_TRUE(parser.GetValue(new char[8], "Tx.Name"));
    EXPECT_TRUE(parser.GetValue(static_cast<char*>(nullptr), "Tx.Name"));
    char kept[] = "kept";
    EXPECT_FALSE(parser.GetValue(kept, "Tx.Level"));
    EXPECT_FALSE(parser.GetValue(kept, "Tx.Other"));
    EXPECT_STREQ(kept, "kept");
}

GTEST_TEST(ParamParser, ShowsLeavesAndBranches)
{
    const ParamParser parser("(Tx (Level 3) (Mode (Deep (Er 1)) (Level 4)))");
    ASSERT_EQ(parser.parsed, 1);
    const auto* const root = static_cast<const _tagBranchStruct*>(parser.tree->nodes[0].detail);
    EXPECT_TRUE(parser.IsParamLeafBranch(root));
    EXPECT_FALSE(parser.IsParamLeafBranch(nullptr));
    ASSERT_EQ(root->childCount, 2);
    const auto* const mode = static_cast<const _tagBranchStruct*>(root->children[1].detail);
    EXPECT_FALSE(parser.IsParamLeafBranch(mode));
    const _tagBranchStruct childless = {};
    EXPECT_FALSE(parser.IsParamLeafBranch(&childless));

    EXPECT_EQ(parser.FindLeafWithName(&childless, "Level", ""), nullptr);
    EXPECT_EQ(parser.FindLeafWithName(nullptr, "Level", ""), nullptr);
    const _tagLeafStruct* const leaf = parser.FindLeafWithName(mode, "Up.Mode.Level", "Up");
    ASSERT_NE(leaf, nullptr);
    EXPECT_STREQ(leaf->values[0].text, "4");
    EXPECT_EQ(parser.GetLeaf("Tx.Mode.Level"), leaf);

    const ParamParser failed("(Tx");
    EXPECT_EQ(failed.parsed, 0);
    EXPECT_EQ(failed.tree, nullptr);
    EXPECT_EQ(failed.GetLeaf("Tx"), nullptr);
}

// The text decides the depth, so neither stack nor time may grow with its square.
GTEST_TEST(ParamParser, LooksThroughAMillionNestedLists)
{
    const int depth = 1000000;
    std::string text;
    for (int i = 0; i < depth; ++i)
        text += "(A ";
    text += "(G 5)";
    text += std::string(depth, ')');
    const ParamParser parser(text.c_str());
    ASSERT_EQ(parser.parsed, 1);
    std::string name;
    for (int i = 0; i < depth; ++i)
        name += "A.";
    name += "G";
    double value = 0.0;
    EXPECT_TRUE(parser.GetValue(value, name.c_str()));
    EXPECT_EQ(value, 5.0);
    EXPECT_FALSE(parser.GetValue(value, "A.G"));
}
