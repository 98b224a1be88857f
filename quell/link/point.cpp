// A point of a link: the responses that stand there, and what they amount to.
#include "quell/link/point.h"

#include <cmath>

#include "quell/signal/pulse.h"

namespace quell {

LinkPoint MeasurePoint(SharedMatrix impulses, const TimeGrid& grid)
{
    LinkPoint point = {std::move(impulses)};
    for (size_t k = 0; k < point.impulses.Columns(); ++k) {
        const std::span<const double> impulse = point.impulses.Column(k);
        ResponseFigures figures;
        figures.dcGain = DcGain(impulse, grid.Interval());
        for (const double h : impulse)
            if (!(std::abs(h) <= std::abs(figures.peak))) figures.peak = h;
        point.finite = point.finite && std::isfinite(figures.dcGain);

        const std::vector<double> pulse = PulseAt(point, k, grid);
        if (k == 0) {
            const PeakDistortion eye = AnalysePeakDistortion(pulse, grid.samplesPerBit);
            figures.mainCursor = eye.mainCursor;
            point.phase = eye.phase;
            point.height = eye.height;
        } else {
            const Crosstalk crosstalk = AnalyseCrosstalk(pulse, grid.samplesPerBit);
            figures.mainCursor = crosstalk.largest;
            figures.crosstalk = crosstalk.sum;
            point.height -= crosstalk.sum;
        }
        point.figures.push_back(figures);
    }
    return point;
}

std::vector<double> PulseAt(const LinkPoint& point, size_t column, const TimeGrid& grid)
{
    return PulseResponse(point.impulses.Column(column), grid.Interval(), grid.samplesPerBit);
}

}  // namespace quell
