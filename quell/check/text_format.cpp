// Findings as text for people.
#include "quell/check/text_format.h"

#include <algorithm>
#include <cstdio>

#include "quell/base/printable.h"
#include "quell/check/source_lines.h"
#include "quell/reader/version.h"

namespace quell {

namespace {

constexpr size_t Window = 100;  // columns of a source line
constexpr size_t Before = 30;   // of them before what is pointed at
constexpr const char* Indent = "    ";

constexpr const char* Plain = "\x1b[0m";
constexpr const char* Bold = "\x1b[1m";
constexpr const char* Red = "\x1b[1;31m";
constexpr const char* Green = "\x1b[1;32m";
constexpr const char* Yellow = "\x1b[1;33m";
constexpr const char* Cyan = "\x1b[1;36m";

// By severity.
constexpr const char* Colours[SeverityCount] = {Red, Red, Yellow, Yellow, Cyan, Cyan};

using Lines = std::map<unsigned long, std::string>;

class Paint {
public:
    explicit Paint(bool colour) : m_Colour(colour) {}
    std::string operator()(const char* colour, const std::string& text) const
    {
        return m_Colour ? colour + text + Plain : text;
    }

private:
    bool m_Colour;
};

std::string NumberText(unsigned number)
{
    char text[32];
    std::snprintf(text, sizeof text, "[%04u]", number);
    return text;
}

std::string Heading(const Finding& finding)
{
    const std::string word = WordOf(finding.severity).one;
    return finding.number == 0 && finding.asked == 0 ? word : word + NumberText(finding.number);
}

// Some messages are reports of several lines.
std::string MessageText(const std::string& text)
{
    std::string message;
    size_t end = text.size();
    while (end > 0 && text[end - 1] == '\n')
        --end;
    for (size_t begin = 0; begin <= end;) {
        const size_t stop = std::min(text.find('\n', begin), end);
        message += (begin == 0 ? "" : std::string("\n") + Indent) +
                   Printable(std::string_view(text).substr(begin, stop - begin));
        begin = stop + 1;
    }
    return message;
}

// The part of the line around what is pointed at, and the caret under it.
std::string SourceText(const std::string& line, const std::string& message, const Paint& paint)
{
    const Span span = FindQuoted(message, line);
    const std::string before = Printable(std::string_view(line).substr(0, span.begin));
    const std::string quoted = Printable(std::string_view(line).substr(span.begin, span.size));
    const std::string shown =
        before + quoted + Printable(std::string_view(line).substr(span.begin + span.size));
    size_t column = PrintedWidth(before);
    // Windows are cut between characters; the text may hold some of several bytes.
    std::string window;
    const size_t first = column > Window - Before ? column - Before : 0;
    size_t place = 0;
    bool more = false;
    for (const char c : shown) {
        const bool starts = (static_cast<unsigned char>(c) & 0xC0U) != 0x80;
        if (starts) ++place;
        more = place > first + Window;
        if (more) break;
        if (place > first) window += c;
    }
    std::string text =
        Indent + std::string(first > 0 ? "..." : "") + window + (more ? "..." : "") + "\n";
    if (span.size == 0) return text;
    column = column - first + (first > 0 ? 3 : 0);
    const size_t width = std::min(PrintedWidth(quoted), Window);
    return text + Indent + std::string(column, ' ') +
           paint(Green, "^" + std::string(width - 1, '~')) + "\n";
}

// Some messages end with the line that they are about.
bool QuotesLine(std::string_view message, std::string_view line)
{
    const size_t end = message.rfind('\n');
    const size_t quoted = message.find_first_not_of(" \n", end);
    if (end == std::string_view::npos || quoted == std::string_view::npos) return false;
    line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
    return line.starts_with(message.substr(quoted));
}

std::string FindingText(const Finding& finding, const Lines& lines, const Paint& paint)
{
    std::string place = Printable(finding.file) + ":";
    if (finding.line != 0) place += std::to_string(finding.line) + ":";
    const char* colour = Colours[static_cast<size_t>(finding.severity)];
    const std::string message = MessageText(finding.text);
    std::string text =
        paint(Bold, place) + " " + paint(colour, Heading(finding) + ":") + " " + message + "\n";
    const auto line = lines.find(finding.line);
    if (line != lines.end() && !Printable(line->second).empty() &&
        !QuotesLine(message, line->second))
        text += SourceText(line->second, finding.text, paint);
    return text;
}

// The lines that the findings of one file name.
Lines LinesOf(const FileReport& report, const std::string& file, const std::string& path)
{
    std::set<unsigned long> numbers;
    for (const Finding& finding : report.findings)
        if (finding.line != 0 && finding.file == file) numbers.insert(finding.line);
    return ReadLines(path, numbers);
}

std::string Summary(const FileReport& report)
{
    switch (report.status) {
        case FileStatus::Checked:
            return CountsText(report.counts) +
                   (report.checkedAs.empty() ? "" : ", checked as " + report.checkedAs);
        case FileStatus::Failed:
            return CountsText(report.counts) + " before the reader stopped";
        default:
            return Printable(report.reason);
    }
}

}  // namespace

void TextFormat::File(const CheckFile& file, const FileReport& report, Spool&, Output& output)
{
    output.Print(ReportText(report, file.path, m_Colour));
}

void TextFormat::End(const Totals& totals, Output& output)
{
    output.Print(TotalsText(totals));
}

std::string ReportText(const FileReport& report, const std::string& path, bool colour)
{
    const Paint paint(colour);
    std::map<std::string, Lines> lines;
    std::map<std::pair<std::string, unsigned>, size_t> left;
    for (const Finding& finding : report.findings) {
        ++left[{finding.file, finding.number}];
        if (!lines.contains(finding.file))
            lines[finding.file] =
                LinesOf(report, finding.file, finding.file == report.name ? path : finding.file);
    }
    std::string text;
    for (const Finding& finding : report.findings) {
        text += FindingText(finding, lines[finding.file], paint);
        const std::pair<std::string, unsigned> key(finding.file, finding.number);
        const auto more = report.more.find(key);
        if (--left[key] == 0 && more != report.more.end())
            text += Printable(finding.file) + ": ... and " + std::to_string(more->second) +
                    " more of " + Heading(finding) + "\n";
    }
    if (report.status == FileStatus::Failed) {
        std::string place = Printable(report.failedFile) + ":";
        if (report.failedLine != 0) place += std::to_string(report.failedLine) + ":";
        text += paint(Bold, place) + " " + paint(Red, "failure:") + " " + Printable(report.reason) +
                "\n";
    }
    return text + paint(Bold, Printable(report.name) + ":") + " " + Summary(report) + "\n";
}

std::string TotalsText(const Totals& totals)
{
    const std::string beyond = std::string("of a version after ") + LastKnownVersion();
    const struct {
        size_t count;
        const char* text;
    } parts[] = {
        {totals.inOrder, "without errors"},
        {totals.withErrors, "with errors"},
        {totals.beyond, beyond.c_str()},
        {totals.notRead, "not read"},
        {totals.failed, "that stopped the reader"},
    };
    std::string text = std::to_string(totals.files) + (totals.files == 1 ? " file" : " files");
    const char* between = ": ";
    for (const auto& part : parts) {
        if (part.count == 0) continue;
        text += between + std::to_string(part.count) + " " + part.text;
        between = ", ";
    }
    return text + "; " + CountsText(totals.counts) + "\n";
}

}  // namespace quell
