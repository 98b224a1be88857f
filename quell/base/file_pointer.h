// A C stream with an owner.
#ifndef QUELL_BASE_FILE_POINTER_H
#define QUELL_BASE_FILE_POINTER_H

#include <cstdio>
#include <memory>
#include <string>

namespace quell {

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using FilePointer = std::unique_ptr<std::FILE, FileCloser>;

// Null, with errno, when it cannot be opened.
inline FilePointer OpenFile(const std::string& path, const char* mode)
{
    return FilePointer(std::fopen(path.c_str(), mode));
}

}  // namespace quell

#endif
