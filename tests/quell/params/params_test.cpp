// Parameter files: what they describe, and which settings fit them.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "quell/base/errors.h"
#include "quell/base/nearest.h"
#include "quell/params/ami_file.h"
#include "tests/quell/command.h"
#include "tests/support/TempDir.h"

namespace quell {
namespace {

constexpr const char* File = R"(| a transmitter
(Tx (Description "all of it")
  (Reserved_Parameters
    (Init_Returns_Impulse (Usage Info) (Type Boolean) (Default True) (Description "yes")))
  (Model_Specific (Description "not a parameter")
    (gain (Usage In) (Type Float) (Format Range 1 0.5 2) (Default 1) (Description "how much"))
    (mode (Usage In) (Type Integer) (List 0 1 0x2))
    (taps
      (-1 (Usage InOut) (Type Tap) (Format Increment 0 -0.2 0 0.1))
      (0 (Usage InOut) (Type Tap)))
    (on (Usage In) (Type Boolean) (Default True))
    (seen (Usage Out) (Type Float))
    (name (Usage In) (Type String) (Format List "fast one" "slow"))))
)";

AmiFile Read(const std::string& text, const std::string& name = "x.ami")
{
    const TempDir scratch;
    return ReadAmiFile(scratch.Write(name, text));
}

GTEST_TEST(Params, ParametersWithTheirPaths)
{
    const AmiFile file = Read(File);
    EXPECT_EQ(file.root, "Tx");
    EXPECT_TRUE(file.problems.empty());
    std::string names;
    for (const AmiParameter& parameter : file.parameters) {
        names += (parameter.reserved ? "!" : "") + parameter.name + ":" + parameter.usage + ":" +
                 parameter.type + ":" + parameter.defaultValue + ":";
        for (const std::string& item : parameter.format)
            names += item + ",";
        names += "\n";
    }
    EXPECT_EQ(names,
              R"(!Init_Returns_Impulse:Info:Boolean:True:
gain:In:Float:1:Range,1,0.5,2,
mode:In:Integer::List,0,1,0x2,
taps.-1:InOut:Tap::Increment,0,-0.2,0,0.1,
taps.0:InOut:Tap::
on:In:Boolean:True:
seen:Out:Float::
name:In:String::List,fast one,slow,
)");
}

GTEST_TEST(Params, RootNameOfAnyFile)
{
    static const struct {
        const char* text;
        const char* root;
        bool problem;
    } rows[] = {
        {"(Tx (Reserved_Parameters))", "Tx", false},
        {"| (Not this)\r\n\n  (Tx\r\n(a 1))", "Tx", false},
        {"( | name below\n\n  Tx(a 1))", "Tx", false},
        {"(Tx)", "Tx", true},
        {"(Tx (a 1)", "Tx", true},
        {"", "", true},
        {"| nothing", "", true},
        {"Tx (a 1)", "", true},
        {"(\"Tx\")", "", true},
    };
    for (const auto& row : rows) {
        const AmiFile file = Read(row.text);
        EXPECT_EQ(file.root, row.root) << row.text;
        EXPECT_EQ(file.problems.empty(), !row.problem) << row.text;
    }
    EXPECT_EQ(Read("(Tx (a 1))", "x.txt").root, "Tx");
    EXPECT_EQ(ModelStem("/a/b/tx.v2.so"), "tx.v2");
    EXPECT_THROW(ReadAmiFile("/no/x.ami"), InputError);
    EXPECT_THROW(ReadAmiFile("/dev/null"), InputError);
}

GTEST_TEST(Params, DeepNestingIsCutAndSaysSo)
{
    std::string text = "(Tx (Model_Specific ";
    for (int k = 0; k < 100'000; ++k)
        text += "(b (Usage In) ";
    text += std::string(100'002, ')');
    const AmiFile file = Read(text);
    EXPECT_EQ(file.parameters.size(), 100u);
    EXPECT_EQ(file.problems.size(), 1u);
}

GTEST_TEST(Params, SettingsAgainstTheFile)
{
    static const struct {
        const char* setting;
        const char* objection;  // empty: fits; else a warning's or refusal's end
    } rows[] = {
        {"gain=0.5", ""},
        {"Tx.gain=2", ""},
        {"gain=2.1", ": outside of its range, 0.5 to 2"},
        {"gain=much", ": not of its type Float"},
        {"mode=1", ""},
        {"mode=3", ": none of the values that the file lists: 0, 1, 0x2"},
        {"mode=1.5", ": not of its type Integer"},
        {"taps.-1=-0.1", ""},
        {"taps.-1=0.1", ": outside of its range, -0.2 to 0"},
        {"taps.0=7", ""},
        {"on=True", ""},
        {"on=1", ": not of its type Boolean"},
        {"seen=1", ": its Usage is Out, it is not meant to be set"},
        {"name=fast one", ""},
        {"name=fast", ": none of the values that the file lists: fast one, slow"},
        {"gian=1", " has no such parameter; did you mean gain?"},
        {"Gain=1", " has no such parameter; did you mean gain?"},
        {"tap.0=1", " has no such parameter; did you mean taps.0?"},
        {"Init_Returns_Impulse=1",
         " has no such parameter; it has gain, mode, taps.-1, taps.0, on, seen, name"},
    };
    const AmiFile file = Read(File);
    for (const auto& row : rows) {
        std::string objection;
        try {
            for (const std::string& warning : CheckSettings({ParseSetting(row.setting)}, file))
                objection += warning;
        } catch (const InputError& error) {
            objection = error.what();
        }
        const std::string end = row.objection;
        EXPECT_EQ(objection.empty(), end.empty()) << row.setting << objection;
        EXPECT_TRUE(objection.ends_with(end)) << objection;
    }
    // A file that lists no parameters of the model cannot refuse any.
    EXPECT_TRUE(CheckSettings({ParseSetting("x=1")}, Read("(Tx (Reserved_Parameters))")).empty());
}

GTEST_TEST(Params, EditDistanceInHalves)
{
    static const struct {
        const char* a;
        const char* b;
        size_t halves;
    } rows[] = {
        {"", "", 0},         {"abc", "", 6},          {"gain", "gain", 0},  {"gain", "Gain", 1},
        {"gian", "gain", 2}, {"gai", "gain", 2},      {"gainn", "gain", 2}, {"gbin", "gain", 2},
        {"ca", "abc", 6},    {"kitten", "sitting", 6}};
    for (const auto& row : rows) {
        EXPECT_EQ(EditDistance(row.a, row.b), row.halves) << row.a << " " << row.b;
        EXPECT_EQ(EditDistance(row.b, row.a), row.halves) << row.a << " " << row.b;
    }
}

GTEST_TEST(Params, Command)
{
    const TempDir scratch;
    const std::string path = scratch.Write("x.ami", File);
    const CommandResult table = RunQuell("params " + path);
    EXPECT_EQ(table.exitCode, 0) << table.err;
    EXPECT_NE(
        table.out.find("\ngain                  In     Float    Range 1 0.5 2           1    "),
        std::string::npos)
        << table.out;
    const nlohmann::json json = nlohmann::json::parse(RunQuell("params --json " + path).out);
    EXPECT_EQ(json["root"], "Tx");
    ASSERT_EQ(json["parameters"].size(), 8u);
    EXPECT_EQ(json["parameters"][1]["format"], nlohmann::json({"Range", "1", "0.5", "2"}));
    EXPECT_EQ(json["parameters"][7]["branch"], "Model_Specific");

    const CommandResult broken = RunQuell("params " + scratch.Write("y.ami", "(Tx (a 1)"));
    EXPECT_EQ(broken.exitCode, 2);
    EXPECT_EQ(broken.err, "quell: " + scratch.Path("y.ami") +
                              ": no parameter tree: its parentheses do not match\n");
}

GTEST_TEST(Params, RunRefusesAndWarns)
{
    const CommandResult refused = RunQuell("run x --dry-run --set de_emphasi=3");
    EXPECT_EQ(refused.exitCode, 2);
    EXPECT_TRUE(refused.err.ends_with("; did you mean de_emphasis?\n")) << refused.err;
    const CommandResult warned = RunQuell("run x --dry-run --set de_emphasis=30");
    EXPECT_EQ(warned.exitCode, 0);
    EXPECT_EQ(warned.out, "(Quell_PCIe_Gen2_Tx (de_emphasis 30))\n");
    EXPECT_EQ(warned.err, "warning: --set de_emphasis=30: outside of its range, 0.0 to 9.5\n");
}

}  // namespace
}  // namespace quell
