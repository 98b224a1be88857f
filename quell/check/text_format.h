// Findings as text for people: place, number and message, the source line and a caret under what
// the message quotes.
#ifndef QUELL_CHECK_TEXT_FORMAT_H
#define QUELL_CHECK_TEXT_FORMAT_H

#include <string>

#include "quell/check/format.h"

namespace quell {

// Shows the first findings of each number in a file.
class TextFormat : public CheckFormat {
public:
    explicit TextFormat(const FormatOptions& options) : m_Colour(options.colour) {}
    size_t KeptPerNumber() const override { return 20; }
    void File(const CheckFile& file, const FileReport& report, Spool& waiting,
              Output& output) override;
    void End(const Totals& totals, Output& output) override;

private:
    bool m_Colour;
};

// The text of one file's report, with its summary. path is where the file lies, which is not its
// name when it came through standard input.
std::string ReportText(const FileReport& report, const std::string& path, bool colour);

// The summary of all files.
std::string TotalsText(const Totals& totals);

}  // namespace quell

#endif
