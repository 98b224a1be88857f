// Lines of a file that findings name.
#include "quell/check/source_lines.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "quell/base/files.h"

namespace quell {

namespace {

constexpr size_t LineMax = 2048;  // bytes kept of a line

// Quotes in messages: 'text' and "text".
bool Quote(char c)
{
    return c == '\'' || c == '"';
}

// Messages show keywords with "_" for blanks.
bool Alike(char a, char b)
{
    return a == b || (a == '_' && b == ' ') || (a == ' ' && b == '_');
}

Span Find(std::string_view text, std::string_view line)
{
    if (text.empty()) return {};
    const auto place = std::search(line.begin(), line.end(), text.begin(), text.end(), Alike);
    if (place == line.end()) return {};
    return {static_cast<size_t>(place - line.begin()), text.size()};
}

std::string_view Trimmed(std::string_view text)
{
    constexpr std::string_view blanks = " \t\r\n";
    const size_t first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

class LineCollector {
public:
    LineCollector(const std::set<unsigned long>& numbers,
                  std::map<unsigned long, std::string>& lines)
        : m_Next(numbers.begin()), m_End(numbers.end()), m_Lines(lines)
    {
    }

    bool Done() const { return m_Next == m_End; }

    // Takes bytes cut anywhere.
    void Receive(std::string_view bytes)
    {
        while (!bytes.empty() && !Done()) {
            const size_t end = bytes.find('\n');
            if (m_Number == *m_Next) Keep(bytes.substr(0, end));
            if (end == std::string_view::npos) return;
            if (m_Number == *m_Next) ++m_Next;
            ++m_Number;
            bytes.remove_prefix(end + 1);
        }
    }

private:
    void Keep(std::string_view bytes)
    {
        std::string& line = m_Lines[m_Number];
        line.append(bytes.substr(0, LineMax - std::min(line.size(), LineMax)));
    }

    std::set<unsigned long>::const_iterator m_Next;
    std::set<unsigned long>::const_iterator m_End;
    std::map<unsigned long, std::string>& m_Lines;
    unsigned long m_Number = 1;
};

}  // namespace

std::map<unsigned long, std::string> ReadLines(const std::string& path,
                                               const std::set<unsigned long>& numbers)
{
    std::map<unsigned long, std::string> lines;
    unsigned long long size = 0;
    if (numbers.empty() || !WhyNotReadable(path, size).empty()) return lines;
    const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (file < 0) return lines;
    LineCollector collector(numbers, lines);
    char buffer[1 << 16];
    while (!collector.Done()) {
        const ssize_t count = read(file, buffer, sizeof buffer);
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) break;
        collector.Receive(std::string_view(buffer, static_cast<size_t>(count)));
    }
    close(file);
    for (auto& line : lines)
        if (line.second.ends_with('\r')) line.second.pop_back();
    return lines;
}

Span FindQuoted(std::string_view message, std::string_view line)
{
    for (size_t open = 0; open < message.size(); ++open) {
        if (!Quote(message[open])) continue;
        const size_t close = message.find(message[open], open + 1);
        if (close == std::string_view::npos) break;
        const Span span = Find(message.substr(open + 1, close - open - 1), line);
        if (span.size != 0) return span;
        open = close;
    }
    const size_t colon = message.rfind(": ");
    return colon == std::string_view::npos ? Span{}
                                           : Find(Trimmed(message.substr(colon + 2)), line);
}

}  // namespace quell
