// A grid of model settings over several channels.
#include "quell/link/sweep.h"

#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>
#include <new>
#include <thread>

#include "quell/base/errors.h"
#include "quell/base/lines.h"
#include "quell/base/numbers.h"
#include "quell/process/forked_process.h"
#include "quell/process/shared_block.h"

namespace quell {

namespace {

constexpr size_t MostPoints = 100000;

// What a worker leaves of a point, in memory shared with the parent.
struct SharedPoint {
    bool done;
    bool measured;  // the figures below hold
    double height;
    double width;
    double peakDistortion;
    int exitCode;
    char failure[400];
};

struct SharedProgress {
    std::atomic<size_t> next;
    std::atomic<size_t> done;
};
static_assert(std::atomic<size_t>::is_always_lock_free);

std::vector<std::string> Split(const std::string& text, char separator)
{
    std::vector<std::string> parts(1);
    for (const char c : text) {
        if (c == separator)
            parts.emplace_back();
        else
            parts.back() += c;
    }
    return parts;
}

// start:stop:step, both ends included. The values are start + i step, rounded to what the step's
// own decimals show, so that 0:1:0.1 holds 0.3 and not 0.30000000000000004.
std::optional<std::vector<std::string>> CountThrough(const std::string& text)
{
    const std::vector<std::string> parts = Split(text, ':');
    if (parts.size() != 3) return std::nullopt;
    std::optional<double> numbers[3];
    for (size_t i = 0; i < 3; ++i) {
        numbers[i] = ParseNumber(parts[i]);
        if (!numbers[i])
            throw InputError("--set: " + Quoted(parts[i]) + " in " + Quoted(text) +
                             " is not a number; a range is START:STOP:STEP");
    }
    const double start = *numbers[0], stop = *numbers[1], step = *numbers[2];
    if (step == 0) throw InputError("--set: the step of " + Quoted(text) + " is 0");
    const double steps = (stop - start) / step;
    if (!(steps >= 0))
        throw InputError("--set: the step of " + Quoted(text) + " does not lead from " + parts[0] +
                         " to " + parts[1]);
    if (!(steps < MostPoints))
        throw InputError("--set: " + Quoted(text) + " has more than " + std::to_string(MostPoints) +
                         " values");
    std::vector<std::string> values;
    for (size_t i = 0; i <= static_cast<size_t>(steps * (1 + 1e-12) + 1e-9); ++i)
        values.push_back(ShortText(start + static_cast<double>(i) * step, 12));
    return values;
}

std::vector<Setting> SettingsAt(const std::vector<SweptParameter>& parameters,
                                const std::vector<std::string>& values)
{
    std::vector<Setting> settings;
    for (size_t i = 0; i < parameters.size(); ++i)
        settings.push_back(ParseSetting(parameters[i].name + "=" + values[i]));
    return settings;
}

void RunPoint(const std::shared_ptr<const LinkChannel>& channel,
              const std::vector<StageSetup>& stages, const LinkOptions& link, SharedPoint* point)
{
    std::string failure;
    try {
        const LinkResult result = RunLink(channel, stages, link.model.timeout, link.eye);
        if (result.eye) {
            point->measured = true;
            point->height = result.eye->height;
            point->width = result.eye->width;
            point->peakDistortion = result.After()->height;
        } else {
            point->exitCode = EXIT_MODEL_FAILED;
            failure =
                result.Failed() ? "AMI_Init returned 0" : "no pulse response to make an eye of";
        }
    } catch (const CommandError& error) {
        point->exitCode = error.Code();
        failure = error.what();
    } catch (const std::exception& error) {
        point->exitCode = EXIT_BAD_INPUT;
        failure = error.what();
    }
    std::strncpy(point->failure, failure.c_str(), sizeof point->failure - 1);
    point->done = true;
}

using Workers = std::vector<std::unique_ptr<ForkedProcess>>;

// Workers are processes: the process of each model is then the child of one with a single thread.
// When the system gives fewer of them, they do the work of all.
Workers StartWorkers(size_t count, const std::function<void()>& work)
{
    ForkSetup setup;
    setup.standardOutput = STDOUT_FILENO;
    Workers workers;
    while (workers.size() < std::max<size_t>(count, 1)) {
        try {
            workers.push_back(std::make_unique<ForkedProcess>(setup, [&work](int) {
                work();
                return EXIT_SUCCESS;
            }));
        } catch (const CommandError&) {
            if (workers.empty()) throw;
            break;
        }
    }
    return workers;
}

SweepPoint Collect(const SharedPoint& shared)
{
    SweepPoint point;
    if (!shared.done) {
        point.exitCode = EXIT_MODEL_BROKEN;
        point.failure = "its process ended early";
        return point;
    }
    if (shared.measured) point.height = shared.height;
    point.width = shared.width;
    point.peakDistortion = shared.peakDistortion;
    point.exitCode = shared.exitCode;
    point.failure = shared.failure;
    return point;
}

std::optional<size_t> GreatestHeight(const std::vector<std::optional<double>>& heights)
{
    std::optional<size_t> best;
    for (size_t i = 0; i < heights.size(); ++i)
        if (heights[i] && (!best || *heights[i] > *heights[*best])) best = i;
    return best;
}

// Of each point of the grid the lowest height over the channels; empty where one of them failed.
std::vector<std::optional<double>> WorstHeights(const SweepResult& result)
{
    std::vector<std::optional<double>> worst(result.grid.size(),
                                             std::numeric_limits<double>::infinity());
    for (const SweepChannel& channel : result.channels)
        for (size_t i = 0; i < worst.size(); ++i) {
            const std::optional<double>& height = channel.points[i].height;
            if (!height || !worst[i])
                worst[i].reset();
            else
                worst[i] = std::min(*worst[i], *height);
        }
    return worst;
}

}  // namespace

SweptParameter ParseSweptParameter(const std::string& text)
{
    const size_t equals = text.find('=');
    if (equals == std::string::npos) throw InputError("--set " + Quoted(text) + ": NAME=VALUES");
    SweptParameter parameter;
    parameter.name = text.substr(0, equals);
    const std::string values = text.substr(equals + 1);
    parameter.values = CountThrough(values).value_or(Split(values, ','));
    // Each name and value must be one that a parameter string can carry.
    for (const std::string& value : parameter.values)
        ParseSetting(parameter.name + "=" + value);
    return parameter;
}

std::vector<std::vector<std::string>> SweepGrid(const std::vector<SweptParameter>& parameters)
{
    std::vector<std::vector<std::string>> grid(1);
    for (const SweptParameter& parameter : parameters) {
        if (parameter.values.size() > MostPoints / grid.size())
            throw InputError("the sweep has more than " + std::to_string(MostPoints) + " points");
        std::vector<std::vector<std::string>> finer;
        for (const std::vector<std::string>& point : grid)
            for (const std::string& value : parameter.values) {
                finer.push_back(point);
                finer.back().push_back(value);
            }
        grid = std::move(finer);
    }
    return grid;
}

SweepResult RunSweep(const std::vector<std::string>& channels,
                     const std::vector<SweptParameter>& parameters, const LinkOptions& link,
                     unsigned workers, const std::function<void(size_t, size_t)>& progress)
{
    SweepResult result;
    result.errorRate = link.eye.errorRate;
    result.parameters = parameters;
    result.grid = SweepGrid(parameters);

    const ModelFiles files = FindModel(link.model);
    std::vector<std::vector<StageSetup>> setups;  // of each point of the grid
    for (const std::vector<std::string>& values : result.grid) {
        ModelOptions model = link.model;
        model.settings = SettingsAt(parameters, values);
        setups.push_back({{"model", SetUpModel(files, model)}});
        result.strings.push_back(setups.back().front().model.parameters);
    }
    result.model = files.model;
    std::vector<std::shared_ptr<const LinkChannel>> measured;
    measured.reserve(channels.size());
    for (const std::string& channel : channels)
        measured.push_back(std::make_shared<const LinkChannel>(
            MakeLinkChannel(BuildImpulseMatrix(channel, link.aggressors, link.channel))));

    const size_t all = channels.size() * setups.size();
    const SharedBlock progressBlock(sizeof(SharedProgress));
    const SharedBlock pointBlock(all * sizeof(SharedPoint));
    SharedProgress* const shared = new (progressBlock.Data()) SharedProgress{};
    SharedPoint* const points = static_cast<SharedPoint*>(pointBlock.Data());

    const auto work = [&] {
        for (size_t i = shared->next++; i < all; i = shared->next++) {
            RunPoint(measured[i / setups.size()], setups[i % setups.size()], link, &points[i]);
            ++shared->done;
        }
    };
    for (const auto& worker : StartWorkers(std::min<size_t>(workers, all), work))
        while (!worker->HasEnded()) {
            progress(shared->done, all);
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
    progress(shared->done, all);

    for (size_t c = 0; c < channels.size(); ++c) {
        SweepChannel channel = {channels[c], {}, {}};
        std::vector<std::optional<double>> heights;
        for (size_t i = 0; i < setups.size(); ++i) {
            channel.points.push_back(Collect(points[c * setups.size() + i]));
            heights.push_back(channel.points.back().height);
        }
        channel.best = GreatestHeight(heights);
        result.channels.push_back(std::move(channel));
    }
    result.bestWorst = GreatestHeight(WorstHeights(result));
    return result;
}

std::vector<std::string> AtTheEndOfItsRange(const SweepResult& result, size_t point)
{
    std::vector<std::string> names;
    for (size_t k = 0; k < result.parameters.size(); ++k) {
        const SweptParameter& parameter = result.parameters[k];
        const std::string& value = result.grid[point][k];
        const bool end = value == parameter.values.front() || value == parameter.values.back();
        if (parameter.values.size() > 1 && end && ParseNumber(value))
            names.push_back(parameter.name);
    }
    return names;
}

}  // namespace quell
