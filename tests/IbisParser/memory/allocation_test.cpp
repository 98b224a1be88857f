// What the reader and the records of this folder report when memory runs out.
#include <gtest/gtest.h>

#include <string>

#include "IbisParser/algmod.h"
#include "IbisParser/cmn.h"
#include "IbisParser/hdr.h"
#include "IbisParser/parse.h"
#include "IbisParser/rng.h"
#include "IbisParser/rngp.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TempDir.h"
#include "tests/support/failing_memory.h"

// The heads of the lines logged when the allocation after so many fails: "B1908
// B3900".
static bool s_failed = false;
template <typename Action>
static std::string s_heads(int passing, Action action)
{
    LogCapture log;
    FailAllocationAfter(passing);
    action();
    s_failed = AllocationHasFailed();
    FailAllocationAfter(-1);
    std::string heads;
    const std::string text = log.Text();
    for (std::size_t at = 0; at < text.size(); at = text.find('\n', at) + 1)
        if (text[at] != '\n' && text[at] != ' ')
            heads += (heads.empty() ? "" : " ") + text.substr(at, 5);
    return heads;
}

GTEST_TEST(Allocation, Ranges)
{
    RngRange* range = nullptr;
    RngpLine* line = nullptr;
    const auto parseRange = [&] { EXPECT_EQ(RNG_ParseRange("1 1 1", "x", &range), 0); };
    const auto parseLine = [&] { EXPECT_EQ(RNGP_ParseLine("1 1 1 1", "x", "y", &line), 0); };
    // The first block holds the arguments, the next ones each of them, the last the record.
    for (int passing = 0; passing < 4; ++passing)
        EXPECT_EQ(s_heads(passing, parseRange), "B1908 B3900");
    EXPECT_EQ(s_heads(4, parseRange), "E1906 B3904");
    for (int passing = 0; passing < 5; ++passing)
        EXPECT_EQ(s_heads(passing, parseLine), "B1908 B1400");
    EXPECT_EQ(s_heads(5, parseLine), "E1906 B1404");
    EXPECT_EQ(range, nullptr);
    EXPECT_EQ(line, nullptr);
}

GTEST_TEST(Allocation, Document)
{
    EXPECT_EQ(s_heads(0, [] { EXPECT_EQ(INIT(), 0); }), "E1906 E3900");
    INIT();
    EXPECT_EQ(s_heads(0, [] { EXPECT_EQ(HDR_Init(), 0); }), "E1906 E1006");
    HDR_Init();
    char notes[] = "[Notes] a";
    const auto receive = [&] { HDR_ReceiveLine(LINE_KEYWORD, KEY_NOTES, notes); };
    EXPECT_EQ(s_heads(0, receive), "E1907 E1020");
    LogCapture log;
    FINI();
}

GTEST_TEST(Allocation, AlgorithmicModel)
{
    AlgMod* record = nullptr;
    char keyword[] = "[Algorithmic Model]";
    EXPECT_EQ(s_heads(0, [&] { ALGMOD_New(keyword, &record); }), "E1906 B4602");
    EXPECT_EQ(record, nullptr);
    ALGMOD_New(keyword, &record);
    char line[] = "Executable a_b_64 c d.ami";
    const auto receive = [&] { EXPECT_EQ(ALGMOD_ReceiveLine(line, &record->execs), 0); };
    EXPECT_EQ(s_heads(0, receive), "B1908 B4608");
    EXPECT_EQ(s_heads(4, receive), "B1908 B4608");
    EXPECT_EQ(s_heads(5, receive), "B1908");
    EXPECT_EQ(s_heads(6, receive), "E1906 B4602");
    ALGMOD_ReceiveLine(line, &record->execs);
    EXPECT_EQ(s_heads(0, [&] { ALGMOD_Fini(record->execs); }), "E1906 B4602");
    EXPECT_EQ(s_heads(1, [&] { ALGMOD_Fini(record->execs); }), "E1906");
    ALGMOD_Free(record);
}

GTEST_TEST(Allocation, ParameterFile)
{
    static const char parameters[] =
        "(a (Reserved_Parameters (Init_Returns_Impulse (Usage Info) (Type Boolean) (Default True)\n"
        "(Description \"d\")) (GetWave_Exists (Usage Info) (Type Boolean) (Default True)\n"
        "(Description \"d\"))) (Model_Specific (b (c (Usage In)))))\n";
    const TempDir dir;
    const std::string path = dir.Write("x.ami", parameters);
    gbSuppressBanners = 1;
    int refused = 0;
    bool grown = false;
    for (int passing = 0; passing < 200; ++passing) {
        const std::string heads = s_heads(passing, [&] {
            gbSuppressBanners = 1;
            if (PARSE(path.c_str(), FILE_AMI))
                AMI_Test();
            else
                ++refused;
        });
        grown = grown || heads.find("E1907 B0922") == 0;
        EXPECT_TRUE(s_failed || heads.empty()) << heads;
    }
    EXPECT_TRUE(grown);
    EXPECT_GT(refused, 2) << "lines and text both need memory";
}
