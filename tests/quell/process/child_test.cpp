// The child process of the reader, whatever happens in it, and the frames that come from there.
#include "quell/process/child.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <stdexcept>

#include "IbisParser/cmn.h"
#include "IbisParser/parse.h"
#include "quell/base/errors.h"
#include "quell/process/queue.h"

namespace quell {
namespace {

void SendNumber(FrameWriter& writer, uint64_t number)
{
    writer.Begin();
    writer.Number(number);
    writer.Text("text of " + std::to_string(number));
    writer.End();
}

GTEST_TEST(Child, EveryEndIsAResult)
{
    static const struct {
        const char* label;
        Child::Work work;
        bool done;
        bool saved;
        const char* failure;
    } rows[] = {
        {"returns", [](FrameWriter&) { return 7; }, true, true, ""},
        {"asserts",
         [](FrameWriter&) -> int {
             gulLineNum = 212;
             std::printf("Checking\n");
             CMN_AssertFailed("IbisParser/cmn", 5);
         },
         false, true, "the reader stopped at line 212: IbisParser/cmn:5:assertion failed."},
        {"crashes before the first line", [](FrameWriter&) { return raise(SIGSEGV); }, false, true,
         "the reader stopped: SIGSEGV"},
        {"crashes in a line",
         [](FrameWriter&) {
             gulLineNum = 3;
             return raise(SIGFPE);
         },
         false, true, "the reader stopped at line 3: SIGFPE"},
        {"is killed", [](FrameWriter&) { return kill(getpid(), SIGKILL); }, false, false,
         "the reader stopped: SIGKILL"},
        {"exits", [](FrameWriter&) -> int { _exit(5); }, false, false,
         "the reader stopped: exit(5)"},
        {"throws", [](FrameWriter&) -> int { throw std::runtime_error("no room"); }, false, true,
         "the reader stopped: no room"},
        {"hangs",
         [](FrameWriter&) {
             gulLineNum = 9;
             for (;;)
                 pause();
             return 0;
         },
         false, true, "the reader stopped at line 9: it did not come to an end within 0.2 s"},
    };
    for (const auto& row : rows) {
        std::vector<uint64_t> numbers;
        const ChildEnd end = RunChild(
            [&row](FrameWriter& writer) {
                SendNumber(writer, 1);
                SendNumber(writer, 2);
                return row.work(writer);
            },
            0.2, [&numbers](FrameFields frame) { numbers.push_back(frame.Number()); });
        EXPECT_EQ(end.done, row.done) << row.label;
        EXPECT_EQ(end.failure, row.failure) << row.label;
        EXPECT_EQ(end.result, row.done ? 7 : 0) << row.label;
        // What was found before the end is not lost, where anybody could save it.
        EXPECT_EQ(numbers.size(), row.saved ? 2u : 0u) << row.label;
    }
}

// Under nohup the end of a terminal must not take the readers away.
GTEST_TEST(Child, SignalsThatTheUserIgnoresStayIgnored)
{
    for (const bool ignored : {true, false}) {
        const auto before = signal(SIGHUP, ignored ? SIG_IGN : SIG_DFL);
        const ChildEnd end = RunChild([](FrameWriter&) { return raise(SIGHUP); }, 30, [](auto) {});
        signal(SIGHUP, before);
        EXPECT_EQ(end.done, ignored) << end.failure;
    }
}

GTEST_TEST(Frames, StreamsMayBeCutAnywhere)
{
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    FrameWriter writer(ends[1]);
    for (uint64_t k = 0; k < 5; ++k)
        SendNumber(writer, k);
    writer.Flush();
    char bytes[1024];
    const ssize_t size = read(ends[0], bytes, sizeof bytes);
    close(ends[0]);
    close(ends[1]);
    ASSERT_GT(size, 0);
    for (size_t step : {size_t{1}, size_t{7}, size_t{1000}}) {
        FrameReader reader;
        std::string texts;
        for (size_t k = 0; k < static_cast<size_t>(size); k += step)
            reader.Receive(
                std::string_view(bytes + k, std::min(step, static_cast<size_t>(size) - k)),
                [&texts](FrameFields frame) {
                    texts += std::to_string(frame.Number()) + "=";
                    texts += std::string(frame.Text()) + ";";
                    EXPECT_EQ(frame.Number(), 0u);
                    EXPECT_EQ(frame.Text(), "");
                });
        EXPECT_EQ(texts, "0=text of 0;1=text of 1;2=text of 2;3=text of 3;4=text of 4;") << step;
    }
}

// Later tasks end first.
class Sleepers : public QueueClient {
public:
    std::unique_ptr<Child> Start(size_t task) override
    {
        ++running;
        most = std::max(most, running);
        if (task == 3) {
            --running;
            return nullptr;
        }
        return std::make_unique<Child>(
            [task](FrameWriter& writer) {
                usleep(static_cast<useconds_t>(60'000 - 10'000 * task));
                SendNumber(writer, task);
                return static_cast<int>(task);
            },
            ChildStream::Frames, 30);
    }
    void Receive(size_t task, std::string_view bytes) override { received += bytes.size() + task; }
    void End(size_t task, const ChildEnd& end) override
    {
        --running;
        EXPECT_EQ(end.result, static_cast<int>(task));
    }
    void Finish(size_t task) override { finished.push_back(task); }

    size_t running = 0;
    size_t most = 0;
    size_t received = 0;
    std::vector<size_t> finished;
};

GTEST_TEST(Queue, FinishesInOrderAndNeverRunsMoreThanAllowed)
{
    for (const size_t jobs : {size_t{1}, size_t{3}, size_t{8}}) {
        Sleepers sleepers;
        RunQueue(6, jobs, sleepers);
        EXPECT_EQ(sleepers.finished, (std::vector<size_t>{0, 1, 2, 3, 4, 5})) << jobs;
        EXPECT_LE(sleepers.most, jobs + 1) << jobs;
        EXPECT_EQ(sleepers.running, 0u) << jobs;
    }
}

}  // namespace
}  // namespace quell
