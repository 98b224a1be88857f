// quell view: the models of a component file as a page to look at.
#include <filesystem>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "IbisParser/parse.h"
#include "quell/base/errors.h"
#include "quell/base/files.h"
#include "quell/base/printable.h"
#include "quell/check/read_file.h"
#include "quell/command/commands.h"
#include "quell/process/child.h"
#include "quell/process/private_folder.h"
#include "quell/reader/opening.h"
#include "quell/reader/version.h"
#include "quell/view/view_page.h"

namespace quell {

namespace {

constexpr size_t KeptPerNumber = 1000;  // findings of one number
constexpr const char* LastVersion = "5.0";

enum FrameKind : uint64_t { FRAME_PAGE, FRAME_ERROR, FRAME_WARNING };

struct ViewOptions {
    std::string file;
    std::string model;
    std::string out;
};

void Send(FrameWriter& writer, FrameKind kind, std::string_view text)
{
    writer.Begin();
    writer.Number(kind);
    writer.Text(text);
    writer.End();
}

// Reads, checks and draws the file; in a process of its own.
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
    if (!read) {
        findings.Finish();
        Send(writer, FRAME_ERROR,
             report.findings.empty() ? "cannot be read" : report.findings.front().text);
        return 1;
    }
    TEST(opening.type, 1);
    findings.Finish();
    try {
        Send(writer, FRAME_PAGE, ViewPage(root, report, request));
    } catch (const InputError& error) {
        Send(writer, FRAME_ERROR, error.what());
        return 1;
    }
    if (report.Failures() > 0)
        Send(writer, FRAME_WARNING,
             request.file + " has " + CountsText(report.counts) + " (see quell check)");
    return 0;
}

// NAME.html in the working folder, from the file's name.
std::string PageName(const std::string& file)
{
    return std::filesystem::path(file).stem().string() + ".html";
}

int RunView(const ViewOptions& options)
{
    Opening opening;
    opening.path = opening.name = options.file;
    unsigned long long size = 0;
    const std::string problem = WhyNotReadable(options.file, size);
    if (!problem.empty()) throw InputError(options.file, 0, problem);
    if (!TypeOfName(options.file, opening.type) || opening.type != FILE_IBS)
        throw InputError(options.file, 0, "is no .ibs file");

    ViewRequest request;
    request.file = options.file;
    request.model = options.model;
    const std::string version = DeclaredVersion(opening.path);
    if (BeyondKnown(version)) {
        opening.version = LastVersion;
        request.note = "The file declares version " + version + " and is read as version " +
                       LastVersion +
                       ", the last one known here: findings may come from the difference.";
    }
    std::unique_ptr<PrivateFolder> folder;
    if (NeedsOtherName(opening)) {
        folder = std::make_unique<PrivateFolder>();
        opening.folder = folder->Path();
    }

    std::optional<std::string> page;
    std::string error;
    std::string warning;
    const ChildEnd end = RunChild(
        [&](FrameWriter& writer) { return SendPage(opening, request, writer); }, ReadingTime(size),
        [&](FrameFields fields) {
            const uint64_t kind = fields.Number();
            const std::string text(fields.Text());
            if (kind == FRAME_PAGE) page = text;
            if (kind == FRAME_ERROR) error = text;
            if (kind == FRAME_WARNING) warning = text;
        });
    if (!end.done) throw CommandError(EXIT_READER_FAILED, options.file + ": " + end.failure);
    if (!page)
        throw InputError(error.starts_with(options.file) ? error : options.file + ": " + error);
    if (!warning.empty()) PrintWarning(warning);
    if (!request.note.empty()) PrintWarning(request.note);
    if (options.out == "-") {
        std::cout << *page;
        return EXIT_DONE;
    }
    const std::string out = options.out.empty() ? PageName(options.file) : options.out;
    WriteWholeFile(out, *page);
    std::cout << Printable(out) << '\n';
    return EXIT_DONE;
}

}  // namespace

void AddView(CLI::App& app, int& exitCode)
{
    CLI::App& view = *app.add_subcommand("view", "Draw the models of an IBIS file on a page");
    const auto options = std::make_shared<ViewOptions>();
    view.add_option("file", options->file, "FILE.ibs")->required()->type_name("FILE");
    view.add_option("--model", options->model, "Show this model only")->type_name("NAME");
    view.add_option("-o,--out", options->out,
                    "The page (default: FILE.html in the working folder), or - for standard output")
        ->type_name("FILE.html");
    view.footer(
        "The page has the V-I tables by corner at the pin, the combined curves with the load\n"
        "lines of the fixtures and their operating points, the waveforms with the ends that the\n"
        "tables give, and the findings of quell check beside the pictures that show them.\n"
        "Exit code: 0 done, 2 wrong usage or unreadable input, 3 the file stopped the reader.\n\n"
        "  quell view buffer.ibs --model DQ_34 -o dq.html");
    view.callback([options, &exitCode] { exitCode = RunView(*options); });
}

}  // namespace quell
