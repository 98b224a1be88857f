// quell info: what it shows of files whose contents are known.
#include <gtest/gtest.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <string>

#include "tests/quell/command.h"
#include "tests/support/TempDir.h"

using Json = nlohmann::ordered_json;

static const std::string s_data = QUELL_SOURCE_DIR "/tests/data/";

static const char s_component[] = R"([IBIS Ver] 5.0
[File Name] c.ibs
[File Rev] 1.0
[Date] today
[Source] first line
second line
[Component] ZQ100 Demo
[Manufacturer] Quarzel Labs
[Package]
R_pkg 100m 80m 120m
L_pkg 3n NA 3.5n
C_pkg 0.5p 0.4p 0.6p
[Pin] signal_name model_name R_pin L_pin C_pin
1 VDD POWER
2 VSS GND
3 TXP tx 90m 2.9n NA
4 TXN tx
5 D0 pick
[Package Model] pkg_a
[Alternate Package Models]
pkg_b
pkg_c
[End Alternate Package Models]
[Diff Pin] inv_pin vdiff tdelay_typ tdelay_min tdelay_max
3 4 200mV 1ns NA 2ns
[Model Selector] pick
tx the strong one
rx a receiver
[Model] tx
Model_type Output
C_comp 1p NA NA
[Algorithmic Model]
Executable linux_gcc4_64 tx_64.so tx.ami
[End Algorithmic Model]
[Model] rx
Model_type Input
C_comp 1p NA NA
[External Circuit] outside
Language SPICE
Ports a b
[End External Circuit]
[End]
)";

static Json s_info(const std::string& path)
{
    const CommandResult result = RunQuell("info --json " + path);
    EXPECT_EQ(result.exitCode, 0) << result.err;
    return Json::parse(result.out);
}

GTEST_TEST(Info, Component)
{
    const TempDir scratch;
    const Json file = s_info(scratch.Write("c.ibs", s_component));
    EXPECT_EQ(file["format"], 1);
    EXPECT_EQ(file["type"], "component");
    EXPECT_EQ(file["header"]["source"], "first line\nsecond line");
    EXPECT_TRUE(file["header"]["copyright"].is_null());
    ASSERT_EQ(file["components"].size(), 1u);
    const Json& component = file["components"][0];
    EXPECT_EQ(component["name"], "ZQ100 Demo");
    EXPECT_EQ(component["line"], 7);
    EXPECT_EQ(component["manufacturer"], "Quarzel Labs");
    const Json& inductance = component["package"]["L_pkg"];
    EXPECT_EQ(inductance["typ"], 3 * 1e-9);
    EXPECT_TRUE(inductance["min"].is_null());
    EXPECT_EQ(inductance["max"], 3.5 * 1e-9);
    EXPECT_EQ(component["package_model"], "pkg_a");
    EXPECT_EQ(component["alternate_package_models"], Json({"pkg_b", "pkg_c"}));
    ASSERT_EQ(component["pins"].size(), 5u);
    EXPECT_EQ(component["pins"][2]["model"], "tx");
    EXPECT_EQ(component["pins"][2]["R_pin"], 0.09);
    EXPECT_TRUE(component["pins"][2]["C_pin"].is_null());
    EXPECT_TRUE(component["pins"][3]["R_pin"].is_null());
    const Json& pair = component["differential_pairs"][0];
    EXPECT_EQ(pair["inv_pin"], "4");
    EXPECT_EQ(pair["vdiff"], 0.2);
    EXPECT_TRUE(pair["tdelay"]["min"].is_null());
    EXPECT_EQ(file["model_selectors"][0]["models"][1]["description"], "a receiver");
    EXPECT_EQ(file["models"][0]["name"], "tx");
    EXPECT_EQ(file["models"][0]["executables"][0]["bits"], 64);
    EXPECT_EQ(file["models"][0]["executables"][0]["code_file"], "tx_64.so");
    EXPECT_EQ(file["models"][1]["type"], "Input");
    EXPECT_EQ(file["external_circuits"][0]["ports"], Json({"a", "b"}));
    for (const char* key : {"submodels", "package_models", "boards", "test_data", "test_loads"})
        EXPECT_EQ(file[key], Json::array()) << key;
}

GTEST_TEST(Info, PackagesBoardsTestsAndParameters)
{
    const Json packages = s_info(s_data + "package/lgl_mtrx.pkg");
    EXPECT_EQ(packages["type"], "package");
    ASSERT_EQ(packages["package_models"].size(), 2u);
    const Json& package = packages["package_models"][0];
    EXPECT_EQ(package["name"], "pkg_of_three");
    EXPECT_EQ(package["pins"], Json({"a", "b", "c"}));
    EXPECT_EQ(package["matrices"]["inductance"]["kind"], "full");
    EXPECT_EQ(package["matrices"]["inductance"]["elements"], 6);
    EXPECT_EQ(package["matrices"]["resistance"]["bandwidth"], 0);
    EXPECT_EQ(package["matrices"]["capacitance"]["elements"], 5);

    const Json boards = s_info(s_data + "board/tiny_dimm.ebd");
    EXPECT_EQ(boards["type"], "board");
    const Json& board = boards["boards"][0];
    EXPECT_EQ(board["pins"][1]["path"], "P_DQ0");
    EXPECT_TRUE(board["pins"][0]["path"].is_null());
    EXPECT_EQ(board["paths"][1]["points"].dump(),
              R"([{"pin":"4"},{"node":"U1.13"},{"node":"U2.14"}])");
    EXPECT_EQ(board["designators"][0]["component"], "ZQ100 Demo");

    const Json tests = s_info(s_data + "testdata/legal_test.ibs");
    EXPECT_EQ(tests["test_data"][1]["type"], "Differential");
    EXPECT_EQ(tests["test_loads"][0]["values"]["Rp1_far"], 50);
    EXPECT_EQ(tests["test_loads"][0]["V_term2"]["typ"], 0);

    const Json parameters = s_info(s_data + "parameters/legal.ami");
    EXPECT_EQ(parameters["type"], "parameters");
    EXPECT_TRUE(parameters["branches"].contains("Reserved_Parameters"));

    const TempDir scratch;
    const std::string indented = "(t" + std::string(500, ' ') + "(Model_Specific (p (Usage In))))";
    EXPECT_EQ(s_info(scratch.Write("t.ami", indented))["branches"]["Model_Specific"][0], "p");
}

GTEST_TEST(Info, LaterVersionIsReadAsTheLastKnown)
{
    std::string text = s_component;
    text.replace(text.find("5.0"), 3, "7.1");
    const TempDir scratch;
    const Json file = s_info(scratch.Write("c.ibs", text));
    EXPECT_EQ(file["read_as"], "5.0");
    EXPECT_EQ(file["header"]["ibis_version"], "7.1");
    EXPECT_EQ(file["components"].size(), 1u);
}

GTEST_TEST(Info, Screen)
{
    const TempDir scratch;
    const CommandResult result = RunQuell("info " + scratch.Write("c.ibs", s_component));
    EXPECT_EQ(result.exitCode, 0);
    static const char* const lines[] = {
        "  IBIS 5.0, file c.ibs, rev 1.0, date today\n",
        "  source: first line ...\n",
        "Component ZQ100 Demo, Quarzel Labs\n",
        "  package: R 100 mohm, L 3 nH, C 500 fF\n",
        "    tx     Output    2 pins  3 4\n",
        "    pick   selector  1 pin   5\n",
        "  1 differential pair\n    3  4  200 mV\n",
        "Model selector pick\n    tx  the strong one\n    rx  a receiver\n",
        "2 models: 1 Output, 1 Input\n",
        "Code and parameter files\n    tx  linux 64 bit  tx_64.so  tx.ami\n",
    };
    for (const char* line : lines)
        EXPECT_NE(result.out.find(line), std::string::npos) << line << "not in\n" << result.out;
}

// A part with very many pins and pairs still fits a screen.
GTEST_TEST(Info, LongListsAreCut)
{
    std::string pins;
    std::string pairs;
    for (int i = 1; i < 400; i += 2) {
        pins += std::to_string(i) + " P" + std::to_string(i) + " m" + std::to_string(i) + "\n";
        pins += std::to_string(i + 1) + " N" + std::to_string(i) + " NC\n";
        pairs += std::to_string(i) + " " + std::to_string(i + 1) + " NA NA NA NA\n";
    }
    const TempDir scratch;
    const std::string path = scratch.Write("l.ibs",
                                           R"([IBIS Ver] 3.2
[File Name] l.ibs
[File Rev] 1
[Component] c
[Manufacturer] m
[Pin] signal_name model_name
)" + pins + "[Diff Pin] inv_pin vdiff tdelay_typ tdelay_min tdelay_max\n" +
                                               pairs + "[End]\n");
    const CommandResult result = RunQuell("info " + path);
    EXPECT_LT(std::count(result.out.begin(), result.out.end(), '\n'), 40);
    EXPECT_NE(result.out.find("    ... 191 more\n"), std::string::npos) << result.out;
    EXPECT_NE(result.out.find("200 differential pairs\n"), std::string::npos);
    EXPECT_EQ(s_info(path)["components"][0]["pins"].size(), 400u);
}

GTEST_TEST(Info, WhatCannotBeReadIsOneLine)
{
    const TempDir scratch;
    static const struct {
        const char* label;
        std::string argument;
        int exitCode;
        const char* text;
    } cases[] = {
        {"no such file", "/nowhere/c.ibs", 2, "no such file"},
        {"another extension", scratch.Write("c.txt", s_component), 2, "ends in none of"},
        {"no IBIS file", scratch.Write("e.ibs", "nothing\n"), 2, "Could not determine Version"},
        {"no parameters", scratch.Write("e.ami", ""), 2, "e.ami: no parameter tree"},
        {"a cut tree", scratch.Write("cut.ami", "(t (Model_Specific"), 2, "no parameter tree"},
        {"cut before its version", scratch.Write("v.ibs", "[IBIS V"), 2, "Could not determine"},
    };
    for (const auto& row : cases) {
        const CommandResult result = RunQuell("info " + row.argument);
        EXPECT_EQ(result.exitCode, row.exitCode) << row.label;
        EXPECT_EQ(result.out, "") << row.label;
        EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1) << result.err;
        EXPECT_NE(result.err.find(row.text), std::string::npos) << result.err;
    }
}
