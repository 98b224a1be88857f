// The statistical eye as a picture: density in colours, contours of equal error rate.
#ifndef QUELL_REPORT_EYE_PICTURE_H
#define QUELL_REPORT_EYE_PICTURE_H

#include <string>

#include "quell/link/eye.h"
#include "quell/report/plot.h"

namespace quell {

// Two unit intervals wide, zeros and ones together; contours at EyeErrorRates and the best
// phase. The densities of `fine`, an eye of the same link with more phases, are the colours.
// Contours are those of `eye`, so that they agree with its figures.
std::string EyePictureSvg(const LinkEye& eye, const StatisticalEye& fine, SvgUse use);

}  // namespace quell

#endif
