#include "dataflow/Numeric.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using TalvernQuell::TruncateToInt32;

static const std::int32_t Smallest = std::numeric_limits<std::int32_t>::min();
static const double Infinity = std::numeric_limits<double>::infinity();

static const struct {
    double x;
    std::int32_t expected;
} truncations[] = {
    {15.88, 15},
    {-15.88, -15},
    {-0.9, 0},
    {2147483647.0, 2147483647},
    {2147483647.999, 2147483647},
    {2147483648.0, Smallest},
    {-2147483648.0, Smallest},
    {-2147483648.999, Smallest},
    {-2147483647.999, -2147483647},
    {-2147483649.0, Smallest},
    {1e300, Smallest},
    {Infinity, Smallest},
    {-Infinity, Smallest},
    {std::numeric_limits<double>::quiet_NaN(), Smallest},
};

GTEST_TEST(Numeric, TruncatesTowardZeroWithinTheRange)
{
    for (const auto& row : truncations)
        EXPECT_EQ(TruncateToInt32(row.x), row.expected) << std::hexfloat << row.x;
}
