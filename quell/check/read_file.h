// The check of one file: its run in a process of its own, and what comes back from there.
#ifndef QUELL_CHECK_READ_FILE_H
#define QUELL_CHECK_READ_FILE_H

#include <functional>
#include <string>
#include <unordered_set>

#include "quell/check/report.h"
#include "quell/process/child.h"
#include "quell/reader/message_sink.h"
#include "quell/reader/opening.h"

namespace quell {

// Takes the messages of the library while it lives, in place of the log. A finding's file is empty
// when it is the one that was opened, else the name of a companion.
class FindingSink {
public:
    FindingSink(const Opening& opening, std::function<void(Finding)> take);

private:
    MessageSink m_Messages;
};

// The whole run of the library over one file, its messages as frames. A file that declares a
// version beyond the known ones is not checked, unless the opening tells the version.
int SendFindings(const Opening& opening, FrameWriter& writer);

// The same run as the library shows it, banner and totals included, on standard output; nothing is
// sent. Returns the number of bugs and errors.
int PrintClassic(const Opening& opening, FrameWriter& writer);

// Builds the report from the frames of SendFindings.
class ReportReceiver {
public:
    // The report's name and type are set already. It keeps so many findings of a number.
    ReportReceiver(FileReport& report, size_t limit) : m_Report(report), m_Findings(report, limit)
    {
    }
    // Gives every finding to a function, too, in the order in which they were found.
    void TellEach(std::function<void(const Finding&)> each) { m_Each = std::move(each); }
    void Receive(FrameFields frame);
    void End(const ChildEnd& end);

private:
    bool IsRepeated(const Finding& finding);

    // Of companions, hashed: the reader reads one again for each line that names it.
    std::unordered_set<size_t> m_Told;
    FileReport& m_Report;
    FindingCollector m_Findings;
    std::function<void(const Finding&)> m_Each;
};

// Why a file of a version after the last known one is not checked.
std::string BeyondText(const std::string& version);

}  // namespace quell

#endif
