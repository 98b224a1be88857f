// The clock that children are held to.
#ifndef QUELL_PROCESS_CLOCK_H
#define QUELL_PROCESS_CLOCK_H

#include <algorithm>
#include <chrono>

namespace quell {

using Clock = std::chrono::steady_clock;

inline constexpr double LongestTime = 1e8;  // s, what every clock can count

// So many seconds from now.
inline Clock::time_point TimeAfter(double seconds)
{
    return Clock::now() + std::chrono::duration_cast<Clock::duration>(
                              std::chrono::duration<double>(std::min(seconds, LongestTime)));
}

}  // namespace quell

#endif
