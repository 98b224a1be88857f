// Whole text files and their lines.
#include "quell/base/lines.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>

#include "quell/base/errors.h"

namespace quell {

namespace {

constexpr std::uintmax_t LargestFile = 1'000'000'000;
constexpr size_t BlockSize = 1U << 16;
constexpr std::string_view ByteOrderMark = "\xEF\xBB\xBF";

FilePointer OpenTextFile(const std::string& path, size_t& bytes)
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

    FilePointer file = OpenFile(path, "rb");
    if (!file) throw InputError(path, 0, std::strerror(errno));
    bytes = static_cast<size_t>(size);
    return file;
}

// Appends so many bytes, or fewer where the file ends first.
void ReadBytes(std::FILE* file, const std::string& path, size_t bytes, std::string& text)
{
    const size_t before = text.size();
    text.resize(before + bytes);
    text.resize(before + std::fread(text.data() + before, 1, bytes, file));
    if (std::ferror(file)) throw InputError(path, 0, "read error");
}

// The end of the line that holds `from`: LF, CR LF, CR or the end of the text.
size_t LineEnd(std::string_view text, size_t from)
{
    while (from < text.size() && text[from] != '\n' && text[from] != '\r')
        ++from;
    return from;
}

size_t NextLine(std::string_view text, size_t end)
{
    const size_t width = text.substr(end).starts_with("\r\n") ? 2 : 1;
    return std::min(end + width, text.size());
}

}  // namespace

std::string ReadTextFile(const std::string& path)
{
    size_t bytes = 0;
    const FilePointer file = OpenTextFile(path, bytes);
    std::string text;
    ReadBytes(file.get(), path, bytes, text);
    return text;
}

LineWalker::LineWalker(std::string_view text) : m_Rest(text)
{
    if (m_Rest.starts_with(ByteOrderMark)) m_Rest.remove_prefix(ByteOrderMark.size());
}

bool LineWalker::Next(std::string_view& line)
{
    if (m_Rest.empty()) return false;
    ++m_Number;
    const size_t end = LineEnd(m_Rest, 0);
    line = m_Rest.substr(0, end);
    m_Rest.remove_prefix(NextLine(m_Rest, end));
    return true;
}

FileLines::FileLines(const std::string& path) : m_Path(path), m_File(OpenTextFile(path, m_Left))
{
    ReadBlock();
    if (m_Block.starts_with(ByteOrderMark)) m_Begin = ByteOrderMark.size();
}

void FileLines::ReadBlock()
{
    m_Block.erase(0, m_Begin);
    m_Begin = 0;
    const size_t before = m_Block.size();
    ReadBytes(m_File.get(), m_Path, std::min(BlockSize, m_Left), m_Block);
    const size_t read = m_Block.size() - before;
    m_Left = read == 0 ? 0 : m_Left - read;  // 0 bytes: the file has become shorter
}

bool FileLines::Next(std::string_view& line)
{
    size_t end = LineEnd(m_Block, m_Begin);
    // A CR at the end of the block may be half of a line end.
    while (m_Left > 0 &&
           (end >= m_Block.size() || (m_Block[end] == '\r' && end + 1 == m_Block.size()))) {
        const size_t walked = end - m_Begin;
        ReadBlock();
        end = LineEnd(m_Block, walked);
    }
    if (m_Begin == m_Block.size()) return false;
    ++m_Number;
    line = std::string_view(m_Block).substr(m_Begin, end - m_Begin);
    m_Begin = NextLine(m_Block, end);
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
