// Opening files by kind, line readers, the version probe.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "IbisParser/cmn.h"
#include "IbisParser/parse.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TempDir.h"

using namespace std::string_view_literals;

GTEST_TEST(CmnFile, Opening)
{
    const TempDir dir;
    for (const char* name : {"model.ibs", "X.IBS", "lower.pkg", "UPPER.AMI", "two.dots.ebd"})
        dir.Write(name, name);
    static const struct {
        const char* label;
        const char* name;  // in the directory
        int kind;
        const char* opened;  // content, null when the file does not open
        const char* fileName;
        const char* log;
    } rows[] = {
        {"as it is", "model.ibs", 1, "model.ibs", "model.ibs", ""},
        {"extension added", "model", 1, "model.ibs", "model.ibs", ""},
        {"extension in any case", "X.IBS", 1, "X.IBS", "X.IBS", ""},
        {"last period", "two.dots.ebd", 3, "two.dots.ebd", "two.dots.ebd", ""},
        {"wrong ibs", "x.txt", 1, nullptr, "x.txt",
         "E1900 - File Name Requires '.ibs' Extension.\n"},
        {"wrong pkg", "x.ibs", 2, nullptr, "x.ibs",
         "E1903 - File Name Requires '.pkg' Extension.\n"},
        {"wrong ebd", "x.pkg", 3, nullptr, "x.pkg",
         "E1902 - File Name Requires '.ebd' Extension.\n"},
        {"wrong ami", "x.txt", 4, nullptr, "x.txt",
         "E1924 - File Name Requires '.ami' Extension.\n"},
    };
    LogCapture log;
    for (const auto& row : rows) {
        SCOPED_TRACE(row.label);
        FILE* file = nullptr;
        char fileName[CMN_PATH_MAX + 1] = "";
        const std::string path = dir.Path() + row.name;
        EXPECT_EQ(CMN_OpenFile(path.c_str(), row.kind, &file, fileName), row.opened != nullptr);
        EXPECT_STREQ(fileName, row.fileName);
        EXPECT_EQ(log.Take(), row.log);
        EXPECT_EQ(gsFilePath_ibs, dir.Path());
        if (file == nullptr) continue;
        char content[32];
        EXPECT_STREQ(CMN_GetLine(content, sizeof content, file), row.opened);
        std::fclose(file);
    }
}

// A bare name is looked for beside the last file; other cases of the whole path are tried.
GTEST_TEST(CmnFile, DirectoryAndCase)
{
    const TempDir dir;
    ASSERT_EQ(chdir(dir.Path().c_str()), 0);
    ASSERT_EQ(std::system("mkdir sub UP"), 0);
    dir.Write("sub/near.ibs", "");
    dir.Write("sub/far.pkg", "");
    dir.Write("UP/THERE.IBS", "");
    LogCapture log;
    FILE* file = nullptr;
    char fileName[CMN_PATH_MAX + 1];
    char path[CMN_PATH_MAX + 1];

    ASSERT_EQ(CMN_OpenFile("sub/near.ibs", 1, &file, nullptr), 1);
    std::fclose(file);
    ASSERT_EQ(CMN_OpenFile("far", 2, &file, nullptr), 1);
    std::fclose(file);

    ASSERT_EQ(CMN_OpenFile("SUB/Near.IBS", 1, &file, fileName), 1);
    std::fclose(file);
    EXPECT_STREQ(CMN_GetIbsPath(path), "sub/");
    EXPECT_STREQ(fileName, "Near.IBS");

    ASSERT_EQ(CMN_OpenFile("up/there", 1, &file, fileName), 1);
    std::fclose(file);
    EXPECT_STREQ(CMN_GetIbsPath(path), "UP/");
    EXPECT_EQ(log.Take(), "");

    EXPECT_EQ(CMN_OpenFile("sub/none", 1, &file, nullptr), 0);
    EXPECT_EQ(log.Take(), "E1905 - Unable To Open File 'sub/none.ibs'\n");
    EXPECT_STREQ(CMN_GetIbsPath(path), "sub/");
}

GTEST_TEST(CmnFile, PathsThatDoNotFit)
{
    LogCapture log;
    FILE* file = nullptr;
    const std::string dir(800, 'd');
    EXPECT_EQ(CMN_OpenFile((dir + "/" + std::string(300, 'f') + ".ibs").c_str(), 1, &file, nullptr),
              0);
    EXPECT_EQ(log.Take(), "E1904 - Unable to assemble filename.\n");
    EXPECT_EQ(CMN_OpenFile((std::string(3000, 'd') + "/f.ibs").c_str(), 1, &file, nullptr), 0);
    EXPECT_EQ(log.Take(), "E1904 - Unable to assemble filename.\n");
    EXPECT_EQ(CMN_OpenFile(std::string(1021, 'f').c_str(), 1, &file, nullptr), 0);
    EXPECT_EQ(log.Take(), "E1901 - Unable to append filename extension.\n");
    EXPECT_EQ(CMN_OpenFile(std::string(5000, 'f').c_str(), 3, &file, nullptr), 0);
    EXPECT_EQ(log.Take(), "E1901 - Unable to append filename extension.\n");
}

// A stream over a text that may hold NULs.
class TextStream {
public:
    explicit TextStream(std::string_view text) : m_File(std::tmpfile())
    {
        std::fwrite(text.data(), 1, text.size(), m_File);
        std::rewind(m_File);
    }
    ~TextStream() { std::fclose(m_File); }
    FILE* Get() const { return m_File; }

private:
    FILE* m_File;
};

static std::vector<std::string> BoundedLines(std::string_view text, int size)
{
    const TextStream stream(text);
    std::vector<std::string> lines;
    std::vector<char> buf(static_cast<std::size_t>(size));
    while (CMN_GetLine(buf.data(), size, stream.Get()) != nullptr)
        lines.push_back(buf.data());
    return lines;
}

static std::vector<std::string> UnboundedLines(std::string_view text)
{
    const TextStream stream(text);
    std::vector<std::string> lines;
    unsigned size = 0;
    while (char* line = CMN_GetInfiniteLine(&size, stream.Get())) {
        EXPECT_EQ(line[size - 1], '\0');
        lines.emplace_back(line, size - 1);
        CMN_free(line);
    }
    return lines;
}

GTEST_TEST(CmnFile, LineEnds)
{
    static const struct {
        const char* label;
        std::string_view text;
        std::vector<std::string> lines;
    } rows[] = {
        {"empty", "", {}},
        {"LF", "a\nb\n", {"a\n", "b\n"}},
        {"no end", "a\nb", {"a\n", "b"}},
        {"empty lines", "\n\n", {"\n", "\n"}},
        {"CR LF", "a\r\n\r\nb\r\n", {"a\n", "\n", "b\n"}},
        {"Ctrl-Z at the end", "a\n\x1a", {"a\n", ""}},
        {"Ctrl-Z behind text", "a\x1a", {"a"}},
    };
    LogCapture log;
    for (const auto& row : rows) {
        SCOPED_TRACE(row.label);
        EXPECT_EQ(BoundedLines(row.text, 80), row.lines);
        EXPECT_EQ(UnboundedLines(row.text), row.lines);
        EXPECT_EQ(log.Take(), "");
    }
}

// The log with its wrapped messages back on one line.
static std::string Unwrapped(std::string log)
{
    const std::string wrap = "\n    ";
    for (std::size_t at; (at = log.find(wrap)) != std::string::npos;)
        log.replace(at, wrap.size(), " ");
    return log;
}

GTEST_TEST(CmnFile, IllegalCharacters)
{
    static const struct {
        const char* label;
        std::string_view text;
        const char* kind;
        const char* code;
    } rows[] = {
        {"NUL", "a\0b\n"sv, "NUL", "0"},
        {"control",
         "a\x01"sv
         "b\n"sv,
         "control", "1"},
        {"CR alone", "a\rb\n", "control", "d"},
        {"Ctrl-Z inside",
         "a\x1a"
         "b\n",
         "control", "1a"},
        {"8-bit",
         "a\xe9"sv
         "b\n"sv,
         "non-7-bit ASCII", "e9"},
    };
    LogCapture log;
    gulLineNum = 5;
    for (const auto& row : rows) {
        SCOPED_TRACE(row.label);
        gbAllowAnyCharacter = 0;
        const std::string report = std::string("E1917 (line    5) - Found illegal ") + row.kind +
                                   " character (code " + row.code + ").  Converting to space.\n";
        EXPECT_EQ(BoundedLines(row.text, 80), std::vector<std::string>{"a b\n"});
        EXPECT_EQ(Unwrapped(log.Take()), report);
        EXPECT_EQ(UnboundedLines(row.text), std::vector<std::string>{"a b\n"});
        log.Take();
        EXPECT_EQ(CMN_AllowAnyCharacter(2), 1);
        EXPECT_EQ(UnboundedLines(row.text), std::vector<std::string>{std::string(row.text)});
        EXPECT_EQ(log.Take(), "");
    }
    for (const char legal : {'\t', ' ', '~', '\x7f'}) {
        CMN_AllowAnyCharacter(0);
        EXPECT_EQ(BoundedLines(std::string(1, legal), 9), std::vector<std::string>{{legal}});
        EXPECT_EQ(log.Take(), "");
    }
}

// What does not fit is dropped up to the line's end; only characters that are kept are "converted".
GTEST_TEST(CmnFile, OverlongLines)
{
    EXPECT_EQ(BoundedLines("abcdef\nxy\n", 5), (std::vector<std::string>{"abcd", "xy\n"}));
    EXPECT_EQ(BoundedLines("abc\nabcd\n", 5), (std::vector<std::string>{"abc\n", "abcd"}));
    LogCapture log;
    gulLineNum = 5;
    EXPECT_EQ(BoundedLines("ab\x01\x02\n", 4), std::vector<std::string>{"ab "});
    EXPECT_EQ(Unwrapped(log.Take()),
              "E1917 (line    5) - Found illegal control character (code 1).  Converting to "
              "space.\nE1917 (line    5) - Found illegal control character (code 2).\n");

    const TextStream stream("abc\n");
    char buf[4] = "zzz";
    EXPECT_EQ(CMN_GetLine(buf, 0, stream.Get()), nullptr);
    EXPECT_STREQ(CMN_GetLine(buf, 1, stream.Get()), "");
    EXPECT_STREQ(CMN_GetLine(buf, 4, stream.Get()), "abc");
    EXPECT_EQ(CMN_GetLine(nullptr, 4, stream.Get()), nullptr);
    EXPECT_EQ(CMN_GetLine(buf, 4, nullptr), nullptr);

    for (const std::size_t length : {126u, 127u, 128u, 255u, 100000u}) {
        const std::string line(length, 'l');
        EXPECT_TRUE(UnboundedLines(line + "\n" + line) ==
                    (std::vector<std::string>{line + "\n", line}))
            << length;
    }
}

GTEST_TEST(CmnFile, VersionProbe)
{
    static const struct {
        const char* label;
        std::string_view text;
        int version;
        unsigned long lines;
    } rows[] = {
        {"first digit counts", "| c\n[IBIS Ver] 4.2\nx\n", 4, 2},
        {"underscore, any case, blanks", "\n\n  [ibis_VER]3.2", 3, 3},
        {"other keyword first", "[File Name] a\n[IBIS Ver] 4.2\n", 0, 1},
        {"version 6", "[IBIS Ver] 6.0\n", 0, 1},
        {"no version", "[IBIS Ver]\n", 0, 1},
        {"no keyword", "a\nb\n", 0, 2},
        {"empty", "", 0, 0},
        {"odd characters pass silently", "\xff\x01\n[IBIS Ver] 5.0\n", 5, 2},
    };
    const TempDir dir;
    LogCapture log;
    for (const auto& row : rows) {
        SCOPED_TRACE(row.label);
        unsigned long lines = 100;
        EXPECT_EQ(CMN_getIbisVer(dir.Write("p.ibs", row.text).c_str(), &lines, 1), row.version);
        EXPECT_EQ(lines, 100 + row.lines);
        EXPECT_EQ(log.Take(), "");
    }
    unsigned long lines = 0;
    const std::string longLine = std::string(500, '|') + "\n[IBIS Ver] 2.1\n";
    EXPECT_EQ(CMN_getIbisVer(dir.Write("p.ibs", longLine).c_str(), &lines, 1), 2);
    EXPECT_EQ(lines, 2u);
}
