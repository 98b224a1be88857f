// The one place that forks: every child is prepared alike, whatever runs in it.
#ifndef QUELL_PROCESS_FORKED_PROCESS_H
#define QUELL_PROCESS_FORKED_PROCESS_H

#include <sys/types.h>

#include <functional>

#include "quell/base/errors.h"
#include "quell/process/descriptor.h"

namespace quell {

struct ForkSetup {
    int standardOutput = -1;             // the descriptor that it becomes; -1: the pipe
    bool errorsToPipe = false;           // standard error goes into the pipe, too
    bool ownGroup = false;               // the child leads a process group, which is killed with it
    ExitCode whenNone = EXIT_BAD_INPUT;  // of the CommandError when the system gives no process
};

// A child and the end of the pipe that it writes to.
//
// The child ends when its parent does. It reads nothing on standard input, dumps no core, and
// signals are as the system sets them: its faults go to no handler of ours or of a sanitizer. What
// the user had ignored when the program was started (nohup) stays so.
class ForkedProcess {
public:
    // Gets the descriptor of the pipe's end in the child; returns its exit status.
    using Work = std::function<int(int pipe)>;

    ForkedProcess(const ForkSetup& setup, const Work& work);
    // Kills it when it has not been waited for.
    ~ForkedProcess();
    ForkedProcess(const ForkedProcess&) = delete;
    ForkedProcess& operator=(const ForkedProcess&) = delete;

    pid_t Id() const { return m_Id; }
    int Output() const { return m_Output.Number(); }  // the end of the pipe to read from
    void Kill();
    // It has come to an end and is still to be waited for.
    bool HasEnded() const;
    // Its status, as waitpid(2) tells it.
    int Wait();

private:
    Descriptor m_Output;
    bool m_OwnGroup;
    pid_t m_Id = -1;
};

}  // namespace quell

#endif
