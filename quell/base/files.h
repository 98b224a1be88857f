// Files that the command writes, and the checksums of those it used.
#ifndef QUELL_BASE_FILES_H
#define QUELL_BASE_FILES_H

#include <string>
#include <string_view>

namespace quell {

// Writes a file that is there whole or not at all: under another name first, which then takes the
// place of the file. Devices and pipes are written as they are. Throws InputError.
void WriteWholeFile(const std::string& path, std::string_view content);

// SHA-256 of a file's bytes in hexadecimal. Throws InputError.
std::string Sha256OfFile(const std::string& path);

}  // namespace quell

#endif
