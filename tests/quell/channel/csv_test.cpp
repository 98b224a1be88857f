#include "quell/channel/csv.h"

#include <gtest/gtest.h>

#include "quell/base/errors.h"

namespace quell {
namespace {

GTEST_TEST(Csv, SeparatorsNamesAndTimes)
{
    static const struct {
        const char* label;
        const char* text;
        std::optional<double> interval;
        double expectedInterval;
        std::vector<std::vector<double>> columns;
    } rows[] = {
        {"commas", "0,1\n0.5,2\n1,3\n", {}, 0.5, {{1, 2, 3}}},
        {"names", "# made\n\"time (s)\", v , w\n0,1,4\n0.5,2,5\n", {}, 0.5, {{1, 2}, {4, 5}}},
        {"semicolons, CR LF, separator at the end", "0;1;\r\n0.5;2;\r\n", {}, 0.5, {{1, 2}}},
        {"tabs", "0\t1\n0.5\t2\n", {}, 0.5, {{1, 2}}},
        {"blanks", "  0   1\n 0.5  2 ! end\n", {}, 0.5, {{1, 2}}},
        {"no time", "1\n2\n", 0.25, 0.25, {{1, 2}}},
        {"no time, two responses", "1,3\n2,4\n", 0.25, 0.25, {{1, 2}, {3, 4}}},
        {"time and interval", "time,v\n0,1\n0.25,2\n", 0.25, 0.25, {{1, 2}}},
        {"times rounded to three digits",
         "0,1\n0.333,2\n0.667,3\n1,4\n",
         {},
         1.0 / 3,
         {{1, 2, 3, 4}}},
        {"nanoseconds", "time (ns),v\n0,1\n500000000,2\n", {}, 0.5, {{1, 2}}},
        {"picoseconds", "TIME_ps v\n0 1\n250 2\n", {}, 250e-12, {{1, 2}}},
        {"brackets without a blank", "t[us];v\n0;1\n2;2\n", {}, 2e-6, {{1, 2}}},
        {"a word that is no unit", "time_out,v\n0,1\n2,2\n", {}, 2, {{1, 2}}},
    };
    for (const auto& row : rows) {
        const SampledResponses table = ParseCsv(row.text, "f", row.interval);
        EXPECT_EQ(table.interval, row.expectedInterval) << row.label;
        EXPECT_EQ(table.columns, row.columns) << row.label;
        EXPECT_EQ(table.names.size(), table.columns.size()) << row.label;
    }
}

GTEST_TEST(Csv, UnevenStepsKeepTheirTimes)
{
    const SampledResponses table = ParseCsv("t_ns,v\n1,1\n2,2\n4,3\n4,4\n", "f", {});
    EXPECT_EQ(table.time, (std::vector<double>{1e-9, 2e-9, 4e-9, 4e-9}));
    EXPECT_EQ(table.interval, 1e-9);
    EXPECT_TRUE(ParseCsv("0,1\n1,2\n2.04,3\n3,4\n", "f", {}).time.empty());
}

GTEST_TEST(Csv, ABadTableIsOneLineWithItsPlace)
{
    static const struct {
        const char* text;
        std::optional<double> interval;
        const char* message;
    } rows[] = {
        {"", {}, "f: fewer than two samples"},
        {"time,v\n0,1\n", {}, "f: fewer than two samples"},
        {"0,1\n0.5,2\n1,nan\n", {}, "f:3: 'nan' is not a number"},
        {"0,1\n0.5\n", {}, "f:2: 1 columns; the first line has 2"},
        {"0,1\n0.5,\n", {}, "f:2: 1 columns; the first line has 2"},
        {"0;1\n0,5;2\n", {}, "f:2: '0,5' is not a number"},
        {"time (min),v\n0,1\n1,2\n", {}, "f: 'time (min)': no unit of time that is known"},
        {"time,v\n\n0,1\n1,2\n# x\n\n0.5,3\n3,4\n",
         {},
         "f:7: time 0.5 s after 1 s: the time must not fall"},
        {"0,1\n0,2\n", {}, "f: the time does not rise"},
        {"1\n2\n", {}, "f: one column: give --sample-interval, or a time column before it"},
        {"v,w\n1,2\n3,4\n", {}, "f: the first column is not the time: give --sample-interval"},
        {"time,v\n0,1\n1,2\n", 0.5,
         "f: the time column has steps of 1 s, --sample-interval says 500 ms"},
    };
    for (const auto& row : rows) {
        try {
            ParseCsv(row.text, "f", row.interval);
            ADD_FAILURE() << row.text;
        } catch (const InputError& error) {
            EXPECT_STREQ(error.what(), row.message);
        }
    }
}

}  // namespace
}  // namespace quell
