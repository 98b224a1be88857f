// The statistical eye at a point of a link.
#ifndef QUELL_LINK_EYE_H
#define QUELL_LINK_EYE_H

#include <optional>
#include <vector>

#include "quell/link/point.h"
#include "quell/signal/statistical_eye.h"

namespace quell {

struct LinkEyeOptions {
    double errorRate = 1e-12;
    EyeOptions eye;
};

// The error rates at which every eye is told.
inline constexpr double EyeErrorRates[] = {1e-6, 1e-9, 1e-12, 1e-15};

struct LinkEye {
    StatisticalEye eye;
    double errorRate = 0;
    double height = 0;            // V, at the best phase
    double width = 0;             // unit intervals
    double phase = 0;             // unit intervals from the middle of the eye
    double samplingTime = 0;      // s from the start of the response, of the bit sent there
    std::vector<double> heights;  // V, of EyeErrorRates at that phase
};

// Empty where the responses hold no finite numbers, and where the victim's is zero.
std::optional<LinkEye> MeasureLinkEye(const LinkPoint& point, const TimeGrid& grid,
                                      const LinkEyeOptions& options);

}  // namespace quell

#endif
