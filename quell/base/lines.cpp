// Whole text files and their lines.
#include "quell/base/lines.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>

#include "quell/base/errors.h"

namespace quell {

namespace {

constexpr std::uintmax_t LargestFile = 1'000'000'000;

}  // namespace

std::string ReadTextFile(const std::string& path)
{
    std::error_code error;
    const std::filesystem::file_status status = std::filesystem::status(path, error);
    if (status.type() == std::filesystem::file_type::not_found)
        throw InputError(path, 0, "no such file");
    if (error) throw InputError(path, 0, error.message());
    if (!std::filesystem::is_regular_file(status)) throw InputError(path, 0, "not a regular file");
    const std::uintmax_t size = std::filesystem::file_size(path, error);
    if (error) throw InputError(path, 0, error.message());
    if (size > LargestFile) throw InputError(path, 0, "larger than 1 GB");

    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "rb"),
                                                               std::fclose);
    if (!file) throw InputError(path, 0, std::strerror(errno));
    std::string text(static_cast<size_t>(size), '\0');
    text.resize(std::fread(text.data(), 1, text.size(), file.get()));
    if (std::ferror(file.get())) throw InputError(path, 0, "read error");
    return text;
}

LineWalker::LineWalker(std::string_view text) : m_Rest(text)
{
    constexpr std::string_view mark = "\xEF\xBB\xBF";
    if (m_Rest.starts_with(mark)) m_Rest.remove_prefix(mark.size());
}

bool LineWalker::Next(std::string_view& line)
{
    if (m_Rest.empty()) return false;
    ++m_Number;
    size_t end = 0;
    while (end < m_Rest.size() && m_Rest[end] != '\n' && m_Rest[end] != '\r')
        ++end;
    line = m_Rest.substr(0, end);
    m_Rest.remove_prefix(end);
    if (m_Rest.starts_with("\r\n")) {
        m_Rest.remove_prefix(2);
    } else if (!m_Rest.empty()) {
        m_Rest.remove_prefix(1);
    }
    return true;
}

std::string_view NextToken(std::string_view& line, std::string_view separators)
{
    const size_t first = line.find_first_not_of(separators);
    if (first == std::string_view::npos) {
        line = {};
        return {};
    }
    const size_t end = std::min(line.find_first_of(separators, first), line.size());
    const std::string_view token = line.substr(first, end - first);
    line.remove_prefix(end);
    return token;
}

std::string Quoted(std::string_view token)
{
    constexpr size_t longest = 40;
    std::string text = "'";
    for (const char c : token.substr(0, longest)) {
        text += c >= ' ' && c <= '~' ? c : '?';
    }
    return text + (token.size() > longest ? "...'" : "'");
}

std::string Lower(std::string_view text)
{
    std::string lower(text);
    for (char& c : lower)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    return lower;
}

}  // namespace quell
