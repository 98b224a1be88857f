// What a check found in a file.
#include "quell/check/report.h"

#include <algorithm>

#include "quell/base/errors.h"

namespace quell {

namespace {

constexpr SeverityWord Words[SeverityCount] = {
    {"bug", "bugs", true},          {"error", "errors", true},
    {"warning", "warnings", false}, {"caution", "cautions", false},
    {"note", "notes", false},       {"information", "informations", false},
};

constexpr const char* StatusWords[] = {"checked", "beyond", "not read", "reader failed"};

}  // namespace

const SeverityWord& WordOf(Severity severity)
{
    return Words[static_cast<size_t>(severity)];
}

const char* StatusWord(FileStatus status)
{
    return StatusWords[static_cast<size_t>(status)];
}

size_t FileReport::Failures() const
{
    size_t sum = 0;
    for (size_t k = 0; k < counts.size(); ++k)
        if (Words[k].failure) sum += counts[k];
    return sum;
}

std::string CountsText(const std::array<size_t, SeverityCount>& counts)
{
    std::string text;
    for (size_t k = 0; k < counts.size(); ++k) {
        if (counts[k] == 0) continue;
        text += (text.empty() ? "" : ", ") + std::to_string(counts[k]) + " " +
                (counts[k] == 1 ? Words[k].one : Words[k].many);
    }
    return text.empty() ? "no findings" : text;
}

void FindingCollector::Add(Finding finding)
{
    ++m_Report.counts[static_cast<size_t>(finding.severity)];
    m_FileOrder.try_emplace(finding.file, m_FileOrder.size());
    const std::pair<std::string, unsigned> key(finding.file, finding.number);
    if (++m_Seen[key] > m_Limit) {
        ++m_Report.more[key];
        return;
    }
    m_Report.findings.push_back(std::move(finding));
}

void FindingCollector::Finish()
{
    const auto place = [this](const Finding& finding) {
        const bool own = finding.file == m_Report.name;
        return std::make_tuple(own ? size_t{0} : m_FileOrder[finding.file] + 1, finding.line == 0,
                               finding.line);
    };
    std::stable_sort(m_Report.findings.begin(), m_Report.findings.end(),
                     [&place](const Finding& a, const Finding& b) { return place(a) < place(b); });
}

void Totals::Add(const FileReport& report)
{
    ++files;
    switch (report.status) {
        case FileStatus::Checked:
            ++(report.Failures() == 0 ? inOrder : withErrors);
            break;
        case FileStatus::Beyond:
            ++beyond;
            break;
        case FileStatus::NotRead:
            ++notRead;
            break;
        case FileStatus::Failed:
            ++failed;
            break;
    }
    for (size_t k = 0; k < counts.size(); ++k)
        counts[k] += report.counts[k];
}

int Totals::ExitCode() const
{
    if (failed != 0) return EXIT_READER_FAILED;
    if (withErrors != 0) return EXIT_FINDINGS;
    return beyond + notRead != 0 || files == 0 ? EXIT_BAD_INPUT : EXIT_DONE;
}

}  // namespace quell
