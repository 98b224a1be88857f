// The result of a sweep in words and as JSON.
#include "quell/link/sweep_text.h"

#include <algorithm>

namespace quell {

std::string SettingText(const SweepResult& result, size_t point)
{
    std::string text;
    for (size_t k = 0; k < result.parameters.size(); ++k)
        text += (k == 0 ? "" : " ") + result.parameters[k].name + "=" + result.grid[point][k];
    return text.empty() ? "(no setting)" : text;
}

std::string EndOfRangeText(const SweepResult& result, size_t point)
{
    std::string names;
    for (const std::string& name : AtTheEndOfItsRange(result, point))
        names += (names.empty() ? "" : ", ") + name;
    return names.empty() ? "" : " (best at the end of the range of " + names + ")";
}

std::optional<double> WorstHeight(const SweepResult& result, size_t point)
{
    std::optional<double> worst;
    for (const SweepChannel& channel : result.channels) {
        const std::optional<double>& height = channel.points[point].height;
        if (!height) return std::nullopt;
        worst = worst ? std::min(*worst, *height) : *height;
    }
    return worst;
}

nlohmann::ordered_json SweepPointJson(const SweepResult& result, size_t channel, size_t point)
{
    using Json = nlohmann::ordered_json;
    const SweepPoint& at = result.channels[channel].points[point];
    const auto known = [&at](double value) { return at.height ? Json(value) : Json(nullptr); };
    Json json;
    json["channel"] = result.channels[channel].name;
    json["settings"] = Json::object();
    for (size_t k = 0; k < result.parameters.size(); ++k)
        json["settings"][result.parameters[k].name] = result.grid[point][k];
    json["parameters"] = result.strings[point];
    json["ber"] = result.errorRate;
    json["height"] = known(at.height.value_or(0));
    json["width_ui"] = known(at.width);
    json["peak_distortion_height"] = known(at.peakDistortion);
    json["best"] = result.channels[channel].best == point;
    json["best_worst_case"] = result.bestWorst == point;
    if (!at.failure.empty()) json["failure"] = at.failure;
    return json;
}

}  // namespace quell
