// The check of many files at once.
#include "quell/check/check_files.h"

#include <filesystem>
#include <memory>

#include "quell/check/read_file.h"
#include "quell/process/queue.h"
#include "quell/reader/read_in_child.h"

namespace quell {

namespace {

// A file on its way: what has come back of it so far.
struct RunningFile {
    FileReport report;
    std::unique_ptr<ReportReceiver> receiver;
    FrameReader frames;
    Spool waiting;                 // what the format prints when it is the file's turn
    std::filesystem::path folder;  // private, for another name or version
};

class Check : public QueueClient {
public:
    Check(const CheckRequest& request, CheckFormat& format, std::ostream& out)
        : m_Request(request),
          m_Format(format),
          m_Output(out, request.files.size()),
          m_Running(request.files.size())
    {
    }

    const Totals& Run()
    {
        m_Format.Begin(m_Output);
        RunQueue(m_Request.files.size(), m_Request.jobs, *this);
        m_Output.EndProgress();
        m_Format.End(m_Totals, m_Output);
        return m_Totals;
    }

    std::unique_ptr<Child> Start(size_t task) override
    {
        const CheckFile& file = m_Request.files[task];
        m_Running[task] = std::make_unique<RunningFile>();
        RunningFile& running = *m_Running[task];
        running.report.name = file.name;
        if (!file.problem.empty()) {
            running.report.status = FileStatus::NotRead;
            running.report.reason = file.problem;
            return nullptr;
        }
        running.report.type = TypeWord(file.type);
        running.report.checkedAs = m_Request.version;
        running.receiver =
            std::make_unique<ReportReceiver>(running.report, m_Format.KeptPerNumber());
        running.receiver->TellEach(
            [this, &running](const Finding& finding) { m_Format.Add(finding, running.waiting); });
        const Opening opening = OpeningOf(file, task, running.folder);
        return m_Format.ShowsLog()
                   ? StartReading(opening, file.size, PrintClassic, ChildStream::Printed)
                   : StartReading(opening, file.size, SendFindings);
    }

    void Receive(size_t task, std::string_view bytes) override
    {
        RunningFile& running = *m_Running[task];
        if (!m_Format.ShowsLog()) {
            running.frames.Receive(
                bytes, [&running](FrameFields frame) { running.receiver->Receive(frame); });
        } else if (task == m_Totals.files) {
            m_Output.Print(running.waiting);
            m_Output.Print(bytes);
        } else {
            running.waiting.Append(bytes);
        }
    }

    void End(size_t task, const ChildEnd& end) override
    {
        RunningFile& running = *m_Running[task];
        running.receiver->End(end);
        if (running.report.status == FileStatus::Beyond) running.waiting.Clear();
        if (m_Format.ShowsLog() && end.done)
            running.report.counts[static_cast<size_t>(Severity::Error)] =
                static_cast<size_t>(end.result);
        std::error_code error;
        if (!running.folder.empty()) std::filesystem::remove_all(running.folder, error);
    }

    void Finish(size_t task) override
    {
        RunningFile& running = *m_Running[task];
        m_Format.File(m_Request.files[task], running.report, running.waiting, m_Output);
        m_Totals.Add(running.report);
        m_Running[task].reset();
        m_Output.Show(m_Totals.files);
    }

private:
    // A log shows the reader as it is, so that a wrong extension stays one there.
    Opening OpeningOf(const CheckFile& file, size_t task, std::filesystem::path& folder)
    {
        Opening opening;
        opening.path = file.path;
        opening.name = file.name;
        opening.type = file.type;
        opening.version = m_Request.version;
        const bool other = m_Format.ShowsLog() ? file.path != file.name || !opening.version.empty()
                                               : NeedsOtherName(opening);
        if (!other) return opening;
        if (!m_Folder) m_Folder = std::make_unique<PrivateFolder>();
        folder = m_Folder->Path() / std::to_string(task);
        std::filesystem::create_directory(folder);
        opening.folder = folder;
        return opening;
    }

    const CheckRequest& m_Request;
    CheckFormat& m_Format;
    Output m_Output;
    std::vector<std::unique_ptr<RunningFile>> m_Running;
    std::unique_ptr<PrivateFolder> m_Folder;
    Totals m_Totals;
};

}  // namespace

Totals CheckFiles(const CheckRequest& request, CheckFormat& format, std::ostream& out)
{
    return Check(request, format, out).Run();
}

}  // namespace quell
