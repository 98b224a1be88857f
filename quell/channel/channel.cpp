// Channels as the command line names them, and the impulse matrix made of them.
#include "quell/channel/channel.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <filesystem>
#include <numbers>

#include "quell/base/errors.h"
#include "quell/base/lines.h"
#include "quell/base/numbers.h"
#include "quell/signal/pulse.h"
#include "quell/signal/transform.h"

namespace quell {

namespace {

constexpr double DefaultSamplesPerBit = 16;
constexpr double MostSamplesPerBit = 4096;
constexpr size_t ShortestRecord = 2048;        // samples, of a channel given over frequency
constexpr size_t LongestTransform = 1U << 19;  // samples
constexpr size_t LongestColumn = 1U << 24;     // samples
constexpr size_t LargestMatrix = 1U << 27;     // samples of all columns, 1 GB
// A column has settled when the last tenth of its pulse response stays below this part of its peak.
constexpr double SettledPart = 0.01;
// The part of a response's energy outside its record that is worth a warning.
constexpr double OutsidePart = 0.001;
// The lowest point of a through response is a stray one from this phase error on.
constexpr double StrayPhase = 0.5;  // rad
constexpr double StrayGain = 0.5;
// A V/s response has about the DC gain of its channel; one in V/sample is smaller by the sample
// interval, a ten-billionth or so. Sums of magnitudes, so that a coupling capacitor does not count.
constexpr double LeastGain = 1e-6;
constexpr double MostGain = 1e3;

constexpr std::string_view LossPrefix = "loss:";
constexpr std::string_view TableExtensions[] = {".csv", ".tsv", ".txt", ".dat"};

ThroughChannel ReadTouchstone(const std::string& path, std::optional<PortOrder> order,
                              const PortOrder* victim)
{
    const int ports = TouchstonePorts(path);
    if (ports != 2 && ports != 4)
        throw InputError(path, 0,
                         std::to_string(ports) + "-ports are not read, only 2 and 4 ports");
    const Touchstone file = ParseTouchstone(ReadTextFile(path), path, ports);
    if (order && order->Differential() != (ports == 4))
        throw InputError(path, 0,
                         std::string("the port order of a ") + std::to_string(ports) +
                             "-port looks like " + (ports == 4 ? "13,24" : "1,2"));

    ThroughChannel channel;
    channel.reference = file.reference;
    if (!order) order = FindPortOrder(file);
    if (!order && victim != nullptr && victim->Differential()) {
        order = *victim;
        channel.victimPorts = true;
    }
    if (!order)
        throw InputError(path, 0,
                         "no through path at " + UnitText(file.frequency.front(), "Hz") +
                             (victim == nullptr ? "; give the port order with --ports 13,24"
                                                : "; give the port order as " + path + ":13,24"));
    channel.ports = *order;
    channel.response = ThroughResponse(file, *order);
    return channel;
}

// Splits "FILE:13,24" unless a file of the whole name exists.
std::optional<PortOrder> TakePortOrder(std::string& name)
{
    const size_t colon = name.rfind(':');
    if (colon == std::string::npos) return std::nullopt;
    const std::optional<PortOrder> order = ParsePortOrder(std::string_view(name).substr(colon + 1));
    std::error_code error;
    if (!order || std::filesystem::exists(name, error)) return std::nullopt;
    name.resize(colon);
    return order;
}

// Some files begin with a point whose phase fits neither DC nor the points behind it. Its weight at
// low frequency would tilt the whole response, so it is left out. A high-pass may turn the phase
// there, but it does not pass more at its lowest point.
FrequencyResponse WithoutStrayPoint(const FrequencyResponse& response, const std::string& column,
                                    std::vector<std::string>& warnings)
{
    const double error = LowestPhaseError(response);
    const double first = std::abs(response.gain[0]);
    if (response.frequency.front() == 0 || std::abs(error) < StrayPhase || first < StrayGain ||
        first < std::abs(response.gain[1]))
        return response;
    warnings.push_back(column + ": the phase at " + UnitText(response.frequency.front(), "Hz") +
                       " is " + ShortText(std::abs(error) * 180 / std::numbers::pi, 2) +
                       " degrees off its neighbours; this point is left out");
    FrequencyResponse rest = response;
    rest.frequency.erase(rest.frequency.begin());
    rest.gain.erase(rest.gain.begin());
    return rest;
}

// The impulse response of a channel given over frequency. The transform covers twice the time that
// the frequency step resolves, so that what the interpolation leaves outside falls into the half
// that is dropped: times before zero and behind the record.
void TransformThrough(const ThroughChannel& channel, const TimeGrid& grid, Column& column,
                      std::vector<std::string>& warnings)
{
    const FrequencyResponse response = WithoutStrayPoint(channel.response, column.name, warnings);
    const ResponseCurve curve(response);
    const double interval = grid.Interval();
    double step = response.frequency[1] - response.frequency[0];
    for (size_t k = 2; k < response.frequency.size(); ++k)
        step = std::min(step, response.frequency[k] - response.frequency[k - 1]);

    const double resolved = std::clamp(1 / (step * interval), double{ShortestRecord},
                                       static_cast<double>(LongestTransform) / 2);
    const size_t size = std::bit_ceil(static_cast<size_t>(2 * resolved));
    std::vector<double> impulse =
        ImpulseResponse([&](double f) { return curve.At(f); }, size, interval);

    const double delay = std::max(0.0, curve.Delay() / interval);
    const size_t kept =
        static_cast<size_t>(std::min(static_cast<double>(size), std::ceil(delay + resolved)));
    double inside = 0;
    double outside = 0;
    for (size_t n = 0; n < size; ++n)
        (n < kept ? inside : outside) += impulse[n] * impulse[n];
    if (outside > OutsidePart * (inside + outside))
        warnings.push_back(
            column.name + ": " + ShortText(100 * outside / (inside + outside), 2) +
            " % of the response's energy lies before time zero or behind its record of " +
            UnitText(static_cast<double>(kept) * interval, "s") +
            " (data not causal, or frequency step too coarse)");
    impulse.resize(kept);
    column.impulse = std::move(impulse);
    column.delay = curve.Delay();
    column.loss = LossAt(channel.response, grid.Nyquist());
    column.ports = channel.ports;
    column.reference = channel.reference;
    if (!column.loss)
        warnings.push_back(column.name + ": half the bit rate, " + UnitText(grid.Nyquist(), "Hz") +
                           ", lies outside the file's " +
                           UnitText(channel.response.frequency.front(), "Hz") + " to " +
                           UnitText(channel.response.frequency.back(), "Hz"));
}

void TransformLossLine(const LossLine& line, const TimeGrid& grid, Column& column)
{
    column.impulse =
        ImpulseResponse([&](double f) { return line.Gain(f); }, LossLine::Samples, grid.Interval());
    column.delay = LossLine::Delay;
    column.loss = line.LossAt(grid.Nyquist());
}

bool SameInterval(double a, double b)
{
    return std::abs(a / b - 1) < 1e-6;
}

// Takes the column out of the table.
void ConvertSamples(SampledResponses& table, size_t index, const ChannelOptions& options,
                    const TimeGrid& grid, Column& column)
{
    column.impulse = ToImpulse(std::move(table.columns[index]), options.response, table.interval,
                               grid.BitTime());
    if (options.response == ResponseKind::Impulse && options.unit == ImpulseUnit::VoltPerSample)
        for (double& h : column.impulse)
            h /= table.interval;
    if (!SameInterval(table.interval, grid.Interval())) {
        const double samples =
            static_cast<double>(column.impulse.size()) * table.interval / grid.Interval();
        if (samples > static_cast<double>(LongestColumn))
            throw InputError(column.source, 0,
                             "too long for the time grid of " + UnitText(grid.Interval(), "s"));
        column.impulse = Resample(column.impulse, table.interval, grid.Interval());
    }
    const double gain = std::abs(GainAt(column.impulse, grid.Interval(), grid.Nyquist()));
    const double loss = -20 * std::log10(gain);
    if (std::isfinite(loss)) column.loss = loss;
}

TimeGrid ChooseGrid(const ChannelSource& victim, const ChannelOptions& options)
{
    TimeGrid grid;
    grid.bitRate = options.bitRate;
    grid.samplesPerBit = options.samplesPerBit.value_or(DefaultSamplesPerBit);
    const auto* table = std::get_if<SampledResponses>(&victim.content);
    if (table != nullptr && !options.samplesPerBit) {
        grid.samplesPerBit = 1 / (options.bitRate * table->interval);
        const double whole = std::round(grid.samplesPerBit);
        if (SameInterval(grid.samplesPerBit, whole)) grid.samplesPerBit = whole;
        if (!(grid.samplesPerBit >= 1 && grid.samplesPerBit <= MostSamplesPerBit))
            throw InputError(victim.name, 0,
                             "its sample interval of " + UnitText(table->interval, "s") +
                                 " gives " + ShortText(grid.samplesPerBit) +
                                 " samples per bit at " + UnitText(options.bitRate, "bit/s"));
    }
    if (!(grid.samplesPerBit >= 1 && grid.samplesPerBit <= MostSamplesPerBit))
        throw InputError("samples per bit must be from 1 to " + ShortText(MostSamplesPerBit));
    if (!std::isfinite(grid.Interval()) || !(grid.Interval() > 0))
        throw InputError("no sample interval at " + UnitText(grid.bitRate, "bit/s"));
    return grid;
}

// One channel's columns on the grid. Samples of a table are handed on.
void AddColumns(ChannelSource& source, const ChannelOptions& options, ImpulseMatrix& matrix)
{
    auto* table = std::get_if<SampledResponses>(&source.content);
    const size_t count = table != nullptr ? table->columns.size() : 1;
    for (size_t k = 0; k < count; ++k) {
        Column column;
        const size_t place = matrix.columns.size();
        column.name = place == 0 ? "victim" : "aggressor " + std::to_string(place);
        column.source = source.name;
        if (table != nullptr) {
            if (count > 1) column.source += ", " + table->names[k];
            ConvertSamples(*table, k, options, matrix.grid, column);
        } else if (const auto* line = std::get_if<LossLine>(&source.content)) {
            TransformLossLine(*line, matrix.grid, column);
        } else {
            TransformThrough(std::get<ThroughChannel>(source.content), matrix.grid, column,
                             matrix.warnings);
        }
        if (column.impulse.size() > LongestColumn)
            throw InputError(source.name, 0, "more than 16 million samples");
        matrix.columns.push_back(std::move(column));
    }
}

double LargestMagnitude(const std::vector<double>& samples, size_t first)
{
    double largest = 0;
    for (size_t n = first; n < samples.size(); ++n)
        largest = std::max(largest, std::abs(samples[n]));
    return largest;
}

// What would spoil the result without an error.
void CheckColumn(const Column& column, const TimeGrid& grid, std::vector<std::string>& warnings)
{
    const double interval = grid.Interval();
    double magnitude = 0;
    for (const double h : column.impulse)
        magnitude += std::abs(h) * interval;
    const double dcGain = DcGain(column.impulse, interval);
    if (magnitude < LeastGain || magnitude > MostGain) {
        warnings.push_back(column.name + ": the DC gain of this channel is " +
                           ShortText(dcGain, 3) + "; expected about 1: is the unit " +
                           (magnitude < 1 ? "V/sample?" : "V/s?"));
        return;
    }

    const double length = static_cast<double>(column.impulse.size()) * interval;
    if (column.delay && *column.delay >= length) {
        warnings.push_back(column.name + ": the record of " + UnitText(length, "s") +
                           " is shorter than the channel's delay of " +
                           UnitText(*column.delay, "s"));
        return;
    }
    const std::vector<double> pulse = PulseResponse(column.impulse, interval, grid.samplesPerBit);
    const double peak = LargestMagnitude(pulse, 0);
    const double tail = LargestMagnitude(pulse, pulse.size() - pulse.size() / 10 - 1);
    if (tail >= peak) {
        warnings.push_back(column.name +
                           ": the response is still rising at the end of its record; " +
                           UnitText(length, "s") + " may be shorter than the channel's delay");
    } else if (tail > SettledPart * peak) {
        warnings.push_back(column.name + ": not settled: the last tenth of its " +
                           UnitText(length, "s") + " still holds " +
                           ShortText(100 * tail / peak, 2) + " % of the pulse response's peak");
    }
}

}  // namespace

ChannelSource ReadChannel(const std::string& name, const ChannelOptions& options,
                          const PortOrder* victim)
{
    ChannelSource source;
    source.name = name;
    if (name.starts_with(LossPrefix)) {
        const std::optional<LossLine> line =
            ParseLossLine(std::string_view(name).substr(LossPrefix.size()));
        if (!line) throw InputError("'" + name + "' is not of the form loss:8dB@2.5GHz");
        source.content = *line;
        return source;
    }
    std::string path = name;
    std::optional<PortOrder> order = TakePortOrder(path);
    if (!order && victim == nullptr) order = options.ports;
    if (TouchstonePorts(path) > 0) {
        source.content = ReadTouchstone(path, order, victim);
        return source;
    }
    const std::string extension = Lower(std::filesystem::path(path).extension().string());
    if (std::find(std::begin(TableExtensions), std::end(TableExtensions), extension) ==
        std::end(TableExtensions))
        throw InputError("'" + name +
                         "' is no channel: expected a .s2p, .s4p or .csv file or loss:8dB@2.5GHz");
    if (order) throw InputError(path, 0, "a table has no ports");
    source.content = ReadCsv(path, options.sampleInterval);
    return source;
}

ImpulseMatrix BuildImpulseMatrix(const std::string& victim,
                                 const std::vector<std::string>& aggressors,
                                 const ChannelOptions& options)
{
    ImpulseMatrix matrix;
    ChannelSource first = ReadChannel(victim, options, nullptr);
    matrix.grid = ChooseGrid(first, options);
    AddColumns(first, options, matrix);

    const auto* through = std::get_if<ThroughChannel>(&first.content);
    const PortOrder none;
    const PortOrder* ports = through != nullptr ? &through->ports : &none;
    for (const std::string& name : aggressors) {
        ChannelSource aggressor = ReadChannel(name, options, ports);
        AddColumns(aggressor, options, matrix);
    }

    const double samplesPerBit = matrix.grid.samplesPerBit;
    if (samplesPerBit != std::round(samplesPerBit))
        matrix.warnings.push_back(ShortText(samplesPerBit) +
                                  " samples per bit: not an integer, the model will round it");
    size_t rows = 0;
    for (const Column& column : matrix.columns) {
        CheckColumn(column, matrix.grid, matrix.warnings);
        rows = std::max(rows, column.impulse.size());
    }
    // The next column begins with what a model's delay line holds: it must hold zeros.
    rows += static_cast<size_t>(std::ceil(2 * samplesPerBit));
    if (rows * matrix.columns.size() > LargestMatrix)
        throw InputError("the impulse matrix would take more than 1 GB");
    for (Column& column : matrix.columns)
        column.impulse.resize(rows);
    return matrix;
}

}  // namespace quell
