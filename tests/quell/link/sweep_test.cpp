// quell sweep: its values and grid, and the built command.
#include "quell/link/sweep.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <nlohmann/json.hpp>
#include <sstream>

#include "quell/base/errors.h"
#include "tests/quell/command.h"
#include "tests/support/TempDir.h"

using namespace quell;
using nlohmann::json;

namespace {

std::vector<json> Lines(const std::string& text)
{
    std::vector<json> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(json::parse(line));
    return lines;
}

}  // namespace

GTEST_TEST(Sweep, ValuesOfAParameter)
{
    const struct {
        const char* text;
        std::vector<std::string> values;  // empty: refused
    } rows[] = {
        {"a=0:1:0.25", {"0", "0.25", "0.5", "0.75", "1"}},
        {"a=0:0.3:0.1", {"0", "0.1", "0.2", "0.3"}},
        {"a=1:0:-0.5", {"1", "0.5", "0"}},
        {"a=0:1:0.4", {"0", "0.4", "0.8"}},
        {"a=2:2:1", {"2"}},
        {"tap.0=-1,x,3", {"-1", "x", "3"}},
        {"a=7", {"7"}},
        {"a=0:1:0", {}},
        {"a=0:1:-1", {}},
        {"a=0:1:1e-9", {}},
        {"a=0:x:1", {}},
        {"a=1,)", {}},
        {"a", {}},
    };
    for (const auto& row : rows) {
        if (row.values.empty())
            EXPECT_THROW(ParseSweptParameter(row.text), InputError) << row.text;
        else
            EXPECT_EQ(row.values, ParseSweptParameter(row.text).values) << row.text;
    }
}

GTEST_TEST(Sweep, GridChangesTheLastParameterFastest)
{
    const std::vector<std::vector<std::string>> expected = {
        {"1", "x"}, {"1", "y"}, {"2", "x"}, {"2", "y"}};
    EXPECT_EQ(expected, SweepGrid({{"a", {"1", "2"}}, {"b", {"x", "y"}}}));
    EXPECT_EQ(1u, SweepGrid({}).size());
    const std::vector<std::string> many(1000, "1");
    EXPECT_THROW(SweepGrid({{"a", many}, {"b", many}}), InputError);
}

// More loss wants more de-emphasis; the best of the hardest channel lies beyond the range.
GTEST_TEST(Sweep, BestDeEmphasisGrowsWithTheLoss)
{
    const CommandResult result = RunQuell(
        "sweep loss:8dB@2.5GHz loss:3dB@2.5GHz loss:14dB@2.5GHz --set de_emphasis=0:9.5:0.5");
    ASSERT_EQ(0, result.exitCode) << result.err;
    for (const char* line :
         {"channel 1: best with de_emphasis=4, 0.3295 V\n", "channel 2: best with de_emphasis=1, ",
          "channel 3: best with de_emphasis=9.5, ",
          "V (best at the end of the range of de_emphasis)\nall channels: best worst case with "
          "de_emphasis=9.5, "})
        EXPECT_NE(std::string::npos, result.out.find(line)) << line << "\nnot in\n" << result.out;
}

GTEST_TEST(Sweep, OutputDoesNotDependOnTheNumberOfWorkers)
{
    for (const char* form : {"", " --json"}) {
        const std::string arguments =
            std::string("sweep loss:8dB@2.5GHz loss:3dB@2.5GHz --set de_emphasis=0:6:1") + form;
        const CommandResult one = RunQuell(arguments + " -j 1");
        const CommandResult many = RunQuell(arguments + " -j 7");
        EXPECT_EQ(0, one.exitCode);
        EXPECT_FALSE(one.out.empty());
        EXPECT_EQ(one.out, many.out);
    }
}

GTEST_TEST(Sweep, JsonHasALineForEachPointAndAgreesWithRun)
{
    const std::vector<json> lines =
        Lines(RunQuell("sweep loss:8dB@2.5GHz --set de_emphasis=3:4:0.5 --ber 1e-9 --json").out);
    ASSERT_EQ(3u, lines.size());
    const json run =
        json::parse(RunQuell("run loss:8dB@2.5GHz --set de_emphasis=3.5 --ber 1e-9 --json").out);
    EXPECT_EQ(run["eye"]["height"], lines[1]["height"]);
    EXPECT_EQ(run["eye"]["width_ui"], lines[1]["width_ui"]);
    EXPECT_EQ(run["parameters"], lines[1]["parameters"]);
    EXPECT_EQ("3.5", lines[1]["settings"]["de_emphasis"]);
    EXPECT_EQ(true, lines[2]["best"]);
    EXPECT_EQ(false, lines[1]["best"]);
}

// The reference heights are those of a far finer voltage grid.
GTEST_TEST(Sweep, EyeOfTheReferenceChannelIsConverged)
{
    const json eye =
        json::parse(RunQuell("run loss:8dB@2.5GHz --set de_emphasis=3.5 --json").out)["eye"];
    const struct {
        const char* errorRate;
        double height;
    } rows[] = {{"1e-06", 0.3436}, {"1e-09", 0.3307}, {"1e-12", 0.3228}, {"1e-15", 0.3173}};
    for (const auto& row : rows)
        EXPECT_NEAR(row.height, eye["heights"][row.errorRate].get<double>(), 0.5e-3)
            << row.errorRate;
    EXPECT_EQ(eye["heights"]["1e-12"], eye["height"]);
}

// A point whose model fails is told, and the others are still compared.
GTEST_TEST(Sweep, FailingPointsAreToldAndTheOthersCompared)
{
    const std::string model = " --model " QUELL_BINARY_DIR "/tests/models/test_model.so ";
    const CommandResult crash =
        RunQuell("sweep loss:8dB@2.5GHz" + model + "--set do=halve,crash_init,fail,nothing");
    EXPECT_EQ(4, crash.exitCode);
    EXPECT_NE(std::string::npos,
              crash.err.find("do=crash_init: model crashed in AMI_Init: SIGSEGV\n"));
    EXPECT_NE(std::string::npos, crash.err.find("do=fail: AMI_Init returned 0\n"));
    EXPECT_NE(std::string::npos, crash.out.find("channel 1: best with do=nothing, "));
    EXPECT_EQ(3, RunQuell("sweep loss:8dB@2.5GHz" + model + "--set do=fail").exitCode);
    EXPECT_EQ(2, RunQuell("sweep /no/such.s4p --set de_emphasis=1").exitCode);
}

// The way to spread a sweep over machines, here over the processors of one, and go on after a stop.
GTEST_TEST(Sweep, GnuParallelPutsASweepTogether)
{
    if (std::system("command -v parallel >/dev/null 2>&1") != 0)
        GTEST_SKIP() << "GNU parallel is not installed";
    const TempDir folder;
    const std::string command =
        "cd " + folder.Path(".") + " && parallel --will-cite -k -j 2 --joblog log --resume " +
        QUELL_BINARY_DIR "/bin/quell sweep {} --set de_emphasis=3,4 -j 1 --json ::: " +
        "loss:8dB@2.5GHz loss:3dB@2.5GHz >>out.jsonl";
    ASSERT_EQ(0, std::system(command.c_str()));
    ASSERT_EQ(0, std::system(command.c_str()));  // finds everything done
    EXPECT_EQ(4u, Lines(ReadFile(folder.Path("out.jsonl"))).size());
}
