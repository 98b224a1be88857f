// Conversions with a defined result for every input.
#ifndef DATAFLOW_NUMERIC_H
#define DATAFLOW_NUMERIC_H

#include <cstdint>
#include <limits>

namespace TalvernQuell {

// x truncated toward zero. The smallest integer when that does not fit or x is NaN.
inline std::int32_t TruncateToInt32(double x)
{
    if (x > -2147483649.0 && x < 2147483648.0) return static_cast<std::int32_t>(x);
    return std::numeric_limits<std::int32_t>::min();
}

}  // namespace TalvernQuell

#endif
