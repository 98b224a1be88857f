// Text inside HTML, SVG and scripts.
#include "quell/report/markup.h"

#include <cmath>

#include "quell/base/json.h"

namespace quell {

namespace {

using Json = nlohmann::ordered_json;

constexpr const char* Replacement = "\xEF\xBF\xBD";

constexpr struct {
    char letter;
    const char* entity;
} Entities[] = {
    {'&', "&amp;"}, {'<', "&lt;"}, {'>', "&gt;"}, {'"', "&quot;"}, {'\'', "&#39;"},
};

// Bytes that are no UTF-8 replaced, as in the JSON.
std::string Utf8(std::string_view text)
{
    return Json::parse(JsonLine(std::string(text))).get<std::string>();
}

}  // namespace

std::string Escaped(std::string_view text)
{
    std::string escaped;
    for (const char c : Utf8(text)) {
        const char* replaced = nullptr;
        for (const auto& row : Entities)
            if (c == row.letter) replaced = row.entity;
        const bool control = static_cast<unsigned char>(c) < 0x20 && c != '\n' && c != '\t';
        if (control || c == 0x7f) replaced = Replacement;
        if (replaced != nullptr)
            escaped += replaced;
        else
            escaped += c;
    }
    return escaped;
}

std::string ScriptJson(const nlohmann::ordered_json& json)
{
    std::string text;
    for (const char c : JsonLine(json)) {
        if (c == '<')
            text += "\\u003c";
        else
            text += c;
    }
    return text;
}

std::string Coordinate(double value)
{
    // Far outside every picture; keeps hostile numbers from making long texts.
    if (!(std::abs(value) < 1e6)) value = value > 0 ? 1e6 : -1e6;
    const long tenths = std::lround(value * 10);
    std::string text = std::to_string(std::abs(tenths) / 10);
    if (tenths % 10 != 0) text += "." + std::to_string(std::abs(tenths) % 10);
    return tenths < 0 ? "-" + text : text;
}

}  // namespace quell
