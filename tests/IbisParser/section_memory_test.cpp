// Files are read and checked while one allocation after the other fails: nothing crashes, and
// nothing leaks (the sanitizers watch).
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "IbisParser/parse.h"
#include "tests/support/LogCapture.h"
#include "tests/support/failing_memory.h"

// 1 when the failure was reached.
static bool s_readWithFailure(const std::string& file, int passing)
{
    const LogCapture log;
    gbSuppressBanners = 1;
    INIT();
    FailAllocationAfter(passing);
    PARSE(file.c_str(), FILE_IBS);
    TEST(FILE_IBS, 0);
    const bool failed = AllocationHasFailed();
    FailAllocationAfter(-1);
    FINI();
    return failed;
}

GTEST_TEST(Memory, SectionsSurviveEveryFailure)
{
    int files = 0;
    for (const char* folder : {"component", "model"})
        for (const auto& entry : std::filesystem::directory_iterator(
                 std::filesystem::path(QUELL_SOURCE_DIR "/tests/data") / folder)) {
            if (entry.path().extension() != ".ibs") continue;
            // Every one of the first allocations, then every twentieth part further.
            int passing = 0;
            while (s_readWithFailure(entry.path().string(), passing))
                passing += 1 + passing / 20;
            EXPECT_GT(passing, 50) << entry.path();
            ++files;
        }
    EXPECT_GT(files, 20);
}
