// Lists of records with names.
#include "IbisParser/nml.h"

#include <gtest/gtest.h>

#include <cstddef>

#include "tests/support/LogCapture.h"

// The list is newest first; each surplus record is told once, in file order.
GTEST_TEST(Nml, TellsEverySurplusRecord)
{
    struct Record {
        Record* next;
        char name[8];
    };
    Record a = {nullptr, "x"};
    Record b = {&a, "X"};
    Record c = {&b, "y"};
    Record d = {&c, "x"};
    Record e = {&d, "y"};
    Record f = {&e, "x"};
    Record unnamed = {&f, ""};
    Record unnamed2 = {&unnamed, ""};
    LogCapture log;
    EXPECT_EQ(NML_CheckUnique(&unnamed2, offsetof(Record, name), offsetof(Record, next), "Model"),
              0);
    EXPECT_EQ(log.Take(),
              "E3600 - Duplicate Model name 'x'.\n"
              "E3600 - Duplicate Model name 'y'.\n"
              "E3600 - Duplicate Model name 'x'.\n");
    EXPECT_EQ(NML_CheckUnique(&c, offsetof(Record, name), offsetof(Record, next), "Model"), 1);
    EXPECT_EQ(NML_CheckUnique(nullptr, 0, 0, "Model"), 1);
}
