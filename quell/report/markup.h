// Text inside HTML, SVG and scripts.
#ifndef QUELL_REPORT_MARKUP_H
#define QUELL_REPORT_MARKUP_H

#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

namespace quell {

// Any bytes as text between tags or inside a quoted attribute: what has a meaning in markup is
// escaped, control characters but line ends and tabs and bytes that are no UTF-8 are replaced.
std::string Escaped(std::string_view text);

// JSON that can stand inside a script element: no "<" in it.
std::string ScriptJson(const nlohmann::ordered_json& json);

// A coordinate in a picture, to a tenth of its unit: "12.3", "12".
std::string Coordinate(double value);

}  // namespace quell

#endif
