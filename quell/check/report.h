// What a check found in a file.
#ifndef QUELL_CHECK_REPORT_H
#define QUELL_CHECK_REPORT_H

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "IbisParser/errlog.h"

namespace quell {

// In the order in which totals name them; the words of messages and of the JSON.
enum class Severity { Bug, Error, Warning, Caution, Note, Information };
inline constexpr size_t SeverityCount = 6;

struct SeverityWord {
    const char* one;
    const char* many;
    bool failure;  // a file with one of these is not in order
};
const SeverityWord& WordOf(Severity severity);

// What a finding is about, and where that stands.
struct FindingPlace {
    ErrSubject subject = SUBJECT_NONE;
    std::string name;              // of the subject; empty where it has none
    int corner = -1;               // RngCorner, or -1: none, or all of them
    unsigned long line = 0;        // of the item, also where the message tells another; 0 unknown
    unsigned column = 0;           // in that line, from 1; 0 unknown
    unsigned long recordLine = 0;  // where the record begins that holds the item; 0 none
};

struct Finding {
    Severity severity = Severity::Error;
    unsigned asked = 0;      // number that the check gave
    unsigned number = 0;     // number of the message that was found for it; 0 without number
    std::string file;        // as the user named it, or a companion beside it
    unsigned long line = 0;  // 0: the whole file
    std::string text;
    FindingPlace place = {};
};

enum class FileStatus {
    Checked,
    Beyond,   // declares a version after the last known one and was not checked
    NotRead,  // could not be opened
    Failed,   // the reader did not come to the file's end
};

// The word of a status in the JSON.
const char* StatusWord(FileStatus status);

struct FileReport {
    std::string name;
    std::string type;  // ibs, pkg, ebd or ami; empty when it is not known
    FileStatus status = FileStatus::Checked;
    std::string reason;            // one line when the status is not Checked
    unsigned long failedLine = 0;  // of a reader that failed
    std::string failedFile;
    std::string declared;   // version; empty when the file tells none
    std::string checkedAs;  // version, when it was told
    std::vector<Finding> findings;
    std::array<size_t, SeverityCount> counts = {};
    // Findings that were counted only, by file and number.
    std::map<std::pair<std::string, unsigned>, size_t> more;

    size_t Count(Severity severity) const { return counts[static_cast<size_t>(severity)]; }
    size_t Failures() const;  // bugs and errors
};

// "2 errors, 1 warning", "no findings".
std::string CountsText(const std::array<size_t, SeverityCount>& counts);

// Keeps the first findings of each number and counts the others.
class FindingCollector {
public:
    FindingCollector(FileReport& report, size_t limit) : m_Report(report), m_Limit(limit) {}
    void Add(Finding finding);
    // In the order of lines: the file's own findings first, then those of its companions in the
    // order in which they were read; those without a line follow the others of their file.
    void Finish();

private:
    FileReport& m_Report;
    size_t m_Limit;
    std::map<std::pair<std::string, unsigned>, size_t> m_Seen;
    std::map<std::string, size_t> m_FileOrder;
};

// What a run over several files comes to.
struct Totals {
    size_t files = 0;
    size_t inOrder = 0;     // checked, without failures
    size_t withErrors = 0;  // bugs and errors
    size_t beyond = 0;
    size_t notRead = 0;
    size_t failed = 0;
    std::array<size_t, SeverityCount> counts = {};

    void Add(const FileReport& report);
    // 3 when a reader failed, else 1 when errors were found, else 2 when a file was not checked.
    int ExitCode() const;
};

}  // namespace quell

#endif
