// What the parser library does when memory runs out: one allocation after the other fails.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "IbisParser/amitree.h"
#include "IbisParser/base/index.h"
#include "IbisParser/cmn.h"
#include "tests/support/LogCapture.h"
#include "tests/support/failing_memory.h"

GTEST_TEST(Memory, FailuresAreReported)
{
    LogCapture log;
    void* block = nullptr;
    FailAllocationAfter(0);
    EXPECT_EQ(CMN_malloc(&block, 40), 0);
    EXPECT_EQ(block, nullptr);
    EXPECT_EQ(log.Take(), "E1906 - Memory allocation failed.  This request 40.\n\n");

    ASSERT_EQ(CMN_malloc(&block, 40), 1);
    void* const before = block;
    FailAllocationAfter(0);
    EXPECT_EQ(CMN_realloc(&block, 80), 0);
    EXPECT_EQ(block, before);
    EXPECT_EQ(log.Take(), "E1907 - Memory reallocation failed.  This request 80.\n\n");
    CMN_freeSetNull(&block);

    FailAllocationAfter(0);
    EXPECT_EQ(CMN_StrMake("text"), nullptr);
    EXPECT_EQ(log.Take().rfind("B1908 - Unable to Allocate Memory: IbisParser/cmn ", 0), 0u);
    FailAllocationAfter(0);
    EXPECT_EQ(CMN_StrMakeN("text", 2), nullptr);
    EXPECT_EQ(log.Take(), "");
}

GTEST_TEST(Memory, SplittingKeepsNothing)
{
    LogCapture log;
    int failures = 0;
    for (;; ++failures) {
        CmnArgs args;
        FailAllocationAfter(failures);
        const int result = CMN_ArgParse("a b c", 4, &args);
        if (!AllocationHasFailed()) {
            EXPECT_EQ(result, 1);
            CMN_ArgFree(&args);
            break;
        }
        EXPECT_EQ(result, 0);
        EXPECT_EQ(args.argv, nullptr);
        EXPECT_EQ(log.Take().rfind("B1908 - ", 0), 0u);
    }
    FailAllocationAfter(-1);
    EXPECT_EQ(failures, 4);
}

GTEST_TEST(Memory, LongMessageIsCutToItsFixedPart)
{
    const std::string text(10000, 't');
    LogCapture log;
    FailAllocationAfter(0);
    ERRLOG_Notex("%s", text.c_str());
    EXPECT_TRUE(AllocationHasFailed());
    EXPECT_TRUE(log.Take() == "NOTE - " + text.substr(0, 4095) + "\n");
}

// Where each failure leaves the tree: nothing leaks (the sanitizers watch) and the code tells, but
// for the two cases in which a tree is still handed out.
GTEST_TEST(Memory, TreeSurvivesEveryFailure)
{
    LogCapture log;
    int unlinked = 0;
    int empty = 0;
    int refused = 0;
    for (int passing = 0;; ++passing) {
        std::string text = "(Root (A (B 1 \"x y\" 3 4 5)) (C 2) (D 3) (E 4) (F 5) (G 6))";
        _tagTreeStruct* tree = nullptr;
        FailAllocationAfter(passing);
        const int result = GetParsedTree(text.data(), &tree);
        const bool failed = AllocationHasFailed();
        FailAllocationAfter(-1);
        if (result == TREE_OK) {
            ASSERT_NE(tree, nullptr);
            const bool hasNodes = tree->count != 0;
            if (!hasNodes)
                ++empty;
            else if (static_cast<_tagBranchStruct*>(tree->nodes[0].detail)->childCount == 0)
                ++unlinked;
            FreeParsedTree(&tree);
        } else {
            EXPECT_EQ(result, TREE_NO_MEMORY);
            EXPECT_EQ(tree, nullptr);
            ++refused;
        }
        if (!failed) break;
    }
    EXPECT_EQ(empty, 1);
    EXPECT_EQ(unlinked, 1);
    EXPECT_GT(refused, 20);
}

GTEST_TEST(Memory, UnboundedLineIsGivenUp)
{
    FILE* file = std::tmpfile();
    const std::string line(1000, 'l');
    std::fputs((line + "\n").c_str(), file);
    LogCapture log;
    for (int passing = 0; passing < 3; ++passing) {
        std::rewind(file);
        std::getc(file);  // the stream's own buffer
        FailAllocationAfter(passing);
        unsigned size = 0;
        EXPECT_EQ(CMN_GetInfiniteLine(&size, file), nullptr);
        FailAllocationAfter(-1);
        EXPECT_EQ(log.Take().rfind("E1907 - ", 0), 0u);
    }
    std::fclose(file);
}

GTEST_TEST(Memory, IndexStaysAsItWas)
{
    LogCapture log;
    IdxTable table = {nullptr, 0, 0};
    void** value = nullptr;
    FailAllocationAfter(0);
    EXPECT_EQ(IDX_SlotName(&table, "a", &value), 0);
    static const char names[10][2] = {"0", "1", "2", "3", "4", "5", "6", "7", "8", "9"};
    for (const auto& name : names) {
        ASSERT_EQ(IDX_SlotName(&table, name, &value), 1);
        *value = &table;
    }
    FailAllocationAfter(0);
    EXPECT_EQ(IDX_SlotName(&table, "a", &value), 0);
    FailAllocationAfter(-1);
    for (const auto& name : names)
        EXPECT_EQ(IDX_FindName(&table, name), &table);
    IDX_Clear(&table);
}
