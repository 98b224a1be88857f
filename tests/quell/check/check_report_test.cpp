// Findings in order and as text, the source lines under them, versions, names and printable text.
#include "quell/check/report.h"

#include <gtest/gtest.h>

#include "quell/base/printable.h"
#include "quell/base/progress.h"
#include "quell/check/source_lines.h"
#include "quell/check/spool.h"
#include "quell/check/text_view.h"
#include "quell/reader/file_types.h"
#include "quell/reader/version.h"
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

GTEST_TEST(CheckReport, VersionsAfterTheLastKnownOne)
{
    for (const char* version : {"5.1", "5.12", "6.0", "7.2", "9.9"})
        EXPECT_TRUE(BeyondKnown(version)) << version;
    for (const char* version : {"5.0", "5.00", "4.2", "3.3", "1.1", "", "5", "33.0", "7.x", "7."})
        EXPECT_FALSE(BeyondKnown(version)) << version;
}

GTEST_TEST(CheckReport, VersionIsReplacedInPlace)
{
    static const struct {
        const char* text;
        const char* replaced;  // null: no version found
    } rows[] = {
        {"| [IBIS Ver] 1\n\n[IBIS Ver]\t7.1 | note\r\n[File Name] x\n",
         "| [IBIS Ver] 1\n\n[IBIS Ver]\t5.0 | note\r\n[File Name] x\n"},
        {"  [ibis_VER]6.0", "  [ibis_VER]5.0"},
        {"[IBIS Ver]\n[IBIS Ver] 7.1\n", nullptr},
        {"[File Name] x\n[IBIS Ver] 7.1\n", nullptr},
        {"", nullptr},
    };
    const TempDir scratch;
    for (const auto& row : rows) {
        std::FILE* from = std::fopen(scratch.Write("from", row.text).c_str(), "rb");
        const auto place = FindVersion(from);
        EXPECT_EQ(place.has_value(), row.replaced != nullptr) << row.text;
        if (place && row.replaced != nullptr) {
            std::FILE* to = std::fopen(scratch.Path("to").c_str(), "wb");
            EXPECT_TRUE(CopyWithVersion(from, to, *place, "5.0"));
            std::fclose(to);
            EXPECT_EQ(ReadFile(scratch.Path("to")), row.replaced);
        }
        std::fclose(from);
    }
}

GTEST_TEST(CheckReport, NamesThatTheReaderTakes)
{
    static const struct {
        const char* name;
        FileType type;
        const char* legal;
    } rows[] = {
        {"a.ibs", FILE_IBS, "a.ibs"},     {"A.IBS", FILE_IBS, "A.IBS"},
        {"a.txt", FILE_IBS, "a.ibs"},     {"a", FILE_PKG, "a.pkg"},
        {"a.ibs.old", FILE_IBS, "a.ibs"}, {"a.ibs", FILE_AMI, "a.ami"},
        {".ibs", FILE_EBD, "file.ebd"},   {"a.v2.txt", FILE_IBS, "a.v2.ibs"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(LegalName(row.name, row.type), row.legal) << row.name;
    EXPECT_EQ(FolderOf("/a/b/c.ibs"), "/a/b/");
    EXPECT_EQ(FolderOf("c.ibs"), "");
}

GTEST_TEST(CheckReport, PrintableTextDoesNothingButShowItself)
{
    static const struct {
        const char* text;
        const char* printable;
        size_t width;
    } rows[] = {
        {"plain ~", "plain ~", 7},
        {"a\tb\r\n\x1b[31m\x7f", "a b???[31m?", 11},
        {"\xC3\xA9\xE2\x82\xAC", "\xC3\xA9\xE2\x82\xAC", 2},
        {"\xC2\x9B"
         "2J",
         "?2J", 3},  // control as UTF-8
        {"\x9B"
         "2J\xFF\xC3",
         "?2J??", 5},                          // bytes that are no UTF-8
        {"\xC0\x9B\xE0\x80\x9B", "?????", 5},  // written too long
        {"\xE2\x80\xAE"
         "abc",
         "?abc", 4},                      // right to left
        {"\xF4\x90\x80\x80", "????", 4},  // beyond the last character
    };
    for (const auto& row : rows) {
        EXPECT_EQ(Printable(row.text), row.printable);
        EXPECT_EQ(PrintedWidth(Printable(row.text)), row.width) << row.printable;
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

GTEST_TEST(CheckReport, ProgressFillsUp)
{
    EXPECT_EQ(ProgressText(0, 200, "files"), "[" + std::string(40, ' ') + "] 0 of 200 files");
    EXPECT_EQ(ProgressText(199, 200, "files"), "[" + std::string(39, '=') + " ] 199 of 200 files");
    EXPECT_EQ(ProgressText(200, 200, "files"), "[" + std::string(40, '=') + "] 200 of 200 files");
}

}  // namespace
}  // namespace quell
