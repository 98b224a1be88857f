// Files that the command reads and writes, and the checksums of those it used.
#ifndef QUELL_BASE_FILES_H
#define QUELL_BASE_FILES_H

#include <functional>
#include <string>
#include <string_view>

namespace quell {

// Why a file is none that can be read whole, in one line; empty when it is, and its size in bytes
// is stored.
std::string WhyNotReadable(const std::string& path, unsigned long long& size);

// Writes a file that is there whole or not at all: under another name first, which then takes the
// place of the file. Devices and pipes are written as they are. Throws InputError.
void WriteWholeFile(const std::string& path, std::string_view content);

// The same of content that is made in pieces and never in memory as a whole.
using TextSink = std::function<void(std::string_view)>;
using TextWriter = std::function<void(const TextSink&)>;
void WriteWholeFile(const std::string& path, const TextWriter& write);

// SHA-256 of a file's bytes in hexadecimal. Throws InputError.
std::string Sha256OfFile(const std::string& path);

}  // namespace quell

#endif
