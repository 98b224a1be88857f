// The result of a sweep in words and as JSON.
#include "quell/link/sweep_text.h"

#include <algorithm>

#include "quell/base/layout.h"
#include "quell/base/numbers.h"

namespace quell {

namespace {

std::string ChannelName(size_t c)
{
    return "channel " + std::to_string(c + 1);
}

}  // namespace

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

std::string SweepText(const SweepResult& result)
{
    std::string text;
    for (size_t c = 0; c < result.channels.size(); ++c)
        text += ChannelName(c) + ": " + result.channels[c].name + "\n";
    text += "eye height in V and width in UI at an error rate of " + ShortText(result.errorRate) +
            "\n\n";

    size_t width = 8;
    for (size_t i = 0; i < result.grid.size(); ++i)
        width = std::max(width, SettingText(result, i).size());
    text += Left("setting", width);
    for (size_t c = 0; c < result.channels.size(); ++c)
        text += "  " + Right(ChannelName(c), 18);
    text += "\n";
    for (size_t i = 0; i < result.grid.size(); ++i) {
        text += Left(SettingText(result, i), width);
        for (const SweepChannel& channel : result.channels) {
            const SweepPoint& point = channel.points[i];
            text += point.height ? Format("  %8.4f %7.3f %c", *point.height, point.width,
                                          channel.best == i ? '*' : ' ')
                                 : "  " + Right("failed  ", 18);
        }
        text += "\n";
    }

    text += "\n";
    const auto best = [&result](size_t point, double height) {
        return SettingText(result, point) + Format(", %.4f V", height) +
               EndOfRangeText(result, point) + "\n";
    };
    for (size_t c = 0; c < result.channels.size(); ++c) {
        const SweepChannel& channel = result.channels[c];
        text += ChannelName(c) + ": ";
        text += channel.best
                    ? "best with " + best(*channel.best, *channel.points[*channel.best].height)
                    : "no setting worked\n";
    }
    if (result.channels.size() > 1 && result.bestWorst)
        text += "all channels: best worst case with " +
                best(*result.bestWorst, *WorstHeight(result, *result.bestWorst));
    return text;
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
