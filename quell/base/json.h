// JSON as text. Bytes that are no UTF-8 are replaced.
#ifndef QUELL_BASE_JSON_H
#define QUELL_BASE_JSON_H

#include <nlohmann/json.hpp>
#include <optional>
#include <string>

namespace quell {

// Indented, with a line end.
std::string JsonText(const nlohmann::ordered_json& json);

// On one line, without a line end.
std::string JsonLine(const nlohmann::ordered_json& json);
// The same with every other letter than those of ASCII escaped.
std::string JsonAsciiLine(const nlohmann::ordered_json& json);

template <typename T>
nlohmann::ordered_json OrNull(const std::optional<T>& value)
{
    return value ? nlohmann::ordered_json(*value) : nlohmann::ordered_json(nullptr);
}

}  // namespace quell

#endif
