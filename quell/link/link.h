// A link: a channel and the stages that its responses run through.
#ifndef QUELL_LINK_LINK_H
#define QUELL_LINK_LINK_H

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "quell/channel/channel.h"
#include "quell/link/eye.h"
#include "quell/link/stage.h"

namespace quell {

// A channel on its time grid, measured once for any number of links over it.
struct LinkChannel {
    TimeGrid grid;
    std::vector<Column> columns;  // their impulse responses have moved to the point
    LinkPoint point;              // before the first stage
    std::vector<std::string> warnings;
};

LinkChannel MakeLinkChannel(ImpulseMatrix matrix);

struct LinkResult {
    std::shared_ptr<const LinkChannel> channel;
    std::vector<LinkStage> stages;  // that ran, in their order; one that failed is the last
    std::optional<LinkEye> eye;     // behind the last stage, where MeasureLinkEye finds one
    std::vector<std::string> warnings;

    bool Failed() const { return !stages.empty() && stages.back().Failed(); }
    // Point 0 lies before the first stage, point k behind the k-th; null where that one failed.
    size_t Points() const { return 1 + stages.size(); }
    const LinkPoint* Point(size_t k) const;
    const LinkPoint& Before() const { return channel->point; }
    const LinkPoint* After() const { return Point(stages.size()); }
    // "before", "after NAME", "after" for the last.
    std::string PointName(size_t k) const;
};

// Runs the stages one behind the other. Throws what RunStage throws.
LinkResult RunLink(std::shared_ptr<const LinkChannel> channel,
                   const std::vector<StageSetup>& stages, double timeout,
                   const LinkEyeOptions& eye);

}  // namespace quell

#endif
