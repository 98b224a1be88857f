// Ranges and range tables.
#include "IbisParser/rng.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "IbisParser/base/rngp.h"
#include "IbisParser/cmn.h"
#include "tests/support/Messages.h"
#include "tests/support/aborts.h"

GTEST_TEST(Range, Lines)
{
    static const struct {
        const char* text;
        int result;
        int states[3];
        double values[3];
        std::vector<std::string> messages;
    } rows[] = {
        {"1.0 0.9 1.1", 1, {1, 1, 1}, {1.0, 0.9, 1.1}, {}},
        {"1.0 NA na", 1, {1, 2, 2}, {1.0, 0, 0}, {}},
        {"1.0",
         1,
         {1, 0, 0},
         {1.0, 0, 0},
         {"3901 No minimum Value Was Provided for Rpower",
          "3901 No maximum Value Was Provided for Rpower"}},
        {"2 1", 1, {1, 1, 0}, {2, 1, 0}, {"3901 No maximum Value Was Provided for Rpower"}},
        {"",
         1,
         {0, 0, 0},
         {0, 0, 0},
         {"3902 Incorrect Number of Line Items (0) For Rpower: Expecting 3"}},
        {"1 2 3 4",
         1,
         {1, 1, 1},
         {1, 2, 3},
         {"3902 Incorrect Number of Line Items (4) For Rpower: Expecting 3",
          "3903 Typ value is not in between Min and Max "}},
        {"1.0 1.2 1.5",
         1,
         {1, 1, 1},
         {1, 1.2, 1.5},
         {"3903 Typ value is not in between Min and Max "}},
        {"2 1 1.5", 1, {1, 1, 1}, {2, 1, 1.5}, {"3903 Typ value is not in between Min and Max "}},
        {"1.0 1.5 0.8", 1, {1, 1, 1}, {1, 1.5, 0.8}, {}},
        {"1 1 2", 1, {1, 1, 1}, {1, 1, 2}, {}},
        {"1 2 NA", 1, {1, 1, 2}, {1, 2, 0}, {}},
        {"x 2 1k5",
         0,
         {0, 1, 1},
         {0, 2, 1000},
         {"1909 Invalid Rpower Value (\"x\")",
          "1910 Suspicious Rpower Maximum Value (\"1k5\"); Numeric in Scale"}},
    };
    Messages messages;
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        RngRange* range = nullptr;
        EXPECT_EQ(RNG_ParseRange(row.text, "Rpower", &range), row.result);
        EXPECT_EQ(messages.Take(), row.messages);
        ASSERT_NE(range, nullptr);
        EXPECT_EQ(range->typState, row.states[0]);
        EXPECT_EQ(range->minState, row.states[1]);
        EXPECT_EQ(range->maxState, row.states[2]);
        EXPECT_EQ(range->typ, row.values[0]);
        EXPECT_EQ(range->min, row.values[1]);
        EXPECT_EQ(range->max, row.values[2]);
        RNG_Free(range);
    }
    RNG_Free(nullptr);
}

GTEST_TEST(RangeTable, Lines)
{
    static const struct {
        const char* text;
        int states[4];
        std::vector<std::string> messages;
    } rows[] = {
        {"0.5 1m 2m 3m", {1, 1, 1, 1}, {}},
        {"0.5 1m 2m", {1, 1, 1, 0}, {"1401 No maximum Value Was Provided for Pulldown"}},
        {"0.5 1m",
         {1, 1, 0, 0},
         {"1401 No minimum Value Was Provided for Pulldown",
          "1401 No maximum Value Was Provided for Pulldown"}},
        {"0.5",
         {1, 0, 0, 0},
         {"1401 No typical Value Was Provided for Pulldown",
          "1401 No minimum Value Was Provided for Pulldown",
          "1401 No maximum Value Was Provided for Pulldown"}},
        {"1 2 3 4 5",
         {1, 1, 1, 1},
         {"1402 Incorrect Number of Line Items (5) For Pulldown: Expecting 4"}},
        {" ", {0, 0, 0, 0}, {"1402 Incorrect Number of Line Items (0) For Pulldown: Expecting 4"}},
        {"1x5 NA - 1%",
         {1, 2, 0, 0},
         {"1910 Suspicious Pulldown Voltage Value (\"1x5\"); Numeric in Scale",
          "1909 Invalid Pulldown Value (\"-\")", "1909 Invalid Pulldown Value (\"1%\")"}},
    };
    Messages messages;
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        RngpLine* line = nullptr;
        EXPECT_EQ(RNGP_ParseLine(row.text, "Pulldown", "Voltage", &line), 1);
        EXPECT_EQ(messages.Take(), row.messages);
        ASSERT_NE(line, nullptr);
        EXPECT_EQ(line->xState, row.states[0]);
        EXPECT_EQ(line->typState, row.states[1]);
        EXPECT_EQ(line->minState, row.states[2]);
        EXPECT_EQ(line->maxState, row.states[3]);
        RNGP_FreeList(line);
    }
    RNGP_FreeList(nullptr);
}

static RngpLine* s_line(double x)
{
    RngpLine* line = nullptr;
    RNGP_New(&line);
    line->x = x;
    return line;
}

// Linking by the walk and by the index must not differ: values, order, messages.
GTEST_TEST(RangeTable, BothWaysOfLinking)
{
    const double values[] = {0.5, -0.0, 0.5, std::nan(""), 0.0, 0.5, std::nan(""), 1e-9, -0.0};
    const std::vector<std::string> expected = {
        "1403 Value 5.000000e-01 repeated in the First Column",  // 3rd line
        "1403 Value 0.000000e+00 repeated in the First Column",  // 5th
        "1403 Value 5.000000e-01 repeated in the First Column",  // 6th, twice
        "1403 Value 5.000000e-01 repeated in the First Column",
        "1403 Value -0.000000e+00 repeated in the First Column",  // 9th, twice
        "1403 Value -0.000000e+00 repeated in the First Column",
    };
    Messages messages;
    RngpLine* head = nullptr;
    int count = -1;
    int lines = 0;
    for (const double x : values) {
        EXPECT_EQ(RNGP_LinkLine(&head, s_line(x), &count, 1), ++lines);
        EXPECT_EQ(count, lines);
    }
    EXPECT_EQ(messages.Take(), expected);

    RngpList list = {};
    lines = 0;
    for (const double x : values)
        EXPECT_EQ(RNGP_Append(&list, s_line(x), 1), ++lines);
    EXPECT_EQ(messages.Take(), expected);
    RNGP_EndList(&list);

    const RngpLine* tail = nullptr;
    const RngpLine* a = head;
    for (const RngpLine* b = list.head; b != nullptr; tail = b, a = a->next, b = b->next) {
        ASSERT_NE(a, nullptr);
        EXPECT_TRUE(a->x == b->x || (a->x != a->x && b->x != b->x));
        EXPECT_EQ(b->prev, tail);
    }
    EXPECT_EQ(a, nullptr);
    EXPECT_EQ(list.tail, tail);

    RngpLine* prev = head;
    EXPECT_EQ(RNGP_Prev(head, &prev), 0);
    EXPECT_EQ(prev, head) << "untouched at the head";
    EXPECT_EQ(RNGP_Prev(head->next, &prev), 1);
    EXPECT_EQ(prev, head);
    RNGP_FreeList(head);
    RNGP_FreeList(list.head);
}

GTEST_TEST(RangeTable, UncheckedDuplicates)
{
    Messages messages;
    RngpLine* head = nullptr;
    RngpList list = {};
    int count = 0;
    for (int i = 0; i < 3; ++i) {
        RNGP_LinkLine(&head, s_line(1.0), &count, 0);
        RNGP_Append(&list, s_line(1.0), 0);
    }
    EXPECT_EQ(messages.TakeNumbers(), "");
    RNGP_FreeList(head);
    RNGP_FreeList(list.head);
}

GTEST_TEST(RangeTable, MistakesOfTheCaller)
{
    RngpLine line = {};
    RngpLine* head = nullptr;
    int count = 0;
    EXPECT_ASSERTION(RNGP_New(nullptr), "IbisParser/rngp");
    EXPECT_ASSERTION(RNG_ParseRange("1 1 1", "x", nullptr), "IbisParser/rng");
    EXPECT_ASSERTION(RNGP_LinkLine(&head, nullptr, &count, 0), "IbisParser/rngp");
    EXPECT_ASSERTION(RNGP_LinkLine(&head, &line, nullptr, 0), "IbisParser/rngp");
    EXPECT_ASSERTION(RNGP_Prev(&line, nullptr), "IbisParser/rngp");
}
