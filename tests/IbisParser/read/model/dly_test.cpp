// Delays of tables.
#include "IbisParser/dly.h"

#include <gtest/gtest.h>

#include "IbisParser/cmn.h"
#include "tests/support/LogCapture.h"

GTEST_TEST(Dly, OnlySchedulesRefuseNegativeDelays)
{
    LogCapture log;
    double value = 7.0;
    int state = CELL_ABSENT;
    EXPECT_EQ(DLY_Parse("-1n", "tdelay_typ", "3", &value, &state), 1);
    EXPECT_EQ(value, -1e-9);
    EXPECT_EQ(log.Take(), "");
    EXPECT_EQ(DLY_ParseNotNegative("-1n", "Rise_on_dly", "stage", &value, &state), 1);
    EXPECT_EQ(log.Take(), "E2101 (line    0) - Rise_on_dly delay -1e-09 of 'stage' is negative.\n");
    EXPECT_EQ(DLY_ParseNotNegative("NA", "Rise_on_dly", "stage", &value, &state), 1);
    EXPECT_EQ(state, CELL_NA);
    EXPECT_EQ(log.Take(), "");
}
