// Signals by name.
#ifndef QUELL_PROCESS_SIGNAL_NAME_H
#define QUELL_PROCESS_SIGNAL_NAME_H

namespace quell {

// "SIGSEGV"; "a signal" for one that no process dies of by itself.
const char* SignalName(int number);

}  // namespace quell

#endif
