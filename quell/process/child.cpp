// A process of its own for the parser library. The child leaves a note in shared memory: its
// result, or where it was when a signal ended it.
#include "quell/process/child.h"

#include <poll.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "IbisParser/parse.h"
#include "quell/base/errors.h"
#include "quell/base/numbers.h"
#include "quell/process/signal_name.h"

namespace quell {

struct ChildNote {
    std::atomic<bool> done = false;
    int result = 0;
    unsigned long line = 0;
    char file[CMN_PATH_MAX + 1] = "";
};

namespace {

constexpr double Grace = 5;            // s between the child's own clock and ours
constexpr size_t TailSize = 4096;      // bytes
constexpr size_t StackSize = 1 << 16;  // for the handler when the stack itself is the fault

// Of the child's process.
ChildNote* Note = nullptr;
FrameWriter* Writer = nullptr;
alignas(16) char Stack[StackSize];

extern "C" void QuellNoteDeath(int number)
{
    Note->line = gulLineNum;
    std::memcpy(Note->file, gsFileName, sizeof gsFileName);
    Writer->FlushDying();
    raise(number);  // the handler is reset: this one ends the process
}

void WatchSignals()
{
    stack_t stack = {};
    stack.ss_sp = Stack;
    stack.ss_size = sizeof Stack;
    sigaltstack(&stack, nullptr);
    struct sigaction action = {};
    action.sa_handler = QuellNoteDeath;
    action.sa_flags = static_cast<int>(SA_ONSTACK | SA_RESETHAND);
    for (const int number : {SIGABRT, SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP, SIGALRM})
        sigaction(number, &action, nullptr);
}

void StartClock(double limit)
{
    const double seconds = std::min(limit, LongestTime);
    const double whole = std::floor(seconds);
    itimerval timer = {};
    timer.it_value.tv_sec = static_cast<time_t>(whole);
    timer.it_value.tv_usec =
        std::max<suseconds_t>(1, static_cast<suseconds_t>((seconds - whole) * 1e6));
    setitimer(ITIMER_REAL, &timer, nullptr);
}

// The child's exit status.
int RunWork(const Child::Work& work, ChildNote& note, int output, double limit)
{
    // Line by line, so that a crash loses nothing that was printed.
    std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);

    FrameWriter writer(output);
    Note = &note;
    Writer = &writer;
    WatchSignals();
    StartClock(limit);
    try {
        note.result = work(writer);
        writer.Flush();
        std::fflush(nullptr);
        note.done = true;
        return EXIT_SUCCESS;
    } catch (const std::exception& error) {
        // Ends like a failed assertion: with its reason in the last line.
        writer.Flush();
        std::printf("\n%s\n", error.what());
        std::fflush(nullptr);
        return EXIT_FAILURE;
    }
}

std::string LastLine(std::string_view text)
{
    while (!text.empty() && text.back() == '\n')
        text.remove_suffix(1);
    const size_t end = text.rfind('\n');
    return std::string(end == std::string_view::npos ? text : text.substr(end + 1));
}

// The last bytes of a file.
std::string FileTail(int descriptor)
{
    const off_t size = lseek(descriptor, 0, SEEK_END);
    const off_t start = std::max<off_t>(0, size - static_cast<off_t>(TailSize));
    std::string tail(TailSize, '\0');
    const ssize_t count = pread(descriptor, tail.data(), tail.size(), start);
    tail.resize(count > 0 ? static_cast<size_t>(count) : 0);
    return tail;
}

// Where it goes that the child prints; none when that is the pipe.
int PrintedFile(ChildStream stream)
{
    if (stream == ChildStream::Printed) return -1;
    const int file = memfd_create("printed", MFD_CLOEXEC);
    if (file < 0)
        throw CommandError(EXIT_BAD_INPUT,
                           std::string("no file in memory: ") + std::strerror(errno));
    return file;
}

ForkSetup SetupOf(const Descriptor& printed)
{
    ForkSetup setup;
    setup.standardOutput = printed.Number();
    return setup;
}

}  // namespace

Child::Child(const Work& work, ChildStream stream, double limit)
    : m_Limit(limit),
      m_Printed(PrintedFile(stream)),
      m_Process(SetupOf(m_Printed),
                [&](int output) { return RunWork(work, *m_Note, output, limit); }),
      m_Deadline(TimeAfter(limit + Grace))
{
}

ssize_t Child::Read(char* buffer, size_t size)
{
    const ssize_t count = read(Output(), buffer, size);
    if (count > 0 && !m_Printed.IsOpen()) {
        m_Tail.append(buffer, static_cast<size_t>(count));
        if (m_Tail.size() > TailSize) m_Tail.erase(0, m_Tail.size() - TailSize);
    }
    return count;
}

void Child::Kill()
{
    m_Killed = true;
    m_Process.Kill();
}

std::string Child::Reason(int status) const
{
    if (m_Killed || (WIFSIGNALED(status) && WTERMSIG(status) == SIGALRM))
        return "it did not come to an end within " + ShortText(m_Limit) + " s";
    const std::string said = LastLine(m_Printed.IsOpen() ? FileTail(m_Printed.Number()) : m_Tail);
    if (WIFSIGNALED(status)) {
        const bool asserted = WTERMSIG(status) == SIGABRT && said.ends_with("assertion failed.");
        return asserted ? said : SignalName(WTERMSIG(status));
    }
    return said.empty() ? "exit(" + std::to_string(WEXITSTATUS(status)) + ")" : said;
}

ChildEnd Child::Wait()
{
    const int status = m_Process.Wait();
    const ChildNote& note = *m_Note;
    ChildEnd end;
    end.done = note.done && WIFEXITED(status) && WEXITSTATUS(status) == 0;
    end.result = note.result;
    if (end.done) return end;
    end.line = note.line;
    end.file.assign(note.file, strnlen(note.file, sizeof note.file));
    end.failure = "the reader stopped" +
                  (end.line == 0 ? "" : " at line " + std::to_string(end.line)) + ": " +
                  Reason(status);
    return end;
}

ChildEnd RunChild(const Child::Work& work, double limit,
                  const std::function<void(FrameFields)>& take)
{
    Child child(work, ChildStream::Frames, limit);
    FrameReader frames;
    char buffer[1 << 16];
    for (;;) {
        pollfd polled = {child.Output(), POLLIN, 0};
        poll(&polled, 1, 100);
        if (polled.revents == 0) {
            if (Clock::now() > child.Deadline()) child.Kill();
            continue;
        }
        const ssize_t size = child.Read(buffer, sizeof buffer);
        if (size == 0) return child.Wait();
        if (size > 0) frames.Receive(std::string_view(buffer, static_cast<size_t>(size)), take);
    }
}

}  // namespace quell
