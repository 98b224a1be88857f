// Signals by name.
#include "quell/process/signal_name.h"

#include <csignal>

namespace quell {

const char* SignalName(int number)
{
    static constexpr struct {
        int number;
        const char* name;
    } names[] = {
        {SIGSEGV, "SIGSEGV"}, {SIGABRT, "SIGABRT"}, {SIGBUS, "SIGBUS"},   {SIGFPE, "SIGFPE"},
        {SIGILL, "SIGILL"},   {SIGKILL, "SIGKILL"}, {SIGTERM, "SIGTERM"}, {SIGPIPE, "SIGPIPE"},
        {SIGTRAP, "SIGTRAP"}, {SIGSYS, "SIGSYS"},   {SIGXCPU, "SIGXCPU"}, {SIGALRM, "SIGALRM"},
    };
    for (const auto& row : names)
        if (row.number == number) return row.name;
    return "a signal";
}

}  // namespace quell
