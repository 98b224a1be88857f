// The IBIS version that a file declares.
#ifndef QUELL_READER_VERSION_H
#define QUELL_READER_VERSION_H

#include <cstdio>
#include <optional>
#include <string>
#include <string_view>

namespace quell {

// What stands behind [IBIS Ver] in the first keyword line of a file, and where.
struct VersionPlace {
    std::string value;
    long offset = 0;  // bytes from the beginning of the file
};

// Empty when the first keyword line is another one or has no value.
std::optional<VersionPlace> FindVersion(std::FILE* file);

// That value of the file; empty when there is none or the file cannot be read.
std::string DeclaredVersion(const std::string& path);

const char* LastKnownVersion();
// A version after that, up to 9.9.
bool BeyondKnown(std::string_view version);

// Copies the file with another value at the place. False when that fails.
bool CopyWithVersion(std::FILE* from, std::FILE* to, const VersionPlace& place,
                     std::string_view version);

}  // namespace quell

#endif
