// Channels as the command line names them, and the impulse matrix made of them.
#include "quell/channel/channel.h"

#include <algorithm>
#include <cmath>
#include <filesystem>

#include "quell/base/errors.h"
#include "quell/base/lines.h"
#include "quell/base/numbers.h"
#include "quell/channel/through_impulse.h"
#include "quell/signal/pulse.h"
#include "quell/signal/transform.h"

namespace quell {

namespace {

constexpr double DefaultSamplesPerBit = 16;
constexpr double MostSamplesPerBit = 4096;
constexpr size_t LongestColumn = 1U << 24;  // samples
constexpr size_t LargestMatrix = 1U << 27;  // samples of all columns, 1 GB
// A column has settled when the last tenth of its pulse response stays below this part of its peak.
constexpr double SettledPart = 0.01;
// What a victim's ports pass at 0 Hz, or in the plateau of an AC-coupled file. Below half of it
// they may be a coupling, above it they gain.
constexpr double LeastThroughGain = 0.5;
constexpr double MostThroughGain = 1.05;
// What a pulse's level may differ over the phases, and a step's offset of its height.
constexpr double PulseRipple = 0.05;
constexpr double OffsetPart = 1e-6;
// No passive file reflects or passes more than one, but for its rounding.
constexpr double MostParameter = 1.001;
// A V/s response has about the DC gain of its channel; one in V/sample is smaller by the sample
// interval, a ten-billionth or so. Sums of magnitudes, so that a coupling capacitor does not count.
constexpr double LeastGain = 1e-6;
constexpr double MostGain = 1e3;

constexpr const char* VictimName = "victim";
constexpr std::string_view LossPrefix = "loss:";
constexpr std::string_view TableExtensions[] = {".csv", ".tsv", ".txt", ".dat"};

ThroughChannel ReadTouchstone(const std::string& path, std::optional<PortOrder> order,
                              const PortOrder* victim, std::vector<std::string>& warnings)
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
    if (!order) {
        if (const std::optional<FoundPorts> found = FindPortOrder(file)) {
            order = found->order;
            channel.portSource = found->assumed ? PortSource::Assumed : PortSource::Found;
        } else if (victim != nullptr && victim->Differential()) {
            order = *victim;
            channel.portSource = PortSource::Victim;
        }
    }
    if (!order)
        throw InputError(path, 0,
                         "no through path at " + UnitText(file.frequency.front(), "Hz") +
                             (victim == nullptr ? "; give the port order with --ports 13,24"
                                                : "; give the port order as " + path + ":13,24"));
    channel.ports = *order;
    channel.response = ThroughResponse(file, *order);
    const LargestParameter largest = FindLargestParameter(file);
    if (largest.magnitude > MostParameter)
        warnings.push_back(path + ": |S" + std::to_string(largest.out) +
                           std::to_string(largest.in) + "| is " + ShortText(largest.magnitude, 4) +
                           " at " + UnitText(largest.frequency, "Hz") +
                           ": a passive channel gives back no more than it gets");
    return channel;
}

// Of a table that quell itself wrote, the columns of one side of the model.
void TakeOwnColumns(SampledResponses& table, const std::string& path,
                    std::optional<OwnColumns> wanted, std::vector<std::string>& warnings)
{
    constexpr std::string_view Before = "_before";
    constexpr std::string_view After = "_after";
    const bool own = table.names.front() == std::string(VictimName) + std::string(Before);
    if (!own) {
        if (wanted)
            throw InputError(path, 0,
                             "--column is for tables that quell wrote: no column "
                             "victim_before");
        return;
    }
    const bool after = wanted == OwnColumns::After;
    const std::string_view suffix = after ? After : Before;
    size_t kept = 0;
    for (size_t k = 0; k < table.names.size(); ++k) {
        if (!table.names[k].ends_with(suffix)) continue;
        std::swap(table.names[kept], table.names[k]);
        std::swap(table.columns[kept++], table.columns[k]);
    }
    if (kept == 0) throw InputError(path, 0, "no column of what left the model");
    table.names.resize(kept);
    table.columns.resize(kept);
    warnings.push_back(path + ": written by quell: its columns " +
                       (after ? "behind the model are taken"
                              : "before the model are taken (--column after takes the others)"));
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

void TransformThroughColumn(const ThroughChannel& channel, const ChannelOptions& options,
                            const TimeGrid& grid, Column& column,
                            std::vector<std::string>& warnings)
{
    ThroughImpulse through =
        TransformThrough(channel.response, grid, options.keepHighPass, column.name, warnings);
    column.impulse = std::move(through.impulse);
    column.treatment = std::move(through.treatment);
    column.delay = through.delay;
    column.loss = LossAt(channel.response, grid.Nyquist());
    column.ports = channel.ports;
    column.portSource = channel.portSource;
    column.reference = channel.reference;
    const bool victim = column.name == VictimName;
    if (victim && (through.plateau < LeastThroughGain || through.plateau > MostThroughGain))
        warnings.push_back(column.name + ": ports " + PortOrderText(channel.ports) + " pass " +
                           ShortText(through.plateau, 3) +
                           " at low frequency; expected 0.5 to 1: are these the right ports?");
}

void TransformLossLine(const LossLine& line, const TimeGrid& grid, Column& column)
{
    column.impulse = ImpulseResponse([&](double f) { return line.Gain(f); },
                                     LossLine::Samples(grid.samplesPerBit), grid.Interval());
    column.treatment.dc = 1;
    column.treatment.dcFrom = "the formula of the line";
    column.delay = LossLine::Delay;
    column.loss = line.LossAt(grid.Nyquist());
}

double LargestMagnitude(const std::vector<double>& samples, size_t first)
{
    double largest = 0;
    for (size_t n = first; n < samples.size(); ++n)
        largest = std::max(largest, std::abs(samples[n]));
    return largest;
}

bool SameInterval(double a, double b)
{
    return std::abs(a / b - 1) < 1e-6;
}

// A pulse response is the answer to one bit: bits one after another make a step, whose level is the
// same at every phase, and at most about 1 V.
void CheckPulseWidth(const std::vector<double>& pulse, double interval, const TimeGrid& grid,
                     const std::string& column, std::vector<std::string>& warnings)
{
    const double samplesPerBit = grid.BitTime() / interval;
    double least = INFINITY;
    double greatest = -INFINITY;
    for (double phase = 0; phase < samplesPerBit; ++phase) {
        double level = 0;
        for (const double cursor : CursorsAt(pulse, samplesPerBit, phase))
            level += cursor;
        least = std::min(least, level);
        greatest = std::max(greatest, level);
    }
    const double largest = std::max(std::abs(least), std::abs(greatest));
    if (largest < LeastThroughGain ||
        (largest <= MostThroughGain && greatest - least <= PulseRipple * largest))
        return;
    warnings.push_back(column + ": as the answer to one bit of " + UnitText(grid.BitTime(), "s") +
                       " this pulse adds up to " + ShortText(least, 3) + " to " +
                       ShortText(greatest, 3) +
                       " V over the phases; expected one level of about 1 V: is it the answer to "
                       "a bit of another length?");
}

// What a column of samples is before it is an impulse response.
void CheckSamples(const std::vector<double>& samples, double interval,
                  const ChannelOptions& options, const TimeGrid& grid, const std::string& column,
                  std::vector<std::string>& warnings)
{
    if (options.response == ResponseKind::Pulse)
        CheckPulseWidth(samples, interval, grid, column, warnings);
    if (options.response == ResponseKind::Step &&
        std::abs(samples.front()) > OffsetPart * LargestMagnitude(samples, 0))
        warnings.push_back(column + ": the step response begins at " +
                           ShortText(samples.front(), 4) + " V, which is taken for its offset");
}

void CheckLength(const Column& column, double seconds, const TimeGrid& grid)
{
    if (seconds / grid.Interval() > static_cast<double>(LongestColumn))
        throw InputError(column.source, 0,
                         "too long for the time grid of " + UnitText(grid.Interval(), "s"));
}

void ConvertUnevenSamples(const SampledResponses& table, size_t index,
                          const ChannelOptions& options, const TimeGrid& grid, Column& column,
                          std::vector<std::string>& warnings)
{
    if (options.unit == ImpulseUnit::VoltPerSample && options.response == ResponseKind::Impulse)
        throw InputError(column.source, 0, "V/sample needs equal time steps");
    CheckLength(column, table.time.back() - table.time.front(), grid);
    if (index == 0) {
        double least = INFINITY;
        double greatest = 0;
        for (size_t k = 1; k < table.time.size(); ++k) {
            least = std::min(least, table.time[k] - table.time[k - 1]);
            greatest = std::max(greatest, table.time[k] - table.time[k - 1]);
        }
        warnings.push_back(column.name + ": time steps of " + UnitText(least, "s") + " to " +
                           UnitText(greatest, "s") + " are resampled to " +
                           UnitText(grid.Interval(), "s"));
    }
    column.impulse = ToImpulse(table.time, table.columns[index], options.response, grid.Interval(),
                               grid.BitTime());
}

// Takes the column out of the table.
void ConvertSamples(SampledResponses& table, size_t index, const ChannelOptions& options,
                    const TimeGrid& grid, Column& column, std::vector<std::string>& warnings)
{
    CheckSamples(table.columns[index], table.interval, options, grid, column.name, warnings);
    if (!table.time.empty()) {
        ConvertUnevenSamples(table, index, options, grid, column, warnings);
    } else {
        column.impulse = ToImpulse(std::move(table.columns[index]), options.response,
                                   table.interval, grid.BitTime());
        if (options.response == ResponseKind::Impulse && options.unit == ImpulseUnit::VoltPerSample)
            for (double& h : column.impulse)
                h /= table.interval;
        if (!SameInterval(table.interval, grid.Interval())) {
            CheckLength(column, static_cast<double>(column.impulse.size()) * table.interval, grid);
            column.impulse = Resample(column.impulse, table.interval, grid.Interval());
        }
    }
    column.treatment.dc = DcGain(column.impulse, grid.Interval());
    column.treatment.dcFrom = "the sum of the samples";
    const double gain = std::abs(GainAt(column.impulse, grid.Interval(), grid.Nyquist()));
    const double loss = -20 * std::log10(gain);
    if (std::isfinite(loss)) column.loss = loss;
}

TimeGrid ChooseGrid(const ChannelSource& victim, const ChannelOptions& options,
                    std::vector<std::string>& warnings)
{
    TimeGrid grid;
    grid.bitRate = options.bitRate;
    grid.samplesPerBit = options.samplesPerBit.value_or(DefaultSamplesPerBit);
    const auto* table = std::get_if<SampledResponses>(&victim.content);
    if (table != nullptr && table->time.empty() && !options.samplesPerBit) {
        grid.samplesPerBit = 1 / (options.bitRate * table->interval);
        const double whole = std::round(grid.samplesPerBit);
        if (SameInterval(grid.samplesPerBit, whole)) grid.samplesPerBit = whole;
        if (!(grid.samplesPerBit >= 1 && grid.samplesPerBit <= MostSamplesPerBit))
            throw InputError(victim.name, 0,
                             "its sample interval of " + UnitText(table->interval, "s") +
                                 " gives " + ShortText(grid.samplesPerBit) +
                                 " samples per bit at " + UnitText(options.bitRate, "bit/s"));
        if (grid.samplesPerBit != whole) {
            const double up = std::ceil(grid.samplesPerBit);
            warnings.push_back(victim.name + ": " + ShortText(grid.samplesPerBit) +
                               " samples per bit are resampled to " + ShortText(up));
            grid.samplesPerBit = up;
        }
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
    matrix.warnings.insert(matrix.warnings.end(), source.warnings.begin(), source.warnings.end());
    auto* table = std::get_if<SampledResponses>(&source.content);
    const size_t count = table != nullptr ? table->columns.size() : 1;
    for (size_t k = 0; k < count; ++k) {
        Column column;
        const size_t place = matrix.columns.size();
        column.name = place == 0 ? VictimName : "aggressor " + std::to_string(place);
        column.source = source.name;
        if (table != nullptr) {
            if (count > 1) column.source += ", " + table->names[k];
            ConvertSamples(*table, k, options, matrix.grid, column, matrix.warnings);
        } else if (const auto* line = std::get_if<LossLine>(&source.content)) {
            TransformLossLine(*line, matrix.grid, column);
        } else {
            TransformThroughColumn(std::get<ThroughChannel>(source.content), options, matrix.grid,
                                   column, matrix.warnings);
        }
        column.treatment.record =
            static_cast<double>(column.impulse.size()) * matrix.grid.Interval();
        if (column.impulse.size() > LongestColumn)
            throw InputError(source.name, 0, "more than 16 million samples");
        matrix.columns.push_back(std::move(column));
    }
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

const char* PortSourceText(PortSource source)
{
    switch (source) {
        case PortSource::Given:
            return "given";
        case PortSource::Found:
            return "found";
        case PortSource::Assumed:
            return "assumed";
        case PortSource::Victim:
            return "as the victim's";
    }
    return "";
}

ChannelSource ReadChannel(const std::string& name, const ChannelOptions& options,
                          const PortOrder* victim)
{
    ChannelSource source;
    source.name = name;
    if (name.starts_with(LossPrefix)) {
        const std::optional<LossLine> line =
            ParseLossLine(std::string_view(name).substr(LossPrefix.size()));
        if (!line)
            throw InputError("'" + name +
                             "' is not of the form loss:8dB@2.5GHz; a frequency needs its unit");
        source.content = *line;
        return source;
    }
    std::string path = name;
    std::optional<PortOrder> order = TakePortOrder(path);
    if (!order && victim == nullptr) order = options.ports;
    if (TouchstonePorts(path) > 0) {
        source.content = ReadTouchstone(path, order, victim, source.warnings);
        return source;
    }
    const std::string extension = Lower(std::filesystem::path(path).extension().string());
    if (std::find(std::begin(TableExtensions), std::end(TableExtensions), extension) ==
        std::end(TableExtensions))
        throw InputError("'" + name +
                         "' is no channel: expected a .s2p, .s4p or .csv file or loss:8dB@2.5GHz");
    if (order) throw InputError(path, 0, "a table has no ports");
    SampledResponses table = ReadCsv(path, options.sampleInterval);
    TakeOwnColumns(table, path, options.ownColumns, source.warnings);
    source.content = std::move(table);
    return source;
}

ImpulseMatrix BuildImpulseMatrix(const std::string& victim,
                                 const std::vector<std::string>& aggressors,
                                 const ChannelOptions& options)
{
    ImpulseMatrix matrix;
    ChannelSource first = ReadChannel(victim, options, nullptr);
    matrix.grid = ChooseGrid(first, options, matrix.warnings);
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
