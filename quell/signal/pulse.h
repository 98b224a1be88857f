// Step and pulse responses, and the worst-case eye by peak distortion. Impulse responses in V/s,
// all other responses in V for a swing of 1 V between the rails.
#ifndef QUELL_SIGNAL_PULSE_H
#define QUELL_SIGNAL_PULSE_H

#include <cstddef>
#include <span>
#include <vector>

namespace quell {

// A sampled response at any position, straight between the samples: 0 before the first, the last
// value behind the end.
double ValueAt(std::span<const double> response, double position);

// The running sum of h times the sample interval (s): the answer to a step of 1 V.
std::vector<double> StepResponse(std::span<const double> impulse, double interval);

// The integral of h over one unit interval, p(t) = s(t) - s(t - one unit interval): the answer to
// one bit of 1 V. As long as h.
std::vector<double> PulseResponse(std::span<const double> impulse, double interval,
                                  double samplesPerBit);

// The cursors of a phase (in samples, 0 to samplesPerBit): the pulse response at phase + k unit
// intervals, k = 0, 1, ... to its end.
std::vector<double> CursorsAt(std::span<const double> pulse, double samplesPerBit, double phase);

struct PeakDistortion {
    double height = 0;      // V; negative when the eye is closed
    double mainCursor = 0;  // V, with its sign
    size_t phase = 0;       // samples, 0 to samplesPerBit - 1
    size_t cursor = 0;      // which of the phase's cursors is the main one
};

// Peak distortion analysis: the largest eye height over phase, |p0| - sum of all other |pk|, where
// p0 is the largest cursor of the phase. The worst data pattern takes the full magnitude of every
// other cursor (Casper, Haycock, Mooney: "An accurate and efficient analysis method for multi-Gb/s
// chip-to-chip signaling schemes", 2002).
PeakDistortion AnalysePeakDistortion(std::span<const double> pulse, double samplesPerBit);

struct Crosstalk {
    double sum = 0;      // V, sum of all |xk| at the worst phase
    double largest = 0;  // V, the largest cursor of that phase, with its sign
};

// What an aggressor takes from the eye height at worst: the largest sum of magnitudes over phase.
Crosstalk AnalyseCrosstalk(std::span<const double> pulse, double samplesPerBit);

}  // namespace quell

#endif
