// How a channel came onto the time grid: what was read, extrapolated, moved and cut.
#ifndef QUELL_CHANNEL_TREATMENT_H
#define QUELL_CHANNEL_TREATMENT_H

#include <optional>
#include <string>

namespace quell {

struct Band {
    double low = 0;   // Hz
    double high = 0;  // Hz
};

struct Treatment {
    double dc = 0;             // V/V, the gain at frequency zero that the response was made with
    std::string dcFrom;        // where that comes from, as it stands in a sentence
    std::optional<Band> band;  // of the data; empty for tables over time and the built-in line
    double continuedTo = 0;    // Hz: beyond the band the data were continued up to here; 0 for not
    double record = 0;         // s, length of the response, zeros at its end not counted
    double delayRemoved = 0;   // s taken out of the response; negative where it was moved later, so
                               // that what lies before time zero is kept
};

// In one line: "DC gain 0.998 from the file, data from 0 Hz to 40 GHz, record of 100 ns".
std::string TreatmentText(const Treatment& treatment);

}  // namespace quell

#endif
