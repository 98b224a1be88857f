// The result of a sweep in words and as JSON.
#ifndef QUELL_LINK_SWEEP_TEXT_H
#define QUELL_LINK_SWEEP_TEXT_H

#include <nlohmann/json.hpp>
#include <optional>
#include <string>

#include "quell/link/sweep.h"

namespace quell {

// "de_emphasis=3.5 swing=1" for a point of the grid.
std::string SettingText(const SweepResult& result, size_t point);

// " (best at the end of the range of de_emphasis)", or nothing.
std::string EndOfRangeText(const SweepResult& result, size_t point);

// The lowest height over all channels; empty where the model failed on one of them.
std::optional<double> WorstHeight(const SweepResult& result, size_t point);

// Every setting with its eye on every channel, and the best ones.
std::string SweepText(const SweepResult& result);

nlohmann::ordered_json SweepPointJson(const SweepResult& result, size_t channel, size_t point);

}  // namespace quell

#endif
