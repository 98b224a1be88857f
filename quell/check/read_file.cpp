// The check of one file.
#include "quell/check/read_file.h"

#include <algorithm>
#include <climits>
#include <cstring>
#include <memory>

#include "IbisParser/errlog.h"
#include "IbisParser/parse.h"
#include "quell/params/ami_tree.h"
#include "quell/reader/version.h"

namespace quell {

namespace {

enum FrameKind : uint64_t { FRAME_FINDING, FRAME_BEYOND };

// Each severity of the log with its variant for a line.
constexpr Severity s_Severities[] = {Severity::Bug,     Severity::Bug,        Severity::Error,
                                     Severity::Error,   Severity::Warning,    Severity::Warning,
                                     Severity::Caution, Severity::Caution,    Severity::Note,
                                     Severity::Note,    Severity::Information};

// Where the messages of a run go.
struct Sending {
    FrameWriter& writer;
    std::string ownNames[2];  // of the file: where it lies, and as the reader opened it
};

void SendRecord(const ErrRecord* record, void* user)
{
    Sending& sending = *static_cast<Sending*>(user);
    const std::string_view file = record->file;
    const bool own = file.empty() || file == sending.ownNames[0] || file == sending.ownNames[1];
    sending.writer.Begin();
    sending.writer.Number(FRAME_FINDING);
    sending.writer.Number(static_cast<uint64_t>(s_Severities[record->severity]));
    sending.writer.Number(record->asked);
    sending.writer.Number(record->shown);
    sending.writer.Number(record->line);
    sending.writer.Text(own ? "" : file);
    sending.writer.Text(record->text);
    sending.writer.End();
}

void SendBeyond(FrameWriter& writer, const std::string& version)
{
    writer.Begin();
    writer.Number(FRAME_BEYOND);
    writer.Text(version);
    writer.End();
}

// The version that an IBIS, package or board file declares, when it is beyond the known ones.
std::string BeyondInDocument(const Opening& opening)
{
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(
        std::fopen(opening.path.c_str(), "rbe"), std::fclose);
    const std::optional<VersionPlace> place = file ? FindVersion(file.get()) : std::nullopt;
    return place && BeyondKnown(place->value) ? place->value : "";
}

// The same of the parameter file just read.
std::string BeyondInParameters()
{
    const std::string version = DeclaredAmiVersion();
    return BeyondKnown(version) ? version : "";
}

int Run(const Opening& opening, FrameWriter* writer)
{
    const bool parameters = opening.type == FILE_AMI;
    const bool told = writer == nullptr || !opening.version.empty();
    if (!told && !parameters) {
        const std::string version = BeyondInDocument(opening);
        if (!version.empty()) {
            SendBeyond(*writer, version);
            return 0;
        }
    }
    if (!INIT()) return 1;
    if (ParseOpened(opening)) {
        const std::string version = told || !parameters ? "" : BeyondInParameters();
        if (!version.empty()) {
            SendBeyond(*writer, version);
            return 0;
        }
        TEST(opening.type, 1);
    }
    FINI();
    return static_cast<int>(std::min<unsigned long>(gulBug_cnt + gulError_cnt, INT_MAX));
}

}  // namespace

int SendFindings(const Opening& opening, FrameWriter& writer)
{
    Sending sending{writer,
                    {BaseName(opening.name), LegalName(BaseName(opening.name), opening.type)}};
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> nowhere(std::fopen("/dev/null", "we"),
                                                                  std::fclose);
    ERRLOG_SetOutputFile(nowhere.get());
    ERRLOG_SetSink(SendRecord, &sending);
    PARSE_SuppressBanners(1);
    const int failures = Run(opening, &writer);
    ERRLOG_SetSink(nullptr, nullptr);
    ERRLOG_SetOutputFile(nullptr);
    return failures;
}

int PrintClassic(const Opening& opening)
{
    return Run(opening, nullptr);
}

void ReportReceiver::Receive(FrameFields frame)
{
    if (frame.Number() == FRAME_BEYOND) {
        m_Report.status = FileStatus::Beyond;
        m_Report.declared = frame.Text();
        m_Report.reason = BeyondText(m_Report.declared);
        return;
    }
    Finding finding;
    finding.severity =
        static_cast<Severity>(std::min<uint64_t>(frame.Number(), s_SeverityCount - 1));
    finding.asked = static_cast<unsigned>(frame.Number());
    finding.number = static_cast<unsigned>(frame.Number());
    finding.line = frame.Number();
    const std::string_view companion = frame.Text();
    finding.file =
        companion.empty() ? m_Report.name : FolderOf(m_Report.name) + std::string(companion);
    finding.text = frame.Text();
    if (m_Each) m_Each(finding);
    m_Findings.Add(std::move(finding));
}

void ReportReceiver::End(const ChildEnd& end)
{
    if (!end.done) {
        const std::string base = BaseName(m_Report.name);
        FileType type = FILE_IBS;
        const bool typed = TypeOfName("." + m_Report.type, type);
        const bool own =
            end.file.empty() || end.file == base || (typed && end.file == LegalName(base, type));
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
    return "declares version " + version +
           ", beyond 5.0, the last one known here (--as 5.0 checks it all the same)";
}

}  // namespace quell
