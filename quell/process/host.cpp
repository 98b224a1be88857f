// Runs a model in a forked process. The child reports through shared memory how far it came and
// what it got; the parent waits for its end, reads what it prints and holds the clock.
#include "quell/process/host.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>

#include "quell/base/errors.h"
#include "quell/base/lines.h"
#include "quell/base/numbers.h"
#include "quell/process/clock.h"
#include "quell/process/forked_process.h"
#include "quell/process/shared_block.h"
#include "quell/process/signal_name.h"

namespace quell {

namespace {

constexpr size_t TextLimit = 1U << 20;  // bytes kept of a message or of what a model prints
constexpr int KillGrace = 5;            // s

using InitFunction = long (*)(double*, long, long, double, double, char*, char**, void**, char**);
using CloseFunction = long (*)(void*);

enum Stage : int {
    STAGE_START,
    STAGE_LOAD,
    STAGE_INIT,
    STAGE_TEXTS,
    STAGE_CLOSE,
    STAGE_UNLOAD,
    STAGE_DONE,
    STAGE_NOT_LOADED,  // text in the message
};

// Where a model was when its process ended, for "model crashed in AMI_Init".
const char* StageText(int stage)
{
    switch (stage) {
        case STAGE_START:
            return "before it was loaded";
        case STAGE_LOAD:
            return "while it was loaded";
        case STAGE_INIT:
            return "in AMI_Init";
        case STAGE_TEXTS:
            return "after AMI_Init, where its message was read";
        case STAGE_CLOSE:
            return "in AMI_Close";
        case STAGE_UNLOAD:
            return "while it was unloaded";
        default:
            return "at its end";
    }
}

struct SharedText {
    bool set = false;
    bool cut = false;
    size_t size = 0;
    char text[TextLimit];
};

// The child's report. It lies in a mapping of its own, away from the matrix.
struct Report {
    std::atomic<int> stage = STAGE_START;
    std::atomic<bool> threw = false;
    bool noClose = false;
    long returnCode = 0;
    SharedText message;  // or why the model was not loaded
    SharedText parametersOut;
};

void Share(SharedText& shared, const char* text)
{
    if (text == nullptr) return;
    shared.size = strnlen(text, TextLimit);
    std::memcpy(shared.text, text, shared.size);
    shared.cut = shared.size == TextLimit;
    shared.set = true;
}

std::string SharedString(const SharedText& shared)
{
    return std::string(shared.text, std::min(shared.size, TextLimit));
}

template <typename Function>
Function Symbol(void* library, const char* name)
{
    return reinterpret_cast<Function>(dlsym(library, name));
}

void CallModel(const AmiCall& call, const std::string& path, SharedMatrix& matrix, Report& report)
{
    report.stage = STAGE_LOAD;
    void* library = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr) {
        Share(report.message, dlerror());
        report.stage = STAGE_NOT_LOADED;
        return;
    }
    const auto init = Symbol<InitFunction>(library, "AMI_Init");
    const auto close = Symbol<CloseFunction>(library, "AMI_Close");
    if (init == nullptr) {
        Share(report.message, (path + ": exports no AMI_Init").c_str());
        report.stage = STAGE_NOT_LOADED;
        return;
    }
    report.noClose = close == nullptr;

    std::string parameters = call.parameters;
    char* parametersOut = nullptr;
    char* message = nullptr;
    void* handle = nullptr;
    report.stage = STAGE_INIT;
    report.returnCode = init(matrix.Data(), static_cast<long>(matrix.Rows()),
                             static_cast<long>(matrix.Columns()) - 1, call.sampleInterval,
                             call.bitTime, parameters.data(), &parametersOut, &handle, &message);
    report.stage = STAGE_TEXTS;
    Share(report.message, message);
    Share(report.parametersOut, parametersOut);
    if (close != nullptr) {
        report.stage = STAGE_CLOSE;
        close(handle);
    }
    report.stage = STAGE_UNLOAD;
    dlclose(library);
    report.stage = STAGE_DONE;
}

int RunModel(const AmiCall& call, const std::string& path, SharedMatrix& matrix, Report& report)
{
    try {
        CallModel(call, path, matrix, report);
    } catch (...) {
        report.threw = true;
    }
    std::fflush(nullptr);
    return EXIT_SUCCESS;
}

// Keeps what the model prints, up to the limit; the rest is read and dropped, so that the model is
// never held up.
class OutputReader {
public:
    explicit OutputReader(int descriptor) : m_Descriptor(descriptor)
    {
        fcntl(descriptor, F_SETFL, O_NONBLOCK);
    }

    // Reads what is there; false at the end of the stream.
    bool Read()
    {
        char buffer[4096];
        for (;;) {
            const ssize_t size = read(m_Descriptor, buffer, sizeof buffer);
            if (size == 0) return false;
            if (size < 0) return errno == EAGAIN || errno == EINTR;
            const size_t room = TextLimit - text.size();
            text.append(buffer, std::min(room, static_cast<size_t>(size)));
            cut = cut || static_cast<size_t>(size) > room;
            if (Clock::now() > m_Pause) return true;
        }
    }

    // A model that prints without end must not keep Read from returning.
    void PauseAt(Clock::time_point time) { m_Pause = time; }

    std::string text;
    bool cut = false;

private:
    int m_Descriptor;
    Clock::time_point m_Pause = Clock::time_point::max();
};

// Waits for the child's end; false when the time is over first.
bool WaitForChild(const ForkedProcess& child, OutputReader& output, double timeout)
{
    const Clock::time_point deadline = TimeAfter(timeout);
    // Through the system call: not every C library's header of it serves C++.
    const Descriptor ended(static_cast<int>(syscall(SYS_pidfd_open, child.Id(), 0)));
    bool open = true;
    bool finished = false;
    output.PauseAt(deadline);
    while (!finished) {
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count();
        if (left < 0) break;
        // Without a process descriptor (an old kernel) look every ten milliseconds.
        const long long longest = ended.IsOpen() ? 60'000 : 10;
        pollfd polled[] = {{child.Output(), POLLIN, 0}, {ended.Number(), POLLIN, 0}};
        if (!open) polled[0].fd = -1;
        poll(polled, 2, static_cast<int>(std::min<long long>(left + 1, longest)));
        if (polled[0].revents != 0) open = output.Read();
        finished = child.HasEnded();
    }
    return finished;
}

// The child's end in one line, empty when it ended well.
std::string Failure(const Report& report, int status, bool finished, double timeout)
{
    const std::string place = StageText(report.stage);
    if (!finished)
        return "model did not come to an end within " + ShortText(timeout) + " s: stopped " + place;
    if (WIFSIGNALED(status)) return "model crashed " + place + ": " + SignalName(WTERMSIG(status));
    if (report.threw) return "model crashed " + place + ": exception thrown";
    if (report.stage == STAGE_DONE || report.stage == STAGE_NOT_LOADED) return "";
    return "model ended its process " + place + ": exit(" + std::to_string(WEXITSTATUS(status)) +
           ")";
}

}  // namespace

AmiResult RunAmiModel(const AmiCall& call, SharedMatrix& matrix)
{
    const Shared<Report> shared;
    Report& report = *shared;

    // A name without a slash would be looked for on the library path.
    const std::string path = std::filesystem::absolute(call.model).string();
    ForkSetup setup;
    setup.errorsToPipe = true;
    setup.ownGroup = true;
    setup.whenNone = EXIT_MODEL_BROKEN;
    ForkedProcess child(setup, [&](int) { return RunModel(call, path, matrix, report); });
    OutputReader output(child.Output());
    const bool finished = WaitForChild(child, output, call.timeout);
    child.Kill();
    const int status = child.Wait();
    output.PauseAt(Clock::now() + std::chrono::seconds(KillGrace));
    output.Read();

    AmiResult result;
    result.printed = output.text;
    if (output.cut) result.warnings.push_back("the model printed more than 1 MB; the rest is lost");
    result.failure = Failure(report, status, finished, call.timeout);
    if (!result.failure.empty()) {
        result.outcome = finished ? AmiOutcome::Crashed : AmiOutcome::TimedOut;
        return result;
    }
    if (report.stage == STAGE_NOT_LOADED) {
        result.outcome = AmiOutcome::NotLoadable;
        result.failure = SharedString(report.message);
        return result;
    }
    result.returnCode = report.returnCode;
    if (report.message.set) result.message = SharedString(report.message);
    if (report.parametersOut.set) result.parametersOut = SharedString(report.parametersOut);
    if (report.noClose) result.warnings.push_back("the model exports no AMI_Close");
    if (report.message.cut || report.parametersOut.cut)
        result.warnings.push_back("a text of the model is longer than 1 MB; the rest is left out");
    return result;
}

}  // namespace quell
