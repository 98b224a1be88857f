// The three forms of a sub-parameter line, numbers and words.
#include "IbisParser/krng.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/support/LogCapture.h"

GTEST_TEST(Krng, SplitsTheThreeForms)
{
    static const struct {
        const char* line;
        int max;
        const char* items;  // joined by "|"
        int argc;
        const char* values;
        const char* log;
    } cases[] = {
        {"Vinl 0.8V", 3, "Vinl|0.8V", 2, "0.8V", ""},
        {"Vinl = 0.8V", 2, "Vinl|0.8V", 2, "0.8V", ""},
        {"Vinl=0.8V", 2, "Vinl|0.8V", 2, "0.8V", ""},
        {"\tC_comp =1p 2p  3p ", 2, "C_comp|1p", 4, "1p 2p  3p ", ""},
        {"Vinl", 2, "Vinl", 1, "", ""},
        {"Vinl =", 2, "Vinl", 1, "", ""},
        {"Vinl = = 1", 1, "Vinl", 2, "1", "E1918 (line    0) - Unexpected '=' found\n"},
        {"Vinl 1 = 2", 3, "Vinl|1|2", 3, "1 = 2", "E1918 (line    0) - Unexpected '=' found\n"},
        {"= 1", 3, "1", 1, "1", "E1918 (line    0) - Unexpected '=' found\n"},
        // However many stand there, the items are found.
        {"====a=1", 2, "a|1", 2, "a=1",
         R"(E1918 (line    0) - Unexpected '=' found
E1918 (line    0) - Unexpected '=' found
E1918 (line    0) - Unexpected '=' found
E1918 (line    0) - Unexpected '=' found
E1918 (line    0) - Unexpected '=' found
)"},
        {"", 3, "", 0, "", ""},
    };
    for (const auto& c : cases) {
        LogCapture log;
        CmnArgs args;
        ASSERT_EQ(KRNG_Split(c.line, c.max, &args), 1) << c.line;
        std::string items;
        for (int i = 0; i < args.nStored; ++i)
            items += (i > 0 ? "|" : "") + std::string(args.argv[i]);
        EXPECT_EQ(items, c.items) << c.line;
        EXPECT_EQ(args.argc, c.argc) << c.line;
        EXPECT_STREQ(KRNG_Values(c.line), c.values) << c.line;
        EXPECT_EQ(log.Take(), c.log) << c.line;
        CMN_ArgFree(&args);
    }
}

GTEST_TEST(Krng, NumbersThatAreNotFiniteCountAsNA)
{
    LogCapture log;
    RngRange* range = nullptr;
    EXPECT_EQ(KRNG_SetRange(&range, "1 -inf nan", "C_comp"), 0);
    ASSERT_NE(range, nullptr);
    EXPECT_EQ(range->typState, CELL_NUMBER);
    EXPECT_EQ(range->minState, CELL_NA);
    EXPECT_EQ(range->maxState, CELL_NA);
    EXPECT_EQ(log.Take(), "E1909 (line    0) - Invalid C_comp Value (\"1 -inf nan\")\n");

    EXPECT_EQ(KRNG_SetRange(&range, "2 2 2", "C_comp"), 0);
    EXPECT_EQ(range->typ, 1.0);
    EXPECT_EQ(log.Take(), "E1911 (line    0) - Duplicate 'C_comp' keyword.\n");
    RNG_Free(range);
    range = nullptr;

    EXPECT_EQ(KRNG_SetRange(&range, "NA 1 1", "C_comp"), 0);
    EXPECT_EQ(log.Take(), "E3300 (line    0) - The typical value of C_comp must be a number.\n");
    RNG_Free(range);

    RngSingle single = {0.0, CELL_ABSENT};
    EXPECT_EQ(KRNG_ReadCell("NA", "Vinl", 0, &single), 0);
    EXPECT_EQ(single.state, CELL_ABSENT);
    EXPECT_EQ(KRNG_ReadCell("na", "vdiff", 1, &single), 1);
    EXPECT_EQ(single.state, CELL_NA);
}

GTEST_TEST(Krng, ExactWordGoesBeforeAnyCase)
{
    static const char* const words[] = {"TYP", "typ", "Min", nullptr};
    EXPECT_EQ(KRNG_Word("typ", words), 2);
    EXPECT_EQ(KRNG_Word("Typ", words), 1);
    EXPECT_EQ(KRNG_Word("MIN", words), 3);
    EXPECT_EQ(KRNG_Word("max", words), 0);
}
