// The one place that forks.
#include "quell/process/forked_process.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iostream>

namespace quell {

namespace {

constexpr int Faults[] = {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT, SIGTRAP, SIGPIPE, SIGALRM};
constexpr int EndsByUser[] = {SIGTERM, SIGINT, SIGHUP};

[[noreturn]] void NoProcess(ExitCode code, const char* what)
{
    throw CommandError(code, std::string(what) + ": " + std::strerror(errno));
}

// In the child, before its work.
void Prepare(const ForkSetup& setup, int pipe, pid_t parent)
{
    if (setup.ownGroup) setpgid(0, 0);
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != parent) _exit(EXIT_FAILURE);
    const int null = open("/dev/null", O_RDONLY | O_CLOEXEC);
    dup2(null, STDIN_FILENO);
    dup2(setup.standardOutput < 0 ? pipe : setup.standardOutput, STDOUT_FILENO);
    if (setup.errorsToPipe) dup2(pipe, STDERR_FILENO);
    const rlimit noCore = {0, 0};
    setrlimit(RLIMIT_CORE, &noCore);
    for (const int number : Faults)
        signal(number, SIG_DFL);
    for (const int number : EndsByUser)
        if (signal(number, SIG_DFL) == SIG_IGN) signal(number, SIG_IGN);
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
}

// Nothing that the work throws may run the caller's code a second time.
[[noreturn]] void Run(const ForkedProcess::Work& work, int pipe) noexcept
{
    _exit(work(pipe));
}

}  // namespace

ForkedProcess::ForkedProcess(const ForkSetup& setup, const Work& work) : m_OwnGroup(setup.ownGroup)
{
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) NoProcess(setup.whenNone, "no pipe");
    m_Output.Reset(ends[0]);
    Descriptor input(ends[1]);
    // The child would write a second time what lies in our buffers.
    std::cout.flush();
    std::fflush(nullptr);
    const pid_t parent = getpid();
    m_Id = fork();
    if (m_Id < 0) NoProcess(setup.whenNone, "no process");
    if (m_Id == 0) {
        Prepare(setup, input.Number(), parent);
        Run(work, input.Number());
    }
    // In both processes: whichever comes first.
    if (m_OwnGroup) setpgid(m_Id, m_Id);
}

ForkedProcess::~ForkedProcess()
{
    if (m_Id <= 0) return;
    Kill();
    Wait();
}

void ForkedProcess::Kill()
{
    if (m_OwnGroup) kill(-m_Id, SIGKILL);
    kill(m_Id, SIGKILL);
}

bool ForkedProcess::HasEnded() const
{
    siginfo_t info = {};
    return waitid(P_PID, static_cast<id_t>(m_Id), &info, WEXITED | WNOHANG | WNOWAIT) == 0 &&
           info.si_pid == m_Id;
}

int ForkedProcess::Wait()
{
    int status = 0;
    while (waitpid(m_Id, &status, 0) < 0 && errno == EINTR) {
    }
    m_Id = -1;
    return status;
}

}  // namespace quell
