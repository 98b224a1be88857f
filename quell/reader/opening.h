// How a file comes before the reader of the parser library, which insists on extensions, on names
// that fit its buffers, and on reading companions in the folder of the file.
#ifndef QUELL_READER_OPENING_H
#define QUELL_READER_OPENING_H

#include <filesystem>
#include <string>

#include "quell/reader/file_types.h"

namespace quell {

struct Opening {
    std::string path;  // the file itself
    std::string name;  // the name that it goes by: companions lie in the folder of this name
    FileType type = FILE_IBS;
    std::string version;           // read as if it declared this one; empty: as it is
    std::filesystem::path folder;  // private to this file; empty: it is read where it lies
};

// Whether the reader takes the file only under another name, as a link or copy in a private folder.
bool NeedsOtherName(const Opening& opening);

// Reads the file: PARSE with its type. In a process of its own, because the working folder changes.
// Afterwards the library knows the file by its own name and folder again. False when PARSE gives 0.
// Throws InputError when the link or copy fails.
bool ParseOpened(const Opening& opening);

}  // namespace quell

#endif
