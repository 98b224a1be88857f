// A file read in a process of its own.
#include "quell/reader/read_in_child.h"

#include <optional>

#include "quell/base/errors.h"
#include "quell/base/files.h"
#include "quell/reader/version.h"

namespace quell {

namespace {

constexpr double LeastTime = 30;      // s
constexpr double TimePerByte = 2e-6;  // s, some hundred times what reading takes

// Not among the kinds that works count from 0.
constexpr uint64_t FrameInputError = UINT64_MAX;

double ReadingTime(unsigned long long bytes)
{
    return LeastTime + TimePerByte * static_cast<double>(bytes);
}

}  // namespace

FileToRead FindFileToRead(const std::string& path, FileType type)
{
    FileToRead file;
    Opening& opening = file.opening;
    opening.path = opening.name = path;
    opening.type = type;
    const std::string problem = WhyNotReadable(path, file.size);
    if (!problem.empty()) throw InputError(path, 0, problem);
    const std::string version = type == FILE_AMI ? "" : DeclaredVersion(path);
    if (BeyondKnown(version)) {
        file.laterVersion = version;
        opening.version = LastKnownVersion();
    }
    if (NeedsOtherName(opening)) {
        file.folder = std::make_unique<PrivateFolder>();
        opening.folder = file.folder->Path();
    }
    return file;
}

std::unique_ptr<Child> StartReading(const Opening& opening, unsigned long long size,
                                    const ReadWork& work, ChildStream stream)
{
    return std::make_unique<Child>([&](FrameWriter& writer) { return work(opening, writer); },
                                   stream, ReadingTime(size));
}

void ReadInChild(const FileToRead& file, const ReadWork& work,
                 const std::function<void(FrameFields)>& take)
{
    const auto guarded = [&work, &file](FrameWriter& writer) {
        try {
            return work(file.opening, writer);
        } catch (const InputError& error) {
            writer.Send(FrameInputError, error.what());
            return 1;
        }
    };
    std::optional<std::string> problem;
    const ChildEnd end = RunChild(guarded, ReadingTime(file.size), [&](FrameFields frame) {
        FrameFields fields = frame;
        if (fields.Number() == FrameInputError)
            problem = fields.Text();
        else
            take(frame);
    });
    if (!end.done) throw CommandError(EXIT_READER_FAILED, file.opening.name + ": " + end.failure);
    if (problem) throw InputError(*problem);
}

}  // namespace quell
