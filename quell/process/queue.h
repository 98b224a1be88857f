// Several child processes at once, their ends in order.
#ifndef QUELL_PROCESS_QUEUE_H
#define QUELL_PROCESS_QUEUE_H

#include <memory>
#include <string_view>

#include "quell/process/child.h"

namespace quell {

// What a queue does with its tasks, numbered from 0.
class QueueClient {
public:
    virtual ~QueueClient() = default;
    // Null for a task without a process; End is not called then.
    virtual std::unique_ptr<Child> Start(size_t task) = 0;
    virtual void Receive(size_t task, std::string_view bytes) = 0;
    virtual void End(size_t task, const ChildEnd& end) = 0;
    // In the order of the tasks, once for each, when it and all before it have ended.
    virtual void Finish(size_t task) = 0;
};

// Runs them, at most `jobs` at once and none far ahead of the next to be finished. Throws
// Interruption when the user ends the program; the children are gone then.
void RunQueue(size_t tasks, size_t jobs, QueueClient& client);

// SIGINT, SIGTERM or SIGHUP came while a queue ran.
struct Interruption {
    int signal;
};

// Ends the program with the signal, as if nobody had caught it.
void EndBySignal(int number);

}  // namespace quell

#endif
