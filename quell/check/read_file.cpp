// The check of one file.
#include "quell/check/read_file.h"

#include <algorithm>
#include <climits>
#include <cstring>

#include "IbisParser/errlog.h"
#include "IbisParser/parse.h"
#include "IbisParser/rng.h"
#include "quell/params/ami_tree.h"
#include "quell/reader/version.h"

namespace quell {

namespace {

enum FrameKind : uint64_t { FRAME_FINDING, FRAME_VERSION };

// Each severity of the log with its variant for a line.
constexpr Severity Severities[] = {Severity::Bug,     Severity::Bug,        Severity::Error,
                                   Severity::Error,   Severity::Warning,    Severity::Warning,
                                   Severity::Caution, Severity::Caution,    Severity::Note,
                                   Severity::Note,    Severity::Information};

// A corner of none goes as 0, the others follow.
void Send(FrameWriter& writer, const FindingPlace& place)
{
    writer.Number(place.subject);
    writer.Text(place.name);
    writer.Number(static_cast<uint64_t>(place.corner + 1));
    writer.Number(place.line);
    writer.Number(place.column);
    writer.Number(place.recordLine);
}

FindingPlace ReceivePlace(FrameFields& frame)
{
    FindingPlace place;
    place.subject = static_cast<ErrSubject>(std::min<uint64_t>(frame.Number(), SUBJECT_PARAMETER));
    place.name = frame.Text();
    place.corner = static_cast<int>(std::min<uint64_t>(frame.Number(), CORNER_COUNT)) - 1;
    place.line = frame.Number();
    place.column = static_cast<unsigned>(frame.Number());
    place.recordLine = frame.Number();
    return place;
}

void Send(FrameWriter& writer, const Finding& finding)
{
    writer.Begin();
    writer.Number(FRAME_FINDING);
    writer.Number(static_cast<uint64_t>(finding.severity));
    writer.Number(finding.asked);
    writer.Number(finding.number);
    writer.Number(finding.line);
    writer.Text(finding.file);
    writer.Text(finding.text);
    Send(writer, finding.place);
    writer.End();
}

// Sends the version that the file declares. True when the reader does not know it and was not told
// another one.
bool RefusesVersion(const Opening& opening, const std::string& version, FrameWriter* writer)
{
    if (writer == nullptr) return false;
    const bool refused = opening.version.empty() && BeyondKnown(version);
    writer->Begin();
    writer->Number(FRAME_VERSION);
    writer->Text(version);
    writer->Number(refused);
    writer->End();
    return refused;
}

int Run(const Opening& opening, FrameWriter* writer)
{
    const bool parameters = opening.type == FILE_AMI;
    if (!parameters && RefusesVersion(opening, DeclaredVersion(opening.path), writer)) return 0;
    if (!INIT()) return 1;
    if (ParseOpened(opening)) {
        if (parameters && RefusesVersion(opening, DeclaredAmiVersion(), writer)) return 0;
        TEST(opening.type, 1);
    }
    FINI();
    return static_cast<int>(std::min<unsigned long>(gulBug_cnt + gulError_cnt, INT_MAX));
}

}  // namespace

FindingSink::FindingSink(const Opening& opening, std::function<void(Finding)> take)
    : m_Messages([own = OwnNames(opening.name, opening.type),
                  take = std::move(take)](const ErrRecord& record) {
          Finding finding;
          finding.severity = Severities[record.severity];
          finding.asked = record.asked;
          finding.number = record.shown;
          finding.file = own.Has(record.file) ? "" : record.file;
          finding.line = record.line;
          finding.text = record.text;
          finding.place = {record.subject,  record.name,   record.corner,
                           record.itemLine, record.column, record.recordLine};
          take(std::move(finding));
      })
{
}

int SendFindings(const Opening& opening, FrameWriter& writer)
{
    const FindingSink sink(opening, [&writer](const Finding& finding) { Send(writer, finding); });
    return Run(opening, &writer);
}

int PrintClassic(const Opening& opening, FrameWriter&)
{
    return Run(opening, nullptr);
}

bool ReportReceiver::IsRepeated(const Finding& finding)
{
    const std::string whole = finding.file + '\n' + std::to_string(finding.line) + '\n' +
                              std::to_string(finding.number) + '\n' + finding.text;
    return !m_Told.insert(std::hash<std::string>()(whole)).second;
}

void ReportReceiver::Receive(FrameFields frame)
{
    if (frame.Number() == FRAME_VERSION) {
        m_Report.declared = frame.Text();
        if (frame.Number() != 0) {
            m_Report.status = FileStatus::Beyond;
            m_Report.reason = BeyondText(m_Report.declared);
        }
        return;
    }
    Finding finding;
    finding.severity = static_cast<Severity>(std::min<uint64_t>(frame.Number(), SeverityCount - 1));
    finding.asked = static_cast<unsigned>(frame.Number());
    finding.number = static_cast<unsigned>(frame.Number());
    finding.line = frame.Number();
    const std::string_view companion = frame.Text();
    finding.file =
        companion.empty() ? m_Report.name : FolderOf(m_Report.name) + std::string(companion);
    finding.text = frame.Text();
    finding.place = ReceivePlace(frame);
    if (!companion.empty() && IsRepeated(finding)) return;
    if (m_Each) m_Each(finding);
    m_Findings.Add(std::move(finding));
}

void ReportReceiver::End(const ChildEnd& end)
{
    if (!end.done) {
        FileType type = FILE_IBS;
        TypeOfName("." + m_Report.type, type);
        const bool own = OwnNames(m_Report.name, type).Has(end.file);
        m_Report.status = FileStatus::Failed;
        m_Report.reason = end.failure;
        m_Report.failedLine = end.line;
        m_Report.failedFile = own ? m_Report.name : FolderOf(m_Report.name) + end.file;
    }
    if (m_Report.status == FileStatus::Beyond) {
        m_Report.findings.clear();
        m_Report.more.clear();
        m_Report.counts = {};
    }
    m_Findings.Finish();
}

std::string BeyondText(const std::string& version)
{
    const std::string last = LastKnownVersion();
    return "declares version " + version + ", beyond " + last + ", the last one known here (--as " +
           last + " checks it all the same)";
}

}  // namespace quell
