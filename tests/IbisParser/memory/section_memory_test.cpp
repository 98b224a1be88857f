// Whole files while one allocation after the other fails: what is read is torn down cleanly (the
// sanitizers watch), the failure is told, and every section tells it with its own message.
#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "IbisParser/parse.h"
#include "tests/support/Messages.h"
#include "tests/support/failing_memory.h"

typedef std::multiset<unsigned> Numbers;

static Numbers s_read(const std::filesystem::path& file, int type, int passing)
{
    Messages messages;
    Numbers numbers;
    messages.OnMessage = [&numbers](const ErrRecord& record) { numbers.insert(record.asked); };
    FailAllocationAfter(passing);
    if (INIT()) {
        if (PARSE(file.c_str(), type)) TEST(type, 1);
        FINI();
    }
    return numbers;
}

// The numbers that failures bring beyond those of the file itself.
static void s_failEach(const std::filesystem::path& file, int type, std::set<unsigned>* told)
{
    const Numbers normal = s_read(file, type, -1);
    int passing = 0;
    for (;;) {
        const Numbers numbers = s_read(file, type, passing);
        const bool failed = AllocationHasFailed();
        FailAllocationAfter(-1);
        if (!failed) break;
        EXPECT_NE(numbers, normal) << file << ", allocation " << passing;
        for (const unsigned number : numbers)
            if (normal.count(number) == 0) told->insert(number);
        // Every one of the first allocations, then every twentieth part further.
        passing += 1 + (passing > 800 ? passing / 20 : 0);
    }
    EXPECT_GT(passing, 0) << file;
}

GTEST_TEST(Memory, SectionsTellEveryFailure)
{
    static const std::map<std::string, int> types = {
        {".ibs", FILE_IBS}, {".pkg", FILE_PKG}, {".ebd", FILE_EBD}};
    std::set<unsigned> told;
    for (const auto& entry :
         std::filesystem::recursive_directory_iterator(QUELL_SOURCE_DIR "/tests/data")) {
        const auto type = types.find(entry.path().extension());
        if (type != types.end()) s_failEach(entry.path(), type->second, &told);
    }
    static const unsigned rows[] = {
        101,  501,  601,  800,  801,  1006, 1101, 1200, 1201, 1300, 1301, 1400, 1404,
        1500, 1501, 1600, 1700, 1701, 1800, 1801, 1906, 1907, 1908, 2000, 2001, 2201,
        2301, 2500, 2501, 2601, 2700, 2701, 2900, 2901, 3000, 3001, 3100, 3101, 3200,
        3201, 3401, 3700, 3701, 3801, 3900, 3904, 4001, 4200, 4301, 4700, 4800};
    for (const unsigned number : rows)
        EXPECT_EQ(told.count(number), 1u) << number;
}
