// Findings as text for people: place, number and message, the source line and a caret under what
// the message quotes.
#ifndef QUELL_CHECK_TEXT_VIEW_H
#define QUELL_CHECK_TEXT_VIEW_H

#include <string>

#include "quell/check/report.h"

namespace quell {

// The text of one file's report, with its summary. path is where the file lies, which is not its
// name when it came through standard input.
std::string ReportText(const FileReport& report, const std::string& path, bool colour);

// The summary of all files.
std::string TotalsText(const Totals& totals);

}  // namespace quell

#endif
