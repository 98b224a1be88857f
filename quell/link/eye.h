// The statistical eye of a link behind its model.
#ifndef QUELL_LINK_EYE_H
#define QUELL_LINK_EYE_H

#include "quell/link/link.h"
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
    std::vector<double> heights;  // V, of EyeErrorRates at that phase
};

// Of the responses after the model; a link whose model failed has none, nor one whose responses
// hold no finite numbers.
std::optional<LinkEye> MeasureLinkEye(const LinkResult& link, const LinkEyeOptions& options);

// The eye of MeasureLinkEye for a picture: with so many times more phases on a voltage grid of so
// many volts.
StatisticalEye FinerLinkEye(const LinkResult& link, const LinkEye& eye, const EyeOptions& options,
                            size_t phases, double voltageStep);

}  // namespace quell

#endif
