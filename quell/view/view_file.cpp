// A component file, read, checked and drawn.
#include "quell/view/view_file.h"

#include "IbisParser/parse.h"
#include "quell/base/errors.h"
#include "quell/check/read_file.h"
#include "quell/reader/read_in_child.h"
#include "quell/reader/version.h"
#include "quell/view/view_page.h"

namespace quell {

namespace {

constexpr size_t KeptPerNumber = 1000;  // findings of one number

enum FrameKind : uint64_t { FRAME_PAGE, FRAME_WARNING };

int SendPage(const Opening& opening, const ViewRequest& request, FrameWriter& writer)
{
    FileReport report;
    report.name = request.file;
    FindingCollector findings(report, KeptPerNumber);
    const FindingSink sink(opening, [&](Finding finding) {
        finding.file = finding.file.empty() ? report.name : FolderOf(report.name) + finding.file;
        findings.Add(std::move(finding));
    });
    IbisRoot* root = nullptr;
    const bool read = INIT() && ParseOpened(opening) && IBIS_GetIBIS(&root);
    if (read) TEST(opening.type, 1);
    findings.Finish();
    if (!read)
        throw InputError(request.file, 0,
                         report.findings.empty() ? "cannot be read" : report.findings.front().text);
    writer.Send(FRAME_PAGE, ViewPage(root, report, request));
    if (report.Failures() > 0)
        writer.Send(FRAME_WARNING,
                    request.file + " has " + CountsText(report.counts) + " (see quell check)");
    return 0;
}

}  // namespace

ViewedFile ViewFile(const std::string& path, const std::string& model)
{
    const FileToRead file = FindFileToRead(path, FILE_IBS);
    FileType type = FILE_IBS;
    if (!TypeOfName(path, type) || type != FILE_IBS) throw InputError(path, 0, "is no .ibs file");

    ViewRequest request;
    request.file = path;
    request.model = model;
    if (!file.laterVersion.empty())
        request.note = "The file declares version " + file.laterVersion +
                       " and is read as version " + LastKnownVersion() +
                       ", the last one known here: findings may come from the difference.";
    const auto work = [&request](const Opening& opening, FrameWriter& writer) {
        return SendPage(opening, request, writer);
    };
    ViewedFile viewed;
    ReadInChild(file, work, [&viewed](FrameFields frame) {
        if (frame.Number() == FRAME_PAGE)
            viewed.page = frame.Text();
        else
            viewed.warnings.emplace_back(frame.Text());
    });
    if (!request.note.empty()) viewed.warnings.push_back(request.note);
    return viewed;
}

}  // namespace quell
