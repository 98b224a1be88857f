// A process of its own for the parser library, which keeps its state in globals and ends its
// process on programming errors. Whatever happens to it is a result for the caller.
#ifndef QUELL_PROCESS_CHILD_H
#define QUELL_PROCESS_CHILD_H

#include <cstddef>
#include <functional>
#include <string>

#include "quell/process/clock.h"
#include "quell/process/forked_process.h"
#include "quell/process/frames.h"
#include "quell/process/shared_block.h"

namespace quell {

// What comes through the child's pipe.
enum class ChildStream {
    Frames,   // what the work gives the writer
    Printed,  // what it prints on standard output
};

struct ChildEnd {
    bool done = false;       // the work returned
    int result = 0;          // what it returned
    unsigned long line = 0;  // not done: the line being read, 0 before the first,
    std::string file;        // its file, without folder,
    std::string failure;     // and why, in one line: "the reader stopped at line 7: SIGSEGV"
};

struct ChildNote;

class Child {
public:
    using Work = std::function<int(FrameWriter&)>;

    // Forks and runs the work there; limit in s. Throws CommandError when the system gives no
    // process.
    Child(const Work& work, ChildStream stream, double limit);

    int Output() const { return m_Process.Output(); }  // the end of the pipe to wait at
    // As read(2); 0 when the child has closed its end.
    ssize_t Read(char* buffer, size_t size);
    // The child ends itself when its time is over; one that cannot any more is to be killed then.
    Clock::time_point Deadline() const { return m_Deadline; }
    void Kill();
    // After the end of its stream.
    ChildEnd Wait();

private:
    std::string Reason(int status) const;

    Shared<ChildNote> m_Note;
    double m_Limit;
    Descriptor m_Printed;  // a file with what is printed beside frames
    ForkedProcess m_Process;
    Clock::time_point m_Deadline;
    bool m_Killed = false;
    std::string m_Tail;  // the last of a printed stream
};

// Runs the work and gives every frame to take, until it has ended.
ChildEnd RunChild(const Child::Work& work, double limit,
                  const std::function<void(FrameFields)>& take);

}  // namespace quell

#endif
