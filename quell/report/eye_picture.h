// The statistical eye as a picture: density in colours, contours of equal error rate.
#ifndef QUELL_REPORT_EYE_PICTURE_H
#define QUELL_REPORT_EYE_PICTURE_H

#include <string>

#include "quell/link/eye.h"
#include "quell/report/plot.h"

namespace quell {

// Two unit intervals wide, zeros and ones together; contours at EyeErrorRates and the best
// phase.
std::string EyePictureSvg(const LinkEye& eye, SvgUse use);

}  // namespace quell

#endif
