// The report of a sweep.
#ifndef QUELL_REPORT_SWEEP_REPORT_H
#define QUELL_REPORT_SWEEP_REPORT_H

#include <string>

#include "quell/link/options.h"
#include "quell/link/sweep.h"

namespace quell {

// A self-contained page: the best settings, height and width over the parameter where one was
// swept through numbers, and a table of all settings. The points as JSON are in it, as
// quell sweep --json prints them. Of a sweep of more than 1,200 points, settings times channels,
// the page holds those with the greatest worst-case heights, and says so.
std::string SweepReportHtml(const SweepResult& result, const LinkOptions& options);

}  // namespace quell

#endif
