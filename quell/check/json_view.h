// Findings as JSON, for programs.
#ifndef QUELL_CHECK_JSON_VIEW_H
#define QUELL_CHECK_JSON_VIEW_H

#include <nlohmann/json.hpp>

#include "quell/check/report.h"

namespace quell {

// Texts are as the reader gave them; bytes that are no UTF-8 are replaced when it is written.
nlohmann::ordered_json ReportJson(const FileReport& report);
nlohmann::ordered_json TotalsJson(const Totals& totals);

// One value of a list or object that is written piece by piece: indented, without a line end.
std::string JsonPiece(const nlohmann::ordered_json& json);

}  // namespace quell

#endif
