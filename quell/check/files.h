// The files of a check: arguments, folders and standard input.
#ifndef QUELL_CHECK_FILES_H
#define QUELL_CHECK_FILES_H

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "quell/process/private_folder.h"
#include "quell/reader/file_types.h"

namespace quell {

struct CheckFile {
    std::string name;  // as the user knows it
    std::string path;  // to open
    FileType type = FILE_IBS;
    unsigned long long size = 0;  // bytes
    std::string problem;          // why it cannot be read, in one line; then no type is known
};

struct FileSearch {
    std::vector<std::string> arguments;
    std::optional<FileType> type;          // overrides extensions; in folders it selects
    std::string stdinName;                 // name for "-"
    const PrivateFolder* spool = nullptr;  // where standard input goes; needed for "-" only
};

// The files in the order of the arguments, those of a folder and its folders in the order of their
// names. What cannot be read is among them, with its problem. Throws InputError for a "-" without a
// name or type.
std::vector<CheckFile> FindFiles(const FileSearch& search);

}  // namespace quell

#endif
