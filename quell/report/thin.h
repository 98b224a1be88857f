// Curves with fewer points that look the same.
#ifndef QUELL_REPORT_THIN_H
#define QUELL_REPORT_THIN_H

#include <cstddef>
#include <span>
#include <vector>

namespace quell {

// Indices of the points that draw the curve: straight lines between them pass within the tolerance
// (in units of y) of all the points left out. x ascends; a y that is no number is a gap, of which
// one point is kept. Should that be more points than the limit, they are the lowest and the highest
// of each of limit / 2 equal stretches instead. Linear in the number of points.
std::vector<size_t> VisiblePoints(std::span<const double> x, std::span<const double> y,
                                  double tolerance, size_t limit);

}  // namespace quell

#endif
