// Several child processes at once, their ends in order.
#include "quell/process/queue.h"

#include <poll.h>
#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <map>
#include <vector>

namespace quell {

namespace {

constexpr size_t AheadPerJob = 32;  // tasks that wait for the next one to finish
constexpr int LongestWait = 200;    // ms, until clocks are looked at
constexpr int Signals[] = {SIGINT, SIGTERM, SIGHUP};

volatile std::sig_atomic_t Caught = 0;

extern "C" void QuellCatchSignal(int number)
{
    Caught = number;
}

// Catches signals while it lives, so that temporary files are removed before the program ends.
class SignalCatcher {
public:
    SignalCatcher()
    {
        Caught = 0;
        struct sigaction action = {};
        action.sa_handler = QuellCatchSignal;
        for (size_t k = 0; k < std::size(Signals); ++k) {
            sigaction(Signals[k], nullptr, &m_Before[k]);
            // One that is ignored (nohup) stays so.
            if (m_Before[k].sa_handler != SIG_IGN) sigaction(Signals[k], &action, nullptr);
        }
    }
    ~SignalCatcher()
    {
        for (size_t k = 0; k < std::size(Signals); ++k)
            sigaction(Signals[k], &m_Before[k], nullptr);
    }
    SignalCatcher(const SignalCatcher&) = delete;
    SignalCatcher& operator=(const SignalCatcher&) = delete;

private:
    struct sigaction m_Before[std::size(Signals)] = {};
};

class Queue {
public:
    Queue(size_t tasks, size_t jobs, QueueClient& client)
        : m_Tasks(tasks), m_Jobs(std::max<size_t>(jobs, 1)), m_Client(client), m_Ended(tasks, false)
    {
    }

    void Run()
    {
        while (m_Next < m_Tasks) {
            StartMore();
            Wait();
            if (Caught != 0) throw Interruption{Caught};
        }
    }

private:
    void StartMore()
    {
        while (m_Started < m_Tasks && m_Running.size() < m_Jobs &&
               m_Started < m_Next + AheadPerJob * m_Jobs) {
            const size_t task = m_Started++;
            std::unique_ptr<Child> child = m_Client.Start(task);
            if (child)
                m_Running.emplace(task, std::move(child));
            else
                SetEnded(task);
        }
    }

    void SetEnded(size_t task)
    {
        m_Ended[task] = true;
        for (; m_Next < m_Tasks && m_Ended[m_Next]; ++m_Next)
            m_Client.Finish(m_Next);
    }

    void Wait()
    {
        if (m_Running.empty()) return;
        std::vector<pollfd> polled;
        std::vector<size_t> tasks;
        for (const auto& [task, child] : m_Running) {
            polled.push_back({child->Output(), POLLIN, 0});
            tasks.push_back(task);
            if (Clock::now() > child->Deadline()) child->Kill();
        }
        if (poll(polled.data(), polled.size(), LongestWait) <= 0) return;
        for (size_t k = 0; k < polled.size(); ++k)
            if (polled[k].revents != 0) Read(tasks[k]);
    }

    void Read(size_t task)
    {
        Child& child = *m_Running.at(task);
        const ssize_t size = child.Read(m_Buffer.data(), m_Buffer.size());
        if (size > 0) m_Client.Receive(task, {m_Buffer.data(), static_cast<size_t>(size)});
        if (size > 0 || (size < 0 && errno == EINTR)) return;
        const ChildEnd end = child.Wait();
        m_Running.erase(task);
        m_Client.End(task, end);
        SetEnded(task);
    }

    size_t m_Tasks;
    size_t m_Jobs;
    QueueClient& m_Client;
    std::vector<bool> m_Ended;
    size_t m_Started = 0;
    size_t m_Next = 0;  // to be finished
    std::map<size_t, std::unique_ptr<Child>> m_Running;
    std::vector<char> m_Buffer = std::vector<char>(1 << 16);
};

}  // namespace

void RunQueue(size_t tasks, size_t jobs, QueueClient& client)
{
    const SignalCatcher catcher;
    Queue(tasks, jobs, client).Run();
}

void EndBySignal(int number)
{
    signal(number, SIG_DFL);
    raise(number);
}

}  // namespace quell
