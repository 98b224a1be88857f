// Assemblies of boards: which files their check reads.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "IbisParser/parse.h"
#include "tests/support/Messages.h"
#include "tests/support/TempDir.h"

// A board without [Manufacturer], so that each reading of the file gives one error 4310. Its node
// J1.1 is a pin of the board in the file `next`.
static std::string s_board(const std::string& name, const std::string& next)
{
    return "[IBIS Ver] 3.2\n[File Name] " + name +
           R"(
[File Rev] 1
[Begin Board Description] b
[Number Of Pins] 1
[Pin List] signal_name
1 S
[Path Description] p
Pin 1 Len=1 L=1n / Node J1.1
[Reference Designator Map]
J1 )" + next +
           " b\n[End Board Description]\n[End]\n";
}

// The messages of a chain of so many boards, the last of which names the file `end`.
static std::vector<std::string> s_check(int boards, const std::string& end, int deep)
{
    const TempDir dir;
    const auto name = [](int i) { return "b" + std::to_string(i) + ".ebd"; };
    std::string top;
    for (int i = boards - 1; i >= 0; --i)
        top = dir.Write(name(i), s_board(name(i), i + 1 == boards ? end : name(i + 1)));
    Messages messages(4300, 4600);
    INIT();
    PARSE(top.c_str(), FILE_EBD);
    TEST(FILE_EBD, deep);
    FINI();
    return messages.Take();
}

static long s_filesRead(const std::vector<std::string>& messages)
{
    return std::count(messages.begin(), messages.end(), "4310 Board 'b' lacks [Manufacturer].");
}

GTEST_TEST(Boards, FilesAreReadOnceAndToEightLevels)
{
    static const struct {
        const char* label;
        int boards;
        const char* end;
        int deep;
        long filesRead;
        std::size_t messages;
    } cases[] = {
        {"not deep", 3, "none.ebd", 0, 1, 1},
        {"not deep, file missing", 1, "none.ebd", 0, 1, 2},
        {"deep, last file missing", 3, "none.ebd", 1, 3, 4},
        {"a circle", 3, "b0.ebd", 1, 3, 3},
        {"a circle beside the first", 3, "b1.ebd", 1, 3, 3},
        {"eight levels below the first", 9, "none.ebd", 1, 9, 9},
        {"deeper ones are left alone", 12, "none.ebd", 1, 9, 9},
    };
    for (const auto& row : cases) {
        const std::vector<std::string> messages = s_check(row.boards, row.end, row.deep);
        EXPECT_EQ(s_filesRead(messages), row.filesRead) << row.label;
        EXPECT_EQ(messages.size(), row.messages) << row.label;
    }
}
