// The error log: lines, wrapping, counters, suppression, the search of the table, the sink.
#include "IbisParser/errlog.h"

#include <gtest/gtest.h>

#include <cstring>
#include <map>
#include <string>
#include <vector>

#include "IbisParser/parse.h"
#include "tests/support/LogCapture.h"

GTEST_TEST(Errlog, NumbersAndCounts)
{
    LogCapture log;
    ERRLOG_ErrorNew(1904);
    EXPECT_EQ(log.Take(), "E1904 - Unable to assemble filename.\n");
    EXPECT_EQ(gulError_cnt, 1u);
    ERRLOG_ErrorNew(100, "IbisParser/mdl", 5);
    EXPECT_EQ(log.Take(), "E0100 - IbisParser/mdl:5:MDL_Init unable to get IBIS?\n");
    gulLineNum = 12345;
    ERRLOG_LineNoteNew(1918);
    EXPECT_EQ(log.Take(), "N1918 (line 12345) - Unexpected '=' found\n");
    ERRLOG_CautionNew(1923);
    ERRLOG_LineWarnNew(1923);
    ERRLOG_LineBugNew(1923);
    EXPECT_EQ(gulBug_cnt, 1u);
    EXPECT_EQ(gulError_cnt, 2u);
    EXPECT_EQ(gulWarn_cnt, 1u);
    EXPECT_EQ(gulCaution_cnt, 1u);
}

// One row per entry of the free-format family: the head, the shortest length that wraps and whether
// the text stays on its line when it is one shorter.
GTEST_TEST(Errlog, Wrapping)
{
    static const struct {
        const char* label;
        int (*entry)(const char*, ...);
        const char* head;
        int firstWrapped;
    } rows[] = {
        {"bug", ERRLOG_Bugx, "PROGRAM BUG -", 0},
        {"line bug", ERRLOG_LineBugx, "PROGRAM BUG (line    7) -", 0},
        {"error", ERRLOG_Errorx, "ERROR -", 72},
        {"line error", ERRLOG_LineErrorx, "ERROR (line    7) -", 60},
        {"warning", ERRLOG_Warnx, "WARNING -", 70},
        {"line warning", ERRLOG_LineWarnx, "WARNING (line    7) -", 58},
        {"caution", ERRLOG_Cautionx, "CAUTION -", 70},
        {"line caution", ERRLOG_LineCautionx, "CAUTION (line    7) -", 58},
        {"note", ERRLOG_Notex, "NOTE -", 73},
        {"line note", ERRLOG_LineNotex, "NOTE (line    7) -", 61},
    };
    LogCapture log;
    gulLineNum = 7;
    for (const auto& row : rows) {
        SCOPED_TRACE(row.label);
        for (int length = 50; length <= 80; ++length) {
            const std::string text(static_cast<std::size_t>(length), 'x');
            const bool wraps = row.firstWrapped != 0 && length >= row.firstWrapped && length <= 75;
            row.entry("%s", text.c_str());
            EXPECT_EQ(log.Take(), row.head + std::string(wraps ? "\n    " : " ") + text + "\n");
        }
    }
}

// The heads of the numbered style are narrower, the limits the same.
GTEST_TEST(Errlog, NumberedStyleWrapsAtTheSameLengths)
{
    static const struct {
        const char* label;
        void (*entry)(unsigned, ...);
        const char* head;
        std::size_t length;
        bool wrapped;
    } rows[] = {
        {"last beside the head", ERRLOG_LineErrorNew, "E0916 (line    7) -", 59, false},
        {"first on its own line", ERRLOG_LineErrorNew, "E0916 (line    7) -", 60, true},
        {"last behind the indent", ERRLOG_LineErrorNew, "E0916 (line    7) -", 75, true},
        {"too long for either", ERRLOG_LineErrorNew, "E0916 (line    7) -", 76, false},
        {"error", ERRLOG_ErrorNew, "E0916 -", 72, true},
        {"warning", ERRLOG_WarnNew, "W0916 -", 70, true},
        {"line warning", ERRLOG_LineWarnNew, "W0916 (line    7) -", 57, false},
        {"note", ERRLOG_NoteNew, "N0916 -", 72, false},
        {"line note", ERRLOG_LineNoteNew, "N0916 (line    7) -", 61, true},
        {"caution", ERRLOG_CautionNew, "C0916 -", 70, true},
        {"bug", ERRLOG_BugNew, "B0916 -", 73, false},
    };
    const std::string prefix = "Invalid Keyword: ";
    LogCapture log;
    gulLineNum = 7;
    for (const auto& row : rows) {
        SCOPED_TRACE(row.label);
        const std::string name(row.length - prefix.size(), 'k');
        row.entry(916, name.c_str());
        EXPECT_EQ(log.Take(),
                  row.head + std::string(row.wrapped ? "\n    " : " ") + prefix + name + "\n");
    }
}

GTEST_TEST(Errlog, LongMessagesAreNotCut)
{
    LogCapture log;
    const std::string text(20000, 't');
    ERRLOG_ErrorNew(916, text.c_str());
    EXPECT_TRUE(log.Take() == "E0916 - Invalid Keyword: " + text + "\n");
    ERRLOG_Notex("%s", text.c_str());
    EXPECT_TRUE(log.Take() == "NOTE - " + text + "\n");
}

GTEST_TEST(Errlog, UnknownNumbersIgnoreSuppression)
{
    LogCapture log;
    ERRLOG_SuppressErrors(1);
    ERRLOG_SuppressWarns(1);
    ERRLOG_SuppressBugs(1);
    gbSuppressCautions = 1;
    for (const unsigned number : {99u, 264u, 4349u, 4369u, 4912u, 4294967295u}) {
        ERRLOG_ErrorNew(number);
        EXPECT_EQ(log.Take(), "I0000 - Error code doesn't exist.\n") << number;
    }
    ERRLOG_BugNew(1904);
    ERRLOG_LineErrorNew(1904);
    ERRLOG_WarnNew(1904);
    ERRLOG_CautionNew(1904);
    ERRLOG_Errorx("x");
    EXPECT_EQ(log.Take(), "");
    ERRLOG_NoteNew(1904);
    EXPECT_EQ(log.Take(), "N1904 - Unable to assemble filename.\n");
    EXPECT_EQ(gulBug_cnt + gulError_cnt + gulWarn_cnt + gulCaution_cnt, 0u);
}

GTEST_TEST(Errlog, OldStyleHasNoNumbers)
{
    LogCapture log;
    gbOldStyleErrors = 1;
    ERRLOG_ErrorNew(1922, "1q");
    EXPECT_EQ(log.Take(), "ERROR - Illegal number found '1q'\n");
    ERRLOG_ErrorNew(4349);
    EXPECT_EQ(log.Take(), "");
    EXPECT_EQ(gulError_cnt, 1u);
}

GTEST_TEST(Errlog, Totals)
{
    static const struct {
        const char* label;
        unsigned long bugs, errors, warnings, cautions;
        const char* text;
    } rows[] = {
        {"clean", 0, 0, 0, 0, "Errors  : 0\n\nFile Passed\n"},
        {"warnings pass", 0, 0, 3, 0, "\nErrors  : 0\nWarnings: 3\n\nFile Passed\n"},
        {"cautions alone", 0, 0, 0, 2, "Errors  : 0\nCautions: 2\n\nFile Passed\n"},
        {"a bug fails", 1, 0, 0, 0, "\nBugs    : 1\nErrors  : 0\n\nFile Failed\n"},
        {"all", 1, 2, 3, 4,
         "\nBugs    : 1\nErrors  : 2\nWarnings: 3\nCautions: 4\n\nFile Failed\n"},
    };
    LogCapture log;
    for (const auto& row : rows) {
        SCOPED_TRACE(row.label);
        gulBug_cnt = row.bugs;
        gulError_cnt = row.errors;
        gulWarn_cnt = row.warnings;
        gulCaution_cnt = row.cautions;
        ERRLOG_Totals();
        EXPECT_EQ(log.Take(), row.text);
    }
}

// Every number answers with the first row that carries it, but for the few the search misses.
GTEST_TEST(Errlog, SearchOfTheTable)
{
    std::map<int, int> first;
    for (int row = 0; row < ERRLOG_ROWS; ++row)
        first.emplace(errorLogTable[row].number, row);
    for (const auto& [number, row] : first) {
        const bool missed = number >= 4349 && number <= 4369;
        EXPECT_EQ(BSearchErrorLogTable(number), missed ? -1 : row) << number;
    }
    EXPECT_STREQ(errorLogTable[BSearchErrorLogTable(3901)].text, "No %s Value Was Provided for %s");
    EXPECT_STREQ(errorLogTable[BSearchErrorLogTable(4309)].text,
                 "Duplicate [Number of Pins] keyword");
    EXPECT_EQ(BSearchErrorLogTable(-1), -1);
}

// Numbers that the public table lacks are looked up in the second one.
GTEST_TEST(Errlog, SecondTable)
{
    LogCapture log;
    ERRLOG_WarnNew(5900, "Diff Pin");
    ERRLOG_WarnNew(5899);
    EXPECT_EQ(log.Take(),
              "W5900 - [Diff Pin] has no column headers.\nI0000 - Error code doesn't exist.\n");
    EXPECT_EQ(BSearchErrorLogTable(5900), -1);
}

GTEST_TEST(Errlog, SinkSeesWhatIsWritten)
{
    struct Seen {
        unsigned asked, shown;
        ErrSeverity severity;
        std::string file;
        unsigned long line;
        std::string text;
        bool operator==(const Seen&) const = default;
    };
    std::vector<Seen> seen;
    const auto sink = [](const ErrRecord* record, void* user) {
        static_cast<std::vector<Seen>*>(user)->push_back({record->asked, record->shown,
                                                          record->severity, record->file,
                                                          record->line, record->text});
    };
    LogCapture log;
    gulLineNum = 9;
    std::strcpy(gsFileName, "f.ibs");
    ERRLOG_SetSink(sink, &seen);
    ERRLOG_LineErrorNew(1922, "1q");
    ERRLOG_ErrorNew(1923);
    ERRLOG_WarnNew(4350);
    ERRLOG_LineNotex("free %d", 5);
    gbOldStyleErrors = 1;
    ERRLOG_WarnNew(1918);
    ERRLOG_SuppressWarns(1);
    ERRLOG_WarnNew(1918);
    ERRLOG_SetSink(nullptr, nullptr);
    ERRLOG_ErrorNew(1923);
    const std::vector<Seen> expected = {
        {1922, 1922, ERR_LINE_ERROR, "f.ibs", 9, "Illegal number found '1q'"},
        {1923, 1923, ERR_ERROR, "f.ibs", 0, "Numerical value expected"},
        {4350, 0, ERR_INFO, "f.ibs", 0, "Error code doesn't exist."},
        {0, 0, ERR_LINE_NOTE, "f.ibs", 9, "free 5"},
        {1918, 1918, ERR_WARN, "f.ibs", 0, "Unexpected '=' found"},
    };
    EXPECT_EQ(seen, expected);
}
