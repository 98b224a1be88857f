// Sends the error log to a temporary file while it lives, with all flags and counters at zero, and
// restores stream, flags and counters afterwards.
#ifndef TESTS_SUPPORT_LOG_CAPTURE_H
#define TESTS_SUPPORT_LOG_CAPTURE_H

#include <unistd.h>

#include <cstdio>
#include <iterator>
#include <stdexcept>
#include <string>

#include "IbisParser/errlog.h"

class LogCapture {
public:
    LogCapture() : m_File(std::tmpfile()), m_Before(Swap({m_File, {}, {}}))
    {
        if (m_File == nullptr) throw std::runtime_error("no temporary file for the log");
    }
    ~LogCapture()
    {
        Swap(m_Before);
        std::fclose(m_File);
    }
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    // What was logged since the beginning or the last Take.
    std::string Text() const
    {
        std::fflush(m_File);
        std::string text(static_cast<std::size_t>(std::ftell(m_File)), '\0');
        std::rewind(m_File);
        text.resize(std::fread(text.data(), 1, text.size(), m_File));
        std::fseek(m_File, 0, SEEK_END);
        return text;
    }

    // The same, and begins anew; the counters run on.
    std::string Take()
    {
        std::string text = Text();
        std::rewind(m_File);
        if (ftruncate(fileno(m_File), 0) != 0) throw std::runtime_error("log not truncated");
        return text;
    }

private:
    struct State {
        std::FILE* stream;
        unsigned long counters[4];
        int flags[6];
    };

    static State Swap(const State& next)
    {
        unsigned long* const counters[] = {&gulBug_cnt, &gulError_cnt, &gulWarn_cnt,
                                           &gulCaution_cnt};
        int* const flags[] = {&gbSuppressBugs,     &gbSuppressErrors, &gbSuppressWarns,
                              &gbSuppressCautions, &gbOldStyleErrors, &gbSuppressBanners};
        State before = {gpLogFile, {}, {}};
        gpLogFile = next.stream;
        for (std::size_t i = 0; i < std::size(counters); ++i) {
            before.counters[i] = *counters[i];
            *counters[i] = next.counters[i];
        }
        for (std::size_t i = 0; i < std::size(flags); ++i) {
            before.flags[i] = *flags[i];
            *flags[i] = next.flags[i];
        }
        return before;
    }

    std::FILE* m_File;
    State m_Before;
};

#endif
