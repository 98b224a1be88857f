// The files of a check.
#include "quell/check/files.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>

#include "quell/base/errors.h"
#include "quell/base/file_pointer.h"
#include "quell/base/files.h"

namespace quell {

namespace {

namespace fs = std::filesystem;

void AddProblem(std::vector<CheckFile>& files, const std::string& name, const std::string& problem)
{
    CheckFile file;
    file.name = file.path = name;
    file.problem = problem;
    files.push_back(file);
}

void AddFile(std::vector<CheckFile>& files, const std::string& name, const std::string& path,
             FileType type)
{
    CheckFile file;
    file.name = name;
    file.path = path;
    file.type = type;
    file.problem = WhyNotReadable(path, file.size);
    files.push_back(file);
}

// Links to folders are not followed: they may lead round in circles.
void WalkFolder(std::vector<CheckFile>& files, const std::string& folder,
                const std::optional<FileType>& wanted)
{
    std::error_code error;
    std::vector<fs::directory_entry> entries;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end;
         entry.increment(error))
        entries.push_back(*entry);
    if (error) AddProblem(files, folder, error.message());
    std::sort(entries.begin(), entries.end());
    for (const fs::directory_entry& entry : entries) {
        const std::string name = entry.path().string();
        const fs::file_type kind = entry.symlink_status(error).type();
        FileType type = FILE_IBS;
        if (kind == fs::file_type::directory) {
            WalkFolder(files, name, wanted);
        } else if (TypeOfName(name, type) && (!wanted || *wanted == type) &&
                   !entry.is_directory(error)) {
            AddFile(files, name, name, type);
        }
    }
}

// Standard input as a file, so that the reader can open it twice.
void AddStandardInput(std::vector<CheckFile>& files, const FileSearch& search)
{
    std::string name = search.stdinName;
    FileType type = FILE_IBS;
    const bool known = TypeOfName(name, type);
    if (search.type) {
        type = *search.type;
    } else if (!known) {
        throw InputError(name.empty() ? "'-' needs --stdin-name or --type"
                                      : "--stdin-name " + name +
                                            " has none of the extensions .ibs, .pkg, .ebd, .ami: "
                                            "give --type");
    }
    if (name.empty()) name = std::string("stdin.") + TypeWord(type);
    if (BaseName(name).empty()) throw InputError("--stdin-name " + name + " is a folder");
    const std::string path = (search.spool->Path() / "stdin").string();
    FilePointer spool = OpenFile(path, "wbxe");
    if (!spool) {
        if (errno != EEXIST) throw InputError(path, 0, std::strerror(errno));
        throw InputError("'-' is given twice");
    }
    char buffer[1 << 16];
    bool written = true;
    ssize_t size = 0;
    while (written && (size = read(STDIN_FILENO, buffer, sizeof buffer)) != 0) {
        if (size < 0 && errno == EINTR) continue;
        if (size < 0) break;
        const size_t count = static_cast<size_t>(size);
        written = std::fwrite(buffer, 1, count, spool.get()) == count;
    }
    const int reason = errno;
    if (std::fclose(spool.release()) != 0 || !written)
        throw InputError(path, 0, std::strerror(errno));
    if (size < 0)
        AddProblem(files, name, std::string("standard input: ") + std::strerror(reason));
    else
        AddFile(files, name, path, type);
}

void AddArgument(std::vector<CheckFile>& files, const std::string& argument,
                 const FileSearch& search)
{
    std::error_code error;
    if (argument == "-") {
        AddStandardInput(files, search);
    } else if (fs::is_directory(argument, error)) {
        const size_t before = files.size();
        WalkFolder(files, argument, search.type);
        if (files.size() == before)
            AddProblem(files, argument,
                       search.type
                           ? std::string("a folder without .") + TypeWord(*search.type) + " files"
                           : "a folder without .ibs, .pkg, .ebd or .ami files");
    } else {
        FileType type = FILE_IBS;
        const bool known = search.type || TypeOfName(argument, type);
        AddFile(files, argument, argument, search.type.value_or(type));
        if (!known && files.back().problem.empty())
            files.back().problem =
                "its extension is none of .ibs, .pkg, .ebd, .ami: --type tells what it is";
    }
}

}  // namespace

std::vector<CheckFile> FindFiles(const FileSearch& search)
{
    std::vector<CheckFile> files;
    for (const std::string& argument : search.arguments)
        AddArgument(files, argument, search);
    return files;
}

}  // namespace quell
