// The IBIS version that a file declares.
#include "quell/reader/version.h"

#include <algorithm>

#include "IbisParser/base/version.h"
#include "quell/base/file_pointer.h"
#include "quell/base/lines.h"

namespace quell {

namespace {

constexpr std::string_view Blanks = " \t\r\v\f";
constexpr std::string_view Keywords[] = {"[ibis ver]", "[ibis_ver]"};
constexpr size_t LineMax = 1024;  // bytes kept of a line

// Reads a line without its end; false at the end of the file.
bool ReadLine(std::FILE* file, std::string& line)
{
    line.clear();
    int c = getc_unlocked(file);
    if (c == EOF) return false;
    for (; c != EOF && c != '\n'; c = getc_unlocked(file))
        if (line.size() < LineMax) line += static_cast<char>(c);
    return true;
}

bool CopyBytes(std::FILE* from, std::FILE* to, size_t count)
{
    char buffer[1 << 16];
    while (count > 0) {
        const size_t size = std::fread(buffer, 1, std::min(count, sizeof buffer), from);
        if (size == 0) return std::ferror(from) == 0;
        if (std::fwrite(buffer, 1, size, to) != size) return false;
        count -= size;
    }
    return true;
}

}  // namespace

std::optional<VersionPlace> FindVersion(std::FILE* file)
{
    std::string line;
    for (long start = 0; ReadLine(file, line); start = std::ftell(file)) {
        const size_t bracket = line.find_first_not_of(Blanks);
        if (bracket == std::string::npos || line[bracket] != '[') continue;
        const std::string_view keyword = std::string_view(line).substr(bracket);
        for (const std::string_view known : Keywords) {
            if (Lower(keyword.substr(0, known.size())) != known) continue;
            std::string_view rest = keyword.substr(known.size());
            const std::string_view value = NextToken(rest, " \t\r\v\f|");
            if (value.empty()) return std::nullopt;
            return VersionPlace{std::string(value), start + (value.data() - line.data())};
        }
        return std::nullopt;
    }
    return std::nullopt;
}

std::string DeclaredVersion(const std::string& path)
{
    const FilePointer file = OpenFile(path, "rbe");
    const std::optional<VersionPlace> place = file ? FindVersion(file.get()) : std::nullopt;
    return place ? place->value : "";
}

const char* LastKnownVersion()
{
    return VERSION_Latest()->text;
}

bool BeyondKnown(std::string_view version)
{
    if (version.size() < 3 || version[1] != '.') return false;
    if (version.find_first_not_of("0123456789", 2) != std::string_view::npos) return false;
    if (version[0] < '1' || version[0] > '9') return false;
    const std::string_view latest = LastKnownVersion();
    if (version[0] != latest[0]) return version[0] > latest[0];
    const auto minor = [](std::string_view text) {
        return text.substr(std::min(text.find_first_not_of('0', 2), text.size()));
    };
    const std::string_view own = minor(version);
    const std::string_view last = minor(latest);
    return own.size() != last.size() ? own.size() > last.size() : own > last;
}

bool CopyWithVersion(std::FILE* from, std::FILE* to, const VersionPlace& place,
                     std::string_view version)
{
    std::rewind(from);
    return CopyBytes(from, to, static_cast<size_t>(place.offset)) &&
           std::fwrite(version.data(), 1, version.size(), to) == version.size() &&
           std::fseek(from, static_cast<long>(place.value.size()), SEEK_CUR) == 0 &&
           CopyBytes(from, to, SIZE_MAX);
}

}  // namespace quell
