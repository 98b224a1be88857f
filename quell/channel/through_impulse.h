// From a through response over frequency to an impulse response on a time grid.
#ifndef QUELL_CHANNEL_THROUGH_IMPULSE_H
#define QUELL_CHANNEL_THROUGH_IMPULSE_H

#include <string>
#include <vector>

#include "quell/channel/frequency_response.h"
#include "quell/channel/treatment.h"
#include "quell/signal/time_grid.h"

namespace quell {

struct ThroughImpulse {
    std::vector<double> impulse;  // V/s
    double delay = 0;             // s, of the data; the response has it behind its own start
    double plateau = 0;           // V/V, greatest of an AC-coupled response, else the gain at 0 Hz
    Treatment treatment;
};

// The last quarter of the grid's band fades to nothing (raised cosine): a band that ends in a wall
// rings for as long as the record. The record is as long as the frequency step resolves and begins
// 100 ps and 32 samples before the delay; an electrically short response is moved later by whole
// samples for that. What the interpolation leaves outside the record is what the samples over
// frequency cannot tell from the inside: it is folded back, so that the sum of the response is the
// gain at 0 Hz.
//
// A high-pass with its corner below a thousandth of the bit rate is left out and its plateau
// carried down to DC, unless it is to be kept. Warnings begin with the column's name and name what
// was left out, what the data do not reach, and how much is not causal.
ThroughImpulse TransformThrough(const FrequencyResponse& response, const TimeGrid& grid,
                                bool keepHighPass, const std::string& column,
                                std::vector<std::string>& warnings);

}  // namespace quell

#endif
