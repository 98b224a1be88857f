// quell info: what a file holds, for people and for programs.
#include <cstdio>
#include <iostream>
#include <memory>

#include "IbisParser/errlog.h"
#include "quell/base/errors.h"
#include "quell/base/json.h"
#include "quell/command/commands.h"
#include "quell/info/describe.h"
#include "quell/info/screen.h"
#include "quell/process/child.h"
#include "quell/process/private_folder.h"
#include "quell/reader/version.h"

namespace quell {

namespace {

using Json = nlohmann::ordered_json;

// A file of a version that the reader does not know is shown as far as the last known one goes.
constexpr const char* LastVersion = "5.0";

enum Frame : uint64_t { FRAME_DESCRIPTION, FRAME_PROBLEM };

void Send(FrameWriter& writer, Frame kind, const std::string& text)
{
    writer.Begin();
    writer.Number(kind);
    writer.Text(text);
    writer.End();
}

int SendDescription(const Opening& opening, FrameWriter& writer)
{
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> nowhere(std::fopen("/dev/null", "we"),
                                                                  std::fclose);
    ERRLOG_SetOutputFile(nowhere.get());
    try {
        Send(writer, FRAME_DESCRIPTION, JsonText(DescribeFile(opening)));
        return 0;
    } catch (const InputError& error) {
        Send(writer, FRAME_PROBLEM, error.what());
        return 1;
    }
}

Json ReadFile(const std::string& path)
{
    Opening opening;
    opening.path = opening.name = path;
    if (!TypeOfName(path, opening.type))
        throw InputError(path, 0, "the name ends in none of .ibs .pkg .ebd .ami");
    unsigned long long size = 0;
    const std::string reason = WhyNotReadable(path, size);
    if (!reason.empty()) throw InputError(path, 0, reason);
    const std::string version = opening.type == FILE_AMI ? "" : DeclaredVersion(path);
    const bool later = BeyondKnown(version);
    if (later) opening.version = LastVersion;
    std::unique_ptr<PrivateFolder> folder;
    if (NeedsOtherName(opening)) {
        folder = std::make_unique<PrivateFolder>();
        opening.folder = folder->Path();
    }
    std::string description;
    std::string problem;
    const ChildEnd end = RunChild(
        [&opening](FrameWriter& writer) { return SendDescription(opening, writer); },
        ReadingTime(size),
        [&](FrameFields frame) {
            std::string& text = frame.Number() == FRAME_DESCRIPTION ? description : problem;
            text = frame.Text();
        });
    if (!end.done) throw CommandError(EXIT_READER_FAILED, path + ": " + end.failure);
    if (!problem.empty()) throw InputError(problem);
    Json json = Json::parse(description);
    if (later && json["header"].is_object()) json["header"]["ibis_version"] = version;
    return json;
}

}  // namespace

void AddInfo(CLI::App& app, int& exitCode)
{
    struct Options {
        std::string file;
        bool json = false;
    };
    const auto options = std::make_shared<Options>();
    CLI::App* command =
        app.add_subcommand("info", "Show what an IBIS, package, board or AMI parameter file holds");
    command->add_option("FILE", options->file, "a .ibs, .pkg, .ebd or .ami file")->required();
    command->add_flag("--json", options->json, "everything, as JSON");
    command->callback([options, &exitCode] {
        const Json file = ReadFile(options->file);
        std::cout << (options->json ? JsonText(file) : InfoScreen(file));
        exitCode = EXIT_DONE;
    });
}

}  // namespace quell
