// The rules of AMI parameter files: each reserved parameter in all its legal shapes, and each of
// its rules broken one at a time.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "IbisParser/algmod.h"
#include "IbisParser/cmn.h"
#include "IbisParser/parse.h"
#include "tests/support/Messages.h"

typedef std::vector<std::string> Strings;

struct Rule {
    const char* name;
    Strings usages;
    Strings types;
    Strings formats;  // empty: forbidden
    Strings defaults;
    Strings badDefaults;
    bool needsDefault;
};

static const Strings s_jitter = {"Table 1 2", "Table", "Gaussian 0.1 2", "Dual-Dirac 1 2 3",
                                 "DjRj 1e-3 2 3"};
static const Strings s_values = {"Value 1", "Range 1 2 3", "Corner 1 2.5 3"};

static const std::vector<Rule> s_rules = {
    {"Init_Returns_Impulse", {"Info"}, {"Boolean"}, {}, {"True", "whatever"}, {}, true},
    {"GetWave_Exists", {"Info"}, {"Boolean"}, {}, {"False", "0"}, {}, true},
    {"Max_Init_Aggressors", {"Info"}, {"Integer"}, {}, {"25"}, {"2.5", "x", "True"}, true},
    {"Ignore_Bits", {"Info", "Out"}, {"Integer"}, {}, {"0"}, {"1e3", "x"}, true},
    {"Tx_Jitter", {"Info", "Out"}, {"Float", "UI"}, s_jitter, {"0", "0.5"}, {"x", "True"}, false},
    {"Tx_DCD", {"Info", "Out"}, {"Float", "UI"}, s_values, {"0", "0.5"}, {"x"}, false},
    {"Rx_Clock_PDF", {"Info", "Out"}, {"Float", "UI"}, s_jitter, {"0.5"}, {"5ps"}, false},
    {"Rx_Receiver_Sensitivity", {"Info", "Out"}, {"Float"}, s_values, {"0.1"}, {"x"}, false},
    {"Use_Init_Output", {"Info"}, {"Boolean"}, {}, {"True", "False"}, {"true", "1"}, true},
};

static const char* const s_usages[] = {"In", "Out", "Info", "InOut", "Sometimes"};
static const char* const s_types[] = {"Float", "Integer", "String", "Boolean",
                                      "Tap",   "UI",      "Complex"};
static const char* const s_formats[] = {"Value", "Range",     "Corner",   "Dual-Dirac",
                                        "DjRj",  "Table",     "Gaussian", "List",
                                        "Steps", "Increment", "Spline"};

// The leaves of a parameter by kind, as text after the kind; an absent one is not written.
struct Leaves {
    std::string usage, type, format, defaultValue;
    bool description = true;
    std::string extra;

    std::string Text() const
    {
        const auto leaf = [](const char* kind, const std::string& value) {
            return value.empty() ? "" : std::string(" (") + kind + " " + value + ")";
        };
        return leaf("Usage", usage) + leaf("Type", type) + leaf("Format", format) +
               leaf("Default", defaultValue) + (description ? " (Description \"d\")" : "") + extra;
    }
};

static Leaves s_legal(const Rule& rule)
{
    Leaves leaves;
    leaves.usage = rule.usages[0];
    leaves.type = rule.types[0];
    if (!rule.formats.empty()) leaves.format = rule.formats[0];
    leaves.defaultValue = rule.defaults[0];
    return leaves;
}

// The messages for a parameter beside the two that every file must have.
static Strings s_check(Messages& messages, const Rule& rule, const std::string& leaves)
{
    std::string text = "(root (Reserved_Parameters";
    for (int i = 0; i < 2; ++i)
        if (rule.name != std::string(s_rules[static_cast<std::size_t>(i)].name))
            text += std::string(" (") + s_rules[static_cast<std::size_t>(i)].name +
                    s_legal(s_rules[static_cast<std::size_t>(i)]).Text() + ")";
    text += std::string(" (") + rule.name + leaves + ")))";
    gsBuffer = CMN_StrMake(text.c_str());
    AMI_Test();
    EXPECT_EQ(gsBuffer, nullptr) << "the text is released";
    return messages.Take();
}

static bool s_holds(const Strings& list, const std::string& word)
{
    for (const std::string& entry : list)
        if (entry.substr(0, entry.find(' ')) == word) return true;
    return false;
}

GTEST_TEST(AmiRules, LegalParameters)
{
    Messages messages;
    for (const Rule& rule : s_rules) {
        SCOPED_TRACE(rule.name);
        Strings formats = rule.formats;
        if (formats.empty()) formats.push_back("");
        Strings defaults = rule.defaults;
        if (!rule.needsDefault) defaults.push_back("");
        for (const std::string& usage : rule.usages)
            for (const std::string& type : rule.types)
                for (const std::string& format : formats)
                    for (const std::string& value : defaults) {
                        const Leaves leaves = {usage, type, format, value, true, ""};
                        EXPECT_EQ(s_check(messages, rule, leaves.Text()), Strings())
                            << leaves.Text();
                    }
    }
}

GTEST_TEST(AmiRules, IllegalWords)
{
    Messages messages;
    for (const Rule& rule : s_rules) {
        const std::string name = rule.name;
        SCOPED_TRACE(name);
        for (const char* usage : s_usages) {
            if (s_holds(rule.usages, usage)) continue;
            Leaves leaves = s_legal(rule);
            leaves.usage = usage;
            EXPECT_EQ(
                s_check(messages, rule, leaves.Text()),
                Strings{"4627 Illegal Usage value " + leaves.usage + " specified for " + name});
        }
        for (const char* type : s_types) {
            if (s_holds(rule.types, type)) continue;
            Leaves leaves = s_legal(rule);
            leaves.type = type;
            EXPECT_EQ(s_check(messages, rule, leaves.Text()),
                      Strings{"4627 Illegal Type value " + leaves.type + " specified for " + name});
        }
        for (const char* format : s_formats) {
            if (s_holds(rule.formats, format)) continue;
            Leaves leaves = s_legal(rule);
            leaves.format = std::string(format) + " 1";
            const std::string expected =
                rule.formats.empty()
                    ? "4629 Unexpected parameter Format specified for " + name
                    : std::string("4627 Illegal Format value ") + format + " specified for " + name;
            EXPECT_EQ(s_check(messages, rule, leaves.Text()), Strings{expected});
        }
        for (const std::string& value : rule.badDefaults) {
            Leaves leaves = s_legal(rule);
            leaves.defaultValue = value;
            EXPECT_EQ(s_check(messages, rule, leaves.Text()),
                      Strings{"4627 Illegal Default value " + value + " specified for " + name});
        }
    }
}

GTEST_TEST(AmiRules, MissingLeaves)
{
    static const char* const kinds[] = {"Usage", "Type", "Format", "Default", "Description"};
    Messages messages;
    for (const Rule& rule : s_rules) {
        SCOPED_TRACE(rule.name);
        Strings all;
        for (const std::string kind : kinds) {
            Leaves leaves = s_legal(rule);
            if (kind == "Usage") leaves.usage.clear();
            if (kind == "Type") leaves.type.clear();
            if (kind == "Format") leaves.format.clear();
            if (kind == "Default") leaves.defaultValue.clear();
            if (kind == "Description") leaves.description = false;
            const bool required = kind == "Format"    ? !rule.formats.empty()
                                  : kind == "Default" ? rule.needsDefault
                                                      : true;
            Strings expected;
            if (required) expected = {"4630 Parameter " + kind + " is mandatory for " + rule.name};
            EXPECT_EQ(s_check(messages, rule, leaves.Text()), expected);
            all.insert(all.end(), expected.begin(), expected.end());
        }
        // All absent but for a leaf that does not count: in the order of the kinds.
        all.insert(all.begin(),
                   std::string("4628 Found a branch Usage expecting a leaf for ") + rule.name);
        EXPECT_EQ(s_check(messages, rule, " (Usage (Info (Usage Nonsense)))"), all);
        EXPECT_EQ(s_check(messages, rule, " (None)"),
                  Strings{std::string("4630 Parameter Usage is mandatory for ") + rule.name});
    }
}

GTEST_TEST(AmiRules, FormatItems)
{
    static const struct {
        const char* format;  // with too few, too many or wrong items
        const char* word;
        int count;
    } rows[] = {
        {"Value", "Value", 1},
        {"Value 1 2", "Value", 1},
        {"Value x", "Value", 1},
        {"Range 1 2", "Range", 3},
        {"Range 1 2 3 4", "Range", 3},
        {"Range 1 2 True", "Range", 3},
        {"Corner 1 2", "Corner", 3},
        {"Dual-Dirac 1", "Dual-Dirac", 3},
        {"DjRj", "DjRj", 3},
        {"Gaussian 1", "Gaussian", 2},
        {"Gaussian 1 2 3", "Gaussian", 2},
        {"Gaussian 1 \"2 \"", "", 0},
        {"Gaussian a b", "Gaussian", 2},
    };
    Messages messages;
    for (const Rule& rule : s_rules) {
        for (const auto& row : rows) {
            const std::string word =
                std::string(row.format).substr(0, std::string(row.format).find(' '));
            if (!s_holds(rule.formats, word)) continue;
            SCOPED_TRACE(std::string(rule.name) + " " + row.format);
            Leaves leaves = s_legal(rule);
            leaves.format = row.format;
            Strings expected;
            if (row.count != 0)
                expected = {std::string("4632 ") + row.word + ": Illegal Format for " + rule.name +
                            ". Expected " + std::to_string(row.count) + " number(s)"};
            EXPECT_EQ(s_check(messages, rule, leaves.Text()), expected);
        }
    }
}

GTEST_TEST(AmiRules, OtherLeaves)
{
    Messages messages;
    for (const Rule& rule : s_rules) {
        const std::string name = rule.name;
        Leaves leaves = s_legal(rule);
        leaves.extra = " (Labels a b) (Value 1) (Default (x 1))";
        EXPECT_EQ(s_check(messages, rule, leaves.Text()),
                  (Strings{"4624 Unknown parameter Labels found as a child of " + name,
                           "4624 Unknown parameter Value found as a child of " + name,
                           "4628 Found a branch Default expecting a leaf for " + name}));
    }
    const Rule unknown = {"Tx_jitter", {}, {}, {}, {}, {}, false};
    EXPECT_EQ(s_check(messages, unknown, " (Usage Nonsense) (deep (Type Nonsense))"),
              (Strings{"4624 Unknown parameter Tx_jitter found as a child of Reserved_Parameters",
                       "4627 Illegal Usage value Nonsense specified for Tx_jitter",
                       "4627 Illegal Type value Nonsense specified for deep"}));
}

// Depth costs no machine stack.
GTEST_TEST(AmiRules, DeepTree)
{
    Messages messages;
    const int depth = 200000;
    std::string text = "(root (Model_Specific ";
    for (int i = 0; i < depth; ++i)
        text += "(b";
    text += "(Usage Nonsense)" + std::string(static_cast<std::size_t>(depth), ')') + "))";
    gsBuffer = CMN_StrMake(text.c_str());
    AMI_Test();
    EXPECT_EQ(messages.Take(), (Strings{"4627 Illegal Usage value Nonsense specified for b",
                                        "4622 No Reserved_Parameters found"}));
}
