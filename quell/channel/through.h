// The through response of an n-port: S21 of a 2-port, the differential SDD21 of a 4-port.
#ifndef QUELL_CHANNEL_THROUGH_H
#define QUELL_CHANNEL_THROUGH_H

#include <optional>
#include <string>
#include <string_view>

#include "quell/channel/frequency_response.h"
#include "quell/channel/touchstone.h"

namespace quell {

// Ports counted from 1. Of a 2-port only the positive ones are used.
struct PortOrder {
    int inPositive = 0;
    int inNegative = 0;
    int outPositive = 0;
    int outNegative = 0;

    bool Differential() const { return inNegative != 0; }
    bool operator==(const PortOrder&) const = default;
};

// "13,24": in at ports 1 and 3, out at 2 and 4; "1,2" for a 2-port. Empty when it is neither.
std::optional<PortOrder> ParsePortOrder(std::string_view text);

// "1->2, 3->4" for "13,24".
std::string PortOrderText(const PortOrder& order);

struct FoundPorts {
    PortOrder order;
    bool assumed = false;  // which ends of the second line lie beside those of the first
};

// The order in which a 4-port leads through: where a line passes nearly everything, no pair of
// ports but its two ends is coupled as much. That is at the lowest frequency, or at the first one
// where half passes when nothing does there (a coupling capacitor). The ends of the second line are
// told by when coupled waves arrive: at the near end before a wave could have reached the far end.
// Where the coupling is too weak or the band too narrow for that, they are assumed to be in the
// order of their numbers. Empty for a file without a through path, as crosstalk is. A 2-port is
// always 1->2.
std::optional<FoundPorts> FindPortOrder(const Touchstone& file);

struct LargestParameter {
    double magnitude = 0;
    double frequency = 0;  // Hz
    int out = 0;           // ports
    int in = 0;
};

LargestParameter FindLargestParameter(const Touchstone& file);

// S21, or SDD21 = (S(o+,i+) - S(o+,i-) - S(o-,i+) + S(o-,i-)) / 2: a differential wave in,
// a differential wave out (mixed-mode S-parameters, Bockelman and Eisenstadt 1995). Between
// terminations of the file's reference resistance.
FrequencyResponse ThroughResponse(const Touchstone& file, const PortOrder& order);

}  // namespace quell

#endif
