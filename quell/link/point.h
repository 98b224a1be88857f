// A point of a link: the responses that stand there, and what they amount to.
#ifndef QUELL_LINK_POINT_H
#define QUELL_LINK_POINT_H

#include <cstddef>
#include <vector>

#include "quell/process/shared_matrix.h"
#include "quell/signal/time_grid.h"

namespace quell {

// What one column's response amounts to.
struct ResponseFigures {
    double dcGain = 0;      // V/V
    double peak = 0;        // V/s, the largest sample of the impulse response, with its sign
    double mainCursor = 0;  // V: of the victim at the phase of the largest eye height, of an
                            // aggressor the largest one at its worst phase
    double crosstalk = 0;   // V: what an aggressor takes from the eye height; 0 for the victim
};

struct LinkPoint {
    SharedMatrix impulses;                      // V/s, the victim's column first
    std::vector<ResponseFigures> figures = {};  // of each column
    double height = 0;                          // V, peak distortion, crosstalk subtracted
    size_t phase = 0;                           // samples, where the height is taken
    bool finite = true;                         // no gain is an infinity or no number
};

// Takes the responses and finds their figures.
LinkPoint MeasurePoint(SharedMatrix impulses, const TimeGrid& grid);

// A column's pulse response, V for a swing of 1 V between the rails. It is made anew by every call:
// a point keeps one response of each column.
std::vector<double> PulseAt(const LinkPoint& point, size_t column, const TimeGrid& grid);

}  // namespace quell

#endif
