// A link: a channel and the stages that its responses run through.
#include "quell/link/link.h"

#include <algorithm>

namespace quell {

namespace {

void AddWarnings(std::vector<std::string>& all, const std::vector<std::string>& more,
                 const std::string& prefix = "")
{
    for (const std::string& warning : more)
        all.push_back(prefix + warning);
}

}  // namespace

LinkChannel MakeLinkChannel(ImpulseMatrix matrix)
{
    SharedMatrix impulses(matrix.Rows(), matrix.columns.size());
    for (size_t k = 0; k < matrix.columns.size(); ++k) {
        const std::vector<double> impulse = std::move(matrix.columns[k].impulse);
        std::copy(impulse.begin(), impulse.end(), impulses.Column(k).begin());
    }
    return {matrix.grid, std::move(matrix.columns), MeasurePoint(std::move(impulses), matrix.grid),
            std::move(matrix.warnings)};
}

const LinkPoint* LinkResult::Point(size_t k) const
{
    if (k == 0) return &channel->point;
    const std::optional<LinkPoint>& after = stages[k - 1].after;
    return after ? &*after : nullptr;
}

std::string LinkResult::PointName(size_t k) const
{
    if (k == 0) return "before";
    return k == stages.size() ? "after" : "after " + stages[k - 1].setup.name;
}

LinkResult RunLink(std::shared_ptr<const LinkChannel> channel,
                   const std::vector<StageSetup>& stages, double timeout, const LinkEyeOptions& eye)
{
    LinkResult result;
    result.channel = std::move(channel);
    // Of several models a warning says which.
    const auto prefix = [&stages](const StageSetup& setup) {
        return stages.size() > 1 ? setup.name + ": " : "";
    };
    for (const StageSetup& setup : stages)
        AddWarnings(result.warnings, setup.model.warnings, prefix(setup));
    AddWarnings(result.warnings, result.channel->warnings);
    for (const StageSetup& setup : stages) {
        result.stages.push_back(RunStage(setup, *result.After(), result.channel->grid, timeout));
        AddWarnings(result.warnings, result.stages.back().warnings, prefix(setup));
        if (result.Failed()) return result;
    }
    result.eye = MeasureLinkEye(*result.After(), result.channel->grid, eye);
    return result;
}

}  // namespace quell
