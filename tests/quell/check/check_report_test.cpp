// Findings in order and as text, the source lines under them, what waits for its turn.
#include "quell/check/report.h"

#include <gtest/gtest.h>

#include "quell/check/source_lines.h"
#include "quell/check/spool.h"
#include "quell/check/text_format.h"
#include "tests/quell/command.h"
#include "tests/support/TempDir.h"

namespace quell {
namespace {

Finding At(const std::string& file, unsigned long line, unsigned number, const std::string& text)
{
    Finding finding;
    finding.file = file;
    finding.line = line;
    finding.number = finding.asked = number;
    finding.text = text;
    return finding;
}

GTEST_TEST(CheckReport, FindingsStandInTheOrderOfLinesAndOnesOwnComeFirst)
{
    FileReport report;
    report.name = "a.ibs";
    FindingCollector collector(report, 2);
    collector.Add(At("a.ibs", 9, 1, "nine"));
    collector.Add(At("a.ibs", 0, 2, "whole file"));
    collector.Add(At("b.pkg", 1, 1, "companion"));
    collector.Add(At("a.ibs", 2, 3, "two"));
    collector.Add(At("a.ibs", 2, 1, "two again"));
    collector.Add(At("a.ibs", 1, 1, "third of number 1"));
    collector.Add(At("a.ami", 0, 4, "second companion"));
    collector.Finish();
    EXPECT_EQ(ReportText(report, "", false),
              R"(a.ibs:2: error[0003]: two
a.ibs:2: error[0001]: two again
a.ibs:9: error[0001]: nine
a.ibs: ... and 1 more of error[0001]
a.ibs: error[0002]: whole file
b.pkg:1: error[0001]: companion
a.ami: error[0004]: second companion
a.ibs: 7 errors
)");
}

GTEST_TEST(CheckReport, TheCaretStandsUnderTheQuotedText)
{
    const TempDir scratch;
    const std::string wide(150, 'x');
    const std::string path = scratch.Write("a.ibs", "first\r\n\tKey 'A\tB' \x1b[31m\n" + wide +
                                                        "needle" + wide + "\n\xC3\xA9 q\nlast");
    FileReport report;
    report.name = "a.ibs";
    FindingCollector collector(report, 20);
    collector.Add(At("a.ibs", 1, 1, "the name 'rst' of \"fi\""));
    collector.Add(At("a.ibs", 2, 1, "two lines:\n  'A\tB' \x1b[2J"));
    collector.Add(At("a.ibs", 3, 1, "in the middle: needle\n"));
    collector.Add(At("a.ibs", 4, 1, "behind a wide character 'q'"));
    collector.Add(At("a.ibs", 5, 1, "nothing quoted"));
    collector.Add(At("a.ibs", 5, 2, "all of it:\nlas"));
    collector.Add(At("a.ibs", 5, 2, "a last empty line\n  "));
    collector.Add(At("a.ibs", 6, 1, "no such line"));
    collector.Finish();
    const std::string before(30, 'x');
    const std::string behind(64, 'x');
    EXPECT_EQ(ReportText(report, path, false),
              "a.ibs:1: error[0001]: the name 'rst' of \"fi\"\n"
              "    first\n"
              "      ^~~\n"
              "a.ibs:2: error[0001]: two lines:\n"
              "      'A B' ?[2J\n"
              "     Key 'A B' ?[31m\n"
              "          ^~~\n"
              "a.ibs:3: error[0001]: in the middle: needle\n"
              "    ..." +
                  before + "needle" + behind + "...\n" + "       " + std::string(30, ' ') +
                  "^~~~~~\n"
                  "a.ibs:4: error[0001]: behind a wide character 'q'\n"
                  "    \xC3\xA9 q\n"
                  "      ^\n"
                  "a.ibs:5: error[0001]: nothing quoted\n"
                  "    last\n"
                  "a.ibs:5: error[0002]: all of it:\n"
                  "    las\n"
                  "a.ibs:5: error[0002]: a last empty line\n"
                  "      \n"
                  "    last\n"
                  "a.ibs:6: error[0001]: no such line\n"
                  "a.ibs: 8 errors\n");
}

GTEST_TEST(CheckReport, ExitCodeOfSeveralFiles)
{
    using enum FileStatus;
    static const struct {
        std::vector<std::pair<FileStatus, size_t>> files;
        int exitCode;
    } rows[] = {
        {{{Checked, 0}, {Checked, 0}}, 0},
        {{{Checked, 0}, {Checked, 2}}, 1},
        {{{Checked, 0}, {NotRead, 0}}, 2},
        {{{Beyond, 0}}, 2},
        {{{Beyond, 0}, {Checked, 1}}, 1},
        {{{Checked, 1}, {Failed, 0}, {NotRead, 0}}, 3},
        {{}, 2},
    };
    for (const auto& row : rows) {
        Totals totals;
        for (const auto& [status, errors] : row.files) {
            FileReport report;
            report.status = status;
            report.counts[static_cast<size_t>(Severity::Error)] = errors;
            totals.Add(report);
        }
        EXPECT_EQ(totals.ExitCode(), row.exitCode) << TotalsText(totals);
    }
}

GTEST_TEST(CheckReport, WhatWaitsComesBackWholeAndOnce)
{
    for (const size_t size : {size_t{0}, size_t{10}, size_t{1} << 20, size_t{5'000'003}}) {
        Spool spool;
        EXPECT_TRUE(spool.Empty());
        std::string expected;
        for (size_t k = 0; expected.size() < size; ++k) {
            const std::string piece = std::to_string(k) + std::string(k % 1000, 'x');
            spool.Append(piece);
            expected += piece;
        }
        std::string text;
        const auto take = [&text](std::string_view piece) { text += piece; };
        spool.Pour(take);
        EXPECT_EQ(text, expected) << size;
        spool.Append("again");
        spool.Pour(take);
        EXPECT_EQ(text.substr(expected.size()), "again") << size;
    }
}

}  // namespace
}  // namespace quell
