// The high-pass of a coupling capacitor in a through response.
#ifndef QUELL_CHANNEL_HIGH_PASS_H
#define QUELL_CHANNEL_HIGH_PASS_H

#include <optional>

#include "quell/channel/frequency_response.h"

namespace quell {

struct HighPass {
    double corner = 0;   // Hz, at 3 dB below the plateau; 0 when it lies between 0 Hz and `above`
    double above = 0;    // Hz, the lowest point of the plateau
    double plateau = 0;  // V/V, the greatest magnitude
};

// A response of first order in front of a plateau that passes at least three tenths: its lowest
// point lies below 95 % of the plateau, a point at 0 Hz below three tenths of it; or its phase
// leads like one whose corner lies below the band. Empty when there is none, or when fewer than two
// points would be left without it.
std::optional<HighPass> FindHighPass(const FrequencyResponse& response);

// The response without it: points below twice the corner are left out, the others divided by
// j f / (j f + corner).
FrequencyResponse WithoutHighPass(const FrequencyResponse& response, const HighPass& highPass);

}  // namespace quell

#endif
