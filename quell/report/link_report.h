// The report of one run: what was sent to the model, what it did to the responses, and the eye.
#ifndef QUELL_REPORT_LINK_REPORT_H
#define QUELL_REPORT_LINK_REPORT_H

#include <string>
#include <vector>

#include "quell/link/link.h"
#include "quell/link/options.h"

namespace quell {

// A self-contained page with settings, figures and pictures, the result as JSON in it. Throws
// InputError when the model's file cannot be read for its checksum.
std::string LinkReportHtml(const LinkResult& result, const LinkOptions& options);

struct NamedPicture {
    std::string name;  // "pulse-response.svg"
    std::string svg;
};

// The pictures of the page, each a drawing of its own.
std::vector<NamedPicture> LinkPictures(const LinkResult& result);

}  // namespace quell

#endif
