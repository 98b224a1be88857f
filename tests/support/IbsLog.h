// Reads and checks a text as an IBIS file and lists the messages as "E0118@7 N0713 ...": severity,
// number and, for messages with a line, the line.
#ifndef TESTS_SUPPORT_IBS_LOG_H
#define TESTS_SUPPORT_IBS_LOG_H

#include <cstdio>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include "IbisParser/errlog.h"
#include "IbisParser/parse.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TempDir.h"

class IbsLog {
public:
    // Only the numbers inside one of the ranges are listed; no range: all.
    explicit IbsLog(std::initializer_list<std::pair<unsigned, unsigned>> ranges) : m_Ranges(ranges)
    {
    }

    // The three lines of a legal header come before the text, [End] behind it.
    std::string Check(const std::string& version, const std::string& text)
    {
        const TempDir dir;
        const std::string path =
            dir.Write("t.ibs", "[IBIS Ver] " + version + "\n[File Name] t.ibs\n[File Rev] 1\n" +
                                   text + "[End]\n");
        LogCapture log;
        m_Found.clear();
        gbSuppressBanners = 1;
        ERRLOG_SetSink(Receive, this);
        INIT();
        if (PARSE(path.c_str(), FILE_IBS)) TEST(FILE_IBS, 0);
        FINI();
        ERRLOG_SetSink(nullptr, nullptr);
        m_Text = log.Text();
        return m_Found;
    }

    // The log of the last Check.
    const std::string& Text() const { return m_Text; }

private:
    static void Receive(const ErrRecord* record, void* user)
    {
        auto* self = static_cast<IbsLog*>(user);
        bool isListed = self->m_Ranges.empty();
        for (const auto& [first, last] : self->m_Ranges)
            isListed = isListed || (first <= record->asked && record->asked <= last);
        if (!isListed) return;
        char item[40];
        std::snprintf(item, sizeof item, "%s%c%04u", self->m_Found.empty() ? "" : " ",
                      "BBEEWWCCNNI"[record->severity], record -> asked);
        self->m_Found += item;
        if (record->line != 0) self->m_Found += "@" + std::to_string(record->line);
    }

    std::vector<std::pair<unsigned, unsigned>> m_Ranges;
    std::string m_Found;
    std::string m_Text;
};

#endif
