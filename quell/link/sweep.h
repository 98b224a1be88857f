// A grid of model settings over several channels: which setting opens the eye most.
#ifndef QUELL_LINK_SWEEP_H
#define QUELL_LINK_SWEEP_H

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "quell/link/link.h"
#include "quell/link/options.h"
#include "quell/link/parameters.h"

namespace quell {

// One parameter and its values: "de_emphasis=0:9.5:0.5" counts from 0 to 9.5 in steps of 0.5,
// "mode=a,b,c" names them, "gain=2" is a single one.
struct SweptParameter {
    std::string name;  // with its dots
    std::vector<std::string> values;
};

// Throws InputError for what is none, and for more than 100,000 values.
SweptParameter ParseSweptParameter(const std::string& text);

// Every combination, the last parameter changing fastest: one value per parameter.
std::vector<std::vector<std::string>> SweepGrid(const std::vector<SweptParameter>& parameters);

struct SweepPoint {
    std::optional<double> height;  // V, of the statistical eye; empty when the model failed
    double width = 0;              // unit intervals
    double peakDistortion = 0;     // V
    int exitCode = 0;              // as quell run would end
    std::string failure;           // one line
};

struct SweepChannel {
    std::string name;
    std::vector<SweepPoint> points;  // of the grid, in its order
    std::optional<size_t> best;      // the greatest height; of equal ones the first
};

struct SweepResult {
    double errorRate = 0;
    std::string model;  // the file
    std::vector<SweptParameter> parameters;
    std::vector<std::vector<std::string>> grid;
    std::vector<std::string> strings;  // what the model gets, of each point of the grid
    std::vector<SweepChannel> channels;
    // The point whose lowest height over all channels is greatest, among those that work on all.
    std::optional<size_t> bestWorst;
};

// Runs every point in processes of its own, so many at once; the result does not depend on that.
// progress is told how many are done. Throws what reading channels and the model throws.
SweepResult RunSweep(const std::vector<std::string>& channels,
                     const std::vector<SweptParameter>& parameters, const LinkOptions& link,
                     unsigned workers,
                     const std::function<void(size_t done, size_t all)>& progress);

// Parameters whose value at this point is the first or last of several numbers that were counted
// through: a better one may lie beyond.
std::vector<std::string> AtTheEndOfItsRange(const SweepResult& result, size_t point);

}  // namespace quell

#endif
