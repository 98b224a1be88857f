// quell check: files against the rules of the IBIS standard.
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <thread>

#include "quell/base/errors.h"
#include "quell/base/json.h"
#include "quell/base/printable.h"
#include "quell/base/progress.h"
#include "quell/check/files.h"
#include "quell/check/json_view.h"
#include "quell/check/read_file.h"
#include "quell/check/spool.h"
#include "quell/check/text_view.h"
#include "quell/command/commands.h"
#include "quell/process/queue.h"

namespace quell {

namespace {

enum class Format { Text, Classic, Json };
enum class ColourUse { Auto, Always, Never };

constexpr size_t ShownPerNumber = 20;  // findings of one number in a file, in the text
constexpr size_t MostJobs = 256;

constexpr std::pair<const char*, Format> Formats[] = {
    {"text", Format::Text}, {"classic", Format::Classic}, {"json", Format::Json}};

constexpr std::pair<const char*, ColourUse> ColourUses[] = {
    {"auto", ColourUse::Auto}, {"always", ColourUse::Always}, {"never", ColourUse::Never}};

// Version texts that are legal in a file.
constexpr std::pair<const char*, const char*> Versions[] = {
    {"2.0", "2.0"}, {"2.1", "2.1"}, {"3.0", "3.0"}, {"3.1", "3.1"}, {"3.2", "3.2"},
    {"4.0", "4.0"}, {"4.1", "4.1"}, {"4.2", "4.2"}, {"5.0", "5.0"}};

struct CheckOptions {
    std::vector<std::string> arguments;
    FileType type = FILE_IBS;
    bool typeGiven = false;
    std::string stdinName;
    const char* version = "";
    Format format = Format::Text;
    ColourUse colour = ColourUse::Auto;
    size_t jobs = 0;  // 0: one for each core
};

bool UseColour(ColourUse use)
{
    if (use != ColourUse::Auto) return use == ColourUse::Always;
    const char* noColour = std::getenv("NO_COLOR");
    const char* terminal = std::getenv("TERM");
    return isatty(STDOUT_FILENO) == 1 && (noColour == nullptr || *noColour == '\0') &&
           (terminal == nullptr || std::string_view(terminal) != "dumb");
}

// A file on its way: what has come back of it so far.
struct RunningFile {
    FileReport report;
    std::unique_ptr<ReportReceiver> receiver;
    FrameReader frames;
    Spool waiting;                 // printed text or findings as JSON, until it is its turn
    std::filesystem::path folder;  // private, for another name or version
};

class Check : public QueueClient {
public:
    Check(const CheckOptions& options, std::vector<CheckFile> files)
        : m_Options(options),
          m_Files(std::move(files)),
          m_Running(m_Files.size()),
          m_Colour(UseColour(options.colour)),
          m_Progress(m_Files.size(), "files")
    {
    }

    int Run()
    {
        if (m_Options.format == Format::Json) std::cout << "{\n\"files\": [";
        RunQueue(m_Files.size(), Jobs(), *this);
        m_Progress.Clear();
        if (m_Options.format == Format::Json)
            std::cout << "\n],\n\"total\": " << JsonAsciiLine(TotalsJson(m_Totals)) << "\n}\n";
        if (m_Options.format == Format::Text) std::cout << TotalsText(m_Totals);
        return m_Totals.ExitCode();
    }

    std::unique_ptr<Child> Start(size_t task) override
    {
        const CheckFile& file = m_Files[task];
        m_Running[task] = std::make_unique<RunningFile>();
        RunningFile& running = *m_Running[task];
        running.report.name = file.name;
        if (!file.problem.empty()) {
            running.report.status = FileStatus::NotRead;
            running.report.reason = file.problem;
            return nullptr;
        }
        running.report.type = TypeWord(file.type);
        running.report.checkedAs = m_Options.version;
        const bool classic = m_Options.format == Format::Classic;
        const bool json = m_Options.format == Format::Json;
        running.receiver =
            std::make_unique<ReportReceiver>(running.report, json ? 0 : ShownPerNumber);
        if (json)
            running.receiver->TellEach([&waiting = running.waiting](const Finding& finding) {
                waiting.Append((waiting.Empty() ? "\n  " : ",\n  ") +
                               JsonAsciiLine(FindingJson(finding)));
            });
        const Opening opening = OpeningOf(file, task, running.folder);
        return std::make_unique<Child>(
            [&opening, classic](FrameWriter& writer) {
                return classic ? PrintClassic(opening) : SendFindings(opening, writer);
            },
            classic ? ChildStream::Printed : ChildStream::Frames, ReadingTime(file.size));
    }

    void Receive(size_t task, std::string_view bytes) override
    {
        RunningFile& running = *m_Running[task];
        if (m_Options.format != Format::Classic) {
            running.frames.Receive(
                bytes, [&running](FrameFields frame) { running.receiver->Receive(frame); });
        } else if (task == m_Totals.files) {
            PrintWaiting(running);
            Print(bytes);
        } else {
            running.waiting.Append(bytes);
        }
    }

    void End(size_t task, const ChildEnd& end) override
    {
        RunningFile& running = *m_Running[task];
        running.receiver->End(end);
        if (m_Options.format == Format::Classic && end.done)
            running.report.counts[static_cast<size_t>(Severity::Error)] =
                static_cast<size_t>(end.result);
        std::error_code error;
        if (!running.folder.empty()) std::filesystem::remove_all(running.folder, error);
    }

    void Finish(size_t task) override
    {
        RunningFile& running = *m_Running[task];
        const FileReport& report = running.report;
        switch (m_Options.format) {
            case Format::Text:
                Print(ReportText(report, m_Files[task].path, m_Colour));
                break;
            case Format::Json:
                Print((task == 0 ? "\n" : ",\n") + ReportHead(report));
                if (report.status == FileStatus::Beyond) running.waiting.Clear();
                PrintWaiting(running);
                Print(ReportTail);
                break;
            case Format::Classic:
                PrintWaiting(running);
                if (!report.reason.empty()) {
                    std::cout.flush();
                    m_Progress.Clear();
                    std::cerr << "quell: " << Printable(report.name) << ": "
                              << Printable(report.reason) << '\n';
                }
                break;
        }
        std::cout.flush();
        m_Totals.Add(report);
        m_Running[task].reset();
        m_Progress.Show(m_Totals.files);
    }

private:
    size_t Jobs() const
    {
        if (m_Options.jobs != 0) return m_Options.jobs;
        return std::clamp<size_t>(std::thread::hardware_concurrency(), 1, MostJobs);
    }

    void Print(std::string_view text)
    {
        if (text.empty()) return;
        m_Progress.Clear();
        std::cout << text;
    }

    void PrintWaiting(RunningFile& running)
    {
        running.waiting.Pour([this](std::string_view text) { Print(text); });
    }

    // The classic output shows the reader as it is, so that a wrong extension stays one there.
    Opening OpeningOf(const CheckFile& file, size_t task, std::filesystem::path& folder)
    {
        Opening opening;
        opening.path = file.path;
        opening.name = file.name;
        opening.type = file.type;
        opening.version = m_Options.version;
        const bool other = m_Options.format == Format::Classic
                               ? file.path != file.name || !opening.version.empty()
                               : NeedsOtherName(opening);
        if (!other) return opening;
        if (!m_Folder) m_Folder = std::make_unique<PrivateFolder>();
        folder = m_Folder->Path() / std::to_string(task);
        std::filesystem::create_directory(folder);
        opening.folder = folder;
        return opening;
    }

    const CheckOptions& m_Options;
    std::vector<CheckFile> m_Files;
    std::vector<std::unique_ptr<RunningFile>> m_Running;
    std::unique_ptr<PrivateFolder> m_Folder;
    bool m_Colour;
    Progress m_Progress;
    Totals m_Totals;
};

int RunCheck(const CheckOptions& options)
{
    FileSearch search;
    search.arguments = options.arguments;
    if (options.typeGiven) search.type = options.type;
    search.stdinName = options.stdinName;
    std::unique_ptr<PrivateFolder> spool;
    if (std::find(search.arguments.begin(), search.arguments.end(), "-") !=
        search.arguments.end()) {
        spool = std::make_unique<PrivateFolder>();
        search.spool = spool.get();
    } else if (!options.stdinName.empty()) {
        throw InputError("--stdin-name names standard input, which is given as '-'");
    }
    return Check(options, FindFiles(search)).Run();
}

}  // namespace

void AddCheck(CLI::App& app, int& exitCode)
{
    CLI::App& check = *app.add_subcommand("check", "Check IBIS and AMI parameter files");
    const auto options = std::make_shared<CheckOptions>();
    check
        .add_option("files", options->arguments,
                    "Files, folders (walked for .ibs, .pkg, .ebd and .ami files), or - for "
                    "standard input")
        ->required()
        ->type_name("FILE...");

    const char* input = "Input";
    AddChoice(check, "--type", options->type, FileTypes,
              "What the files are, whatever their extensions; of folders, what is checked")
        ->group(input);
    check
        .add_option("--stdin-name", options->stdinName,
                    "Name of standard input in the findings. The files that it names are looked "
                    "for in the folder of this name; without a folder, in the current one")
        ->type_name("NAME")
        ->group(input);
    AddChoice(check, "--as", options->version, Versions,
              "Check as if the files declared this version")
        ->group(input);
    check.add_option("-j,--jobs", options->jobs, "Files read at once (default: number of cores)")
        ->check(CLI::Range(size_t{1}, MostJobs))
        ->type_name("N")
        ->group(input);

    const char* output = "Output";
    AddChoice(check, "--format", options->format, Formats,
              "text (default) shows the first 20 findings of a number in a file; classic is the "
              "reader's own output")
        ->group(output);
    AddChoice(check, "--color", options->colour, ColourUses,
              "Colours (default auto: on a terminal, unless NO_COLOR is set)")
        ->group(output);
    check.footer(
        "Exit code: 0 no errors, 1 errors found, 2 wrong usage or a file that could not be read "
        "or\n"
        "declares a version after 5.0, 3 a file stopped the reader.\n\n"
        "  quell check models/\n"
        "  quell check - --stdin-name models/tx.ibs <tx.ibs --format json");
    check.callback([options, &check, &exitCode] {
        options->typeGiven = check.count("--type") != 0;
        try {
            exitCode = RunCheck(*options);
        } catch (const Interruption& interruption) {
            EndBySignal(interruption.signal);
        }
    });
}

}  // namespace quell
