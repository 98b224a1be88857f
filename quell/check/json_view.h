// Findings as JSON, for programs.
#ifndef QUELL_CHECK_JSON_VIEW_H
#define QUELL_CHECK_JSON_VIEW_H

#include <nlohmann/json.hpp>

#include "quell/check/report.h"

namespace quell {

// Texts are as the reader gave them.
nlohmann::ordered_json FindingJson(const Finding& finding);
nlohmann::ordered_json TotalsJson(const Totals& totals);

// The object of a report up to its list of findings, which may be too many to be held: they follow,
// separated by commas, and then what closes the list and the object.
std::string ReportHead(const FileReport& report);
inline constexpr const char* ReportTail = "]}";

}  // namespace quell

#endif
