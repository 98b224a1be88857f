// Collects what the error log writes as records, for tests that look at numbers and not at layout.
#ifndef TESTS_SUPPORT_MESSAGES_H
#define TESTS_SUPPORT_MESSAGES_H

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "IbisParser/errlog.h"
#include "tests/support/LogCapture.h"

class Messages {
public:
    // Only numbers from first to last are kept.
    explicit Messages(unsigned first = 0, unsigned last = 9999) : m_First(first), m_Last(last)
    {
        gbSuppressBanners = 1;
        ERRLOG_SetSink(Receive, this);
    }
    ~Messages() { ERRLOG_SetSink(nullptr, nullptr); }
    Messages(const Messages&) = delete;
    Messages& operator=(const Messages&) = delete;

    // Is called with each message, before it is kept.
    std::function<void(const ErrRecord&)> OnMessage;

    // "1913 text" for each message since the last call.
    std::vector<std::string> Take() { return std::exchange(m_Lines, {}); }

    // "1913 1014" for the same.
    std::string TakeNumbers()
    {
        std::string numbers;
        for (const std::string& line : Take())
            numbers += (numbers.empty() ? "" : " ") + line.substr(0, line.find(' '));
        return numbers;
    }

private:
    static void Receive(const ErrRecord* record, void* user)
    {
        Messages* self = static_cast<Messages*>(user);
        if (self->OnMessage) self->OnMessage(*record);
        if (record->asked < self->m_First || record->asked > self->m_Last) return;
        self->m_Lines.push_back(std::to_string(record->asked) + " " + record->text);
    }

    LogCapture m_Log;
    unsigned m_First;
    unsigned m_Last;
    std::vector<std::string> m_Lines;
};

#endif
