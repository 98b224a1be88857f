// A file read by the parser library in a process of its own, and what comes back from there.
#ifndef QUELL_READER_READ_IN_CHILD_H
#define QUELL_READER_READ_IN_CHILD_H

#include <functional>
#include <memory>
#include <string>

#include "quell/process/child.h"
#include "quell/process/private_folder.h"
#include "quell/reader/opening.h"

namespace quell {

// A file before it is read.
struct FileToRead {
    Opening opening;
    unsigned long long size = 0;  // bytes
    // What it declares when that is after the last known version, as which it is read then.
    std::string laterVersion;
    std::unique_ptr<PrivateFolder> folder;  // when it needs another name
};

// Throws InputError when it cannot be read.
FileToRead FindFileToRead(const std::string& path, FileType type);

// What is done in the child: reads the file and tells what it holds. Returns an exit status.
using ReadWork = std::function<int(const Opening& opening, FrameWriter& writer)>;

// Starts it, with a time that no file of this size needs.
std::unique_ptr<Child> StartReading(const Opening& opening, unsigned long long size,
                                    const ReadWork& work, ChildStream stream = ChildStream::Frames);

// Does the work and gives every frame to take, until the child has ended. An InputError of the work
// is thrown here; a reader that stopped is a CommandError with its exit code.
void ReadInChild(const FileToRead& file, const ReadWork& work,
                 const std::function<void(FrameFields)>& take);

}  // namespace quell

#endif
