// quell run through the built command.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <nlohmann/json.hpp>

#include "quell/channel/csv.h"
#include "quell/signal/pulse.h"
#include "quell/signal/time_grid.h"
#include "tests/quell/command.h"
#include "tests/support/TempDir.h"

namespace {

using nlohmann::json;

const std::string Models = QUELL_BINARY_DIR "/tests/models/";
const std::string TestModel = " --model " + Models + "test_model.so ";

std::string RunTestModel(const std::string& behaviour)
{
    return "run loss:8dB@2.5GHz" + TestModel + "--set do=" + behaviour + " ";
}

size_t LineCount(const std::string& text)
{
    return static_cast<size_t>(std::count(text.begin(), text.end(), '\n'));
}

GTEST_TEST(Run, ExitCodesAndTheirOneLine)
{
    static const struct {
        std::string arguments;
        int exitCode;
        std::string error;
    } rows[] = {
        {"", 2, "quell: A subcommand is required (see quell --help)\n"},
        {"chek x", 2,
         "quell: unknown subcommand 'chek', did you mean 'check'? (see quell --help)\n"},
        {"run", 2, "quell: channel is required (see quell run --help)\n"},
        {"run x.csv --bit-rate 0", 2,
         "quell: --bit-rate: 0 is not greater than 0 (see quell run --help)\n"},
        {"run x.csv --bit-rate fast", 2,
         "quell: --bit-rate: 'fast' is not a number (see quell run --help)\n"},
        {"run x.csv --unit V", 2,
         "quell: --unit: 'V' is none of V/s, V/sample (see quell run --help)\n"},
        {"run /no/x.csv" + TestModel + "--params x", 2, "quell: /no/x.csv: no such file\n"},
        {"run loss:8dB@2.5GHz --model /no/x.so", 2, "quell: /no/x.so: no such model file\n"},
        {"run loss:8dB@2.5GHz --params x --model " + Models + "model_without_init.so", 2,
         "quell: " + Models + "model_without_init.so: exports no AMI_Init\n"},
        {"run loss:8dB@2.5GHz --ports 99" + TestModel, 2,
         "quell: --ports '99': expected 13,24 (in at ports 1 and 3, out at 2 and 4) or 1,2\n"},
        {"run loss:8dB@2.5GHz --noise 1.5" + TestModel, 2,
         "quell: --noise 1.5 V: beyond the swing of 1 V between the rails\n"},
        {"run loss:8dB@2.5GHz --rj 1us" + TestModel, 2,
         "quell: --rj 1 us: beyond the unit interval of 200 ps\n"},
        {"run loss:8dB@2.5GHz --dj 1.1ns --bit-rate 1Gbit/s" + TestModel, 2,
         "quell: --dj 1.1 ns: beyond the unit interval of 1 ns\n"},
        {"run loss:8dB@2.5GHz --params '(x (do fail))'" + TestModel, 3,
         "quell: the model reports failure: AMI_Init returned 0\n"},
        {"run loss:8dB@2.5GHz --params crash_init" + TestModel, 4,
         "quell: model crashed in AMI_Init: SIGSEGV\n"},
        {"run loss:8dB@2.5GHz --timeout 0.2 --params hang" + TestModel, 4,
         "quell: model did not come to an end within 0.2 s: stopped in AMI_Init\n"},
    };
    for (const auto& row : rows) {
        const CommandResult result = RunQuell(row.arguments);
        EXPECT_EQ(result.exitCode, row.exitCode) << row.arguments;
        EXPECT_EQ(result.err, row.error) << row.arguments;
    }
}

GTEST_TEST(Run, JsonHoldsTheKeysAndNothingElseIsPrinted)
{
    const CommandResult result = RunQuell(RunTestModel("halve.speak.print") + "--json");
    ASSERT_EQ(result.exitCode, 0) << result.err;
    const json value = json::parse(result.out);
    EXPECT_EQ(value["unit"], "V/s");
    EXPECT_EQ(value["bit_rate"], 5e9);
    EXPECT_EQ(value["samples_per_bit"], 16);
    EXPECT_EQ(value["sample_interval"], 1 / (5e9 * 16));
    EXPECT_EQ(value["parameters"], "(test_model (do halve.speak.print))");
    EXPECT_EQ(value["return_code"], 1);
    EXPECT_EQ(value["message"], "4128 rows, \xEF\xBF\xBD, 0 aggressors");
    EXPECT_EQ(value["parameters_out"], "(test_model (answer 42))");
    const json& column = value["columns"][0];
    EXPECT_EQ(column["name"], "victim");
    for (const char* figure : {"dc_gain", "peak", "main_cursor"}) {
        const std::string name = figure;
        EXPECT_EQ(column[name + "_after"].get<double>(),
                  0.5 * column[name + "_before"].get<double>());
    }
    EXPECT_NEAR(column["dc_gain_before"].get<double>(), 1, 1e-12);
    EXPECT_EQ(value["peak_distortion_height_after"].get<double>(),
              0.5 * value["peak_distortion_height_before"].get<double>());
    const json& treatment = column["treatment"];
    EXPECT_EQ(treatment["dc"], 1);
    EXPECT_EQ(treatment["dc_from"], "the formula of the line");
    EXPECT_TRUE(treatment["band"].is_null());
    EXPECT_NEAR(treatment["record"].get<double>(), 4096 / 80e9, 1e-20);
    EXPECT_EQ(treatment["delay_removed"], 0);
    const json& eye = value["eye"];
    EXPECT_NEAR(eye["width_ps"].get<double>(), 200 * eye["width_ui"].get<double>(), 1e-9);
    // Behind a nanosecond and the line's own delay, at a sample.
    EXPECT_GT(eye["sampling_time"], 1.05e-9);
    EXPECT_LT(eye["sampling_time"], 1.3e-9);
    const double samples = eye["sampling_time"].get<double>() * 80e9;
    EXPECT_NEAR(samples, std::round(samples), 1e-6);
    // Computed by a script of its own from the formulas: transform, running sums, phases.
    EXPECT_NEAR(value["peak_distortion_height_before"].get<double>(), 0.2144404, 1e-6);
}

// Computed from the formulas by a script that knows none of this code.
GTEST_TEST(Run, TheModelOfTheKitOverTheBuiltInLine)
{
    static const struct {
        const char* channel;
        const char* deEmphasis;
        double dcGain;  // 10^(-dB / 20)
        double height;
    } rows[] = {
        {"loss:8dB@2.5GHz", "0", 1, 0.14903},
        {"loss:8dB@2.5GHz", "3.5", 0.668344, 0.28819},
        {"loss:8dB@2.5GHz", "4.0", 0.630957, 0.29680},
        {"loss:14dB@2.5GHz", "9.5", 0.334965, 0.11725},
    };
    for (const auto& row : rows) {
        const CommandResult result = RunQuell(std::string("run ") + row.channel +
                                              " --json --set de_emphasis=" + row.deEmphasis);
        ASSERT_EQ(result.exitCode, 0) << result.err;
        EXPECT_EQ(result.err, "");
        const json value = json::parse(result.out);
        EXPECT_NEAR(value["columns"][0]["dc_gain_after"].get<double>(), row.dcGain, 1e-6);
        EXPECT_NEAR(value["peak_distortion_height_after"].get<double>(), row.height, 1e-5);
        // The height that random data leave lies above that of the worst pattern.
        EXPECT_GT(value["eye"]["height"], value["peak_distortion_height_after"]);
        EXPECT_TRUE(value["message"].is_null());
    }
}

GTEST_TEST(Run, NumbersThatAreNoneAreNullInJson)
{
    CommandResult result = RunQuell(RunTestModel("no_numbers") + "--json");
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_TRUE(json::parse(result.out)["columns"][0]["dc_gain_after"].is_null());
    EXPECT_NE(result.err.find("warning: the model left values that are no finite numbers\n"),
              std::string::npos);

    result = RunQuell(RunTestModel("fail") + "--json");
    EXPECT_EQ(result.exitCode, 3);
    const json value = json::parse(result.out);
    EXPECT_EQ(value["return_code"], 0);
    EXPECT_TRUE(value["message"].is_null());
    EXPECT_TRUE(value["peak_distortion_height_after"].is_null());
    EXPECT_FALSE(value["columns"][0]["dc_gain_before"].is_null());
}

GTEST_TEST(Run, FilesReadBackBitForBit)
{
    const TempDir scratch;
    const CommandResult result = RunQuell(
        RunTestModel("halve") + "--aggressor loss:20dB@2.5GHz --json --out " + scratch.Path("out"));
    ASSERT_EQ(result.exitCode, 0) << result.err;
    EXPECT_EQ(ReadFile(scratch.Path("out/result.json")), result.out);
    const json value = json::parse(result.out);
    const double interval = value["sample_interval"];

    const quell::SampledResponses impulse =
        quell::ParseCsv(ReadFile(scratch.Path("out/impulse.csv")), "impulse.csv", {});
    const quell::SampledResponses pulse =
        quell::ParseCsv(ReadFile(scratch.Path("out/pulse.csv")), "pulse.csv", {});
    EXPECT_EQ(impulse.names, (std::vector<std::string>{"victim_before", "victim_after",
                                                       "aggressor_1_before", "aggressor_1_after"}));
    ASSERT_EQ(impulse.columns[0].size(), 4128u);
    for (size_t k = 0; k < 2; ++k) {
        const std::vector<double>& before = impulse.columns[2 * k];
        const std::vector<double>& after = impulse.columns[2 * k + 1];
        for (size_t n = 0; n < before.size(); ++n)
            ASSERT_EQ(after[n], 0.5 * before[n]);
        EXPECT_EQ(quell::PulseResponse(after, interval, 16), pulse.columns[2 * k + 1]);
        EXPECT_EQ(quell::DcGain(before, interval), value["columns"][k]["dc_gain_before"]);
    }
}

GTEST_TEST(Run, TableShowsTheSameNumbersAndTheModelsOutputApart)
{
    const CommandResult result = RunQuell(RunTestModel("halve.print.speak"));
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_NE(result.out.find("  loss at 2.5 GHz: 8.00 dB, delay 1 ns\n"), std::string::npos);
    EXPECT_NE(result.out.find("  before 0.2144 V, after 0.1072 V\n"), std::string::npos);
    EXPECT_NE(result.out.find("  DC gain 1 from the formula of the line, record of 51.2 ns\n"),
              std::string::npos);
    EXPECT_EQ(result.out.find("mm"), std::string::npos);
    EXPECT_NE(result.err.find("printed by the model:\n"), std::string::npos);
    EXPECT_NE(result.err.find("  { \"unit\": \"mm\" }\n"), std::string::npos);
}

GTEST_TEST(Run, RootNameOfTheParameterString)
{
    const TempDir scratch;
    const std::string ami = scratch.Write("x.ami", "| note\n(Their_Root (Reserved_Parameters))\n");
    CommandResult result = RunQuell("run x --dry-run --set a=1 --ami " + ami + TestModel);
    EXPECT_EQ(result.out, "(Their_Root (a 1))\n");
    EXPECT_EQ(result.err, "");

    result = RunQuell("run x --dry-run --set a=1" + TestModel);
    EXPECT_EQ(result.out, "(test_model (a 1))\n");
    EXPECT_EQ(result.err, "warning: no parameter file " + Models +
                              "test_model.ami: the root name is taken to be test_model\n");

    result = RunQuell("run x --dry-run --params 'as it )( is'" + TestModel);
    EXPECT_EQ(result.out, "as it )( is\n");

    result = RunQuell("run x --ami " + scratch.Write("y.ami", "nothing\n") + TestModel);
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_EQ(LineCount(result.err), 1u) << result.err;
}

GTEST_TEST(Run, HelpAndVersion)
{
    EXPECT_EQ(RunQuell("--version").out.substr(0, 6), "quell ");
    const CommandResult help = RunQuell("run --help");
    EXPECT_EQ(help.exitCode, 0);
    for (const char* option : {"--set", "--model", "--ports", "--aggressor", "--json", "Exit code"})
        EXPECT_NE(help.out.find(option), std::string::npos) << option;
}

GTEST_TEST(Run, OutputThatCannotBeWrittenIsAnError)
{
    for (const char* format : {"--json", ""}) {
        const std::string line = QUELL_BINARY_DIR "/bin/quell " + RunTestModel("halve") + format +
                                 " >/dev/full 2>/dev/null";
        EXPECT_EQ(WEXITSTATUS(std::system(line.c_str())), 2) << format;
    }
    const CommandResult files = RunQuell(RunTestModel("halve") + "--out /dev/null/x");
    EXPECT_EQ(files.exitCode, 2);
}

}  // namespace
