// Responses over time in a text table.
#include "quell/channel/csv.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "quell/base/errors.h"
#include "quell/base/lines.h"
#include "quell/base/numbers.h"

namespace quell {

namespace {

constexpr std::string_view Blanks = " \t\v\f";

std::string_view Trimmed(std::string_view field)
{
    const size_t first = field.find_first_not_of(Blanks);
    if (first == std::string_view::npos) return {};
    return field.substr(first, field.find_last_not_of(Blanks) - first + 1);
}

char FindSeparator(std::string_view line)
{
    for (const char c : {';', ',', '\t'})
        if (line.find(c) != std::string_view::npos) return c;
    return ' ';
}

// Fields of a line; a separator at its end opens no further field.
void SplitFields(std::string_view line, char separator, std::vector<std::string_view>& fields)
{
    fields.clear();
    if (separator == ' ') {
        for (std::string_view token = NextToken(line); !token.empty(); token = NextToken(line))
            fields.push_back(token);
        return;
    }
    line = Trimmed(line);
    while (!line.empty()) {
        const size_t end = std::min(line.find(separator), line.size());
        fields.push_back(Trimmed(line.substr(0, end)));
        line.remove_prefix(std::min(end + 1, line.size()));
    }
}

std::string Unquoted(std::string_view field)
{
    if (field.size() >= 2 && field.front() == '"' && field.back() == '"')
        field = field.substr(1, field.size() - 2);
    return std::string(field);
}

bool NamesTime(const std::string& name)
{
    const std::string lower = Lower(name);
    return lower == "t" || lower.starts_with("time") || lower.starts_with("t ") ||
           lower.starts_with("t(") || lower.starts_with("t[") || lower.starts_with("t_");
}

// The lines that the samples stand in: what is kept is where lines without a sample lie between.
class SampleLines {
public:
    void Add(size_t line)
    {
        if (m_Runs.empty() || line != m_Runs.back().line + (m_Samples - m_Runs.back().sample))
            m_Runs.push_back({m_Samples, line});
        ++m_Samples;
    }
    size_t Count() const { return m_Samples; }
    size_t Of(size_t sample) const
    {
        const auto run =
            std::prev(std::upper_bound(m_Runs.begin(), m_Runs.end(), sample,
                                       [](size_t s, const Run& r) { return s < r.sample; }));
        return run->line + (sample - run->sample);
    }

private:
    struct Run {
        size_t sample, line;
    };
    std::vector<Run> m_Runs;
    size_t m_Samples = 0;
};

struct TimeUnit {
    std::string_view name;
    double perSecond;
};

constexpr TimeUnit TimeUnits[] = {{"s", 1},    {"sec", 1},   {"ms", 1e3}, {"us", 1e6},
                                  {"ns", 1e9}, {"ps", 1e12}, {"fs", 1e15}};

// How many of the heading's unit make a second: its last word, "time (ns)" or "time_ps". A word in
// brackets must be a unit.
double UnitsPerSecond(const std::string& heading, const std::string& file)
{
    std::string_view rest = heading;
    const bool bracket = rest.ends_with(')') || rest.ends_with(']');
    if (bracket) rest.remove_suffix(1);
    const size_t before = rest.find_last_of(" \t_([/");
    if (before == std::string_view::npos) return 1;
    const std::string word = Lower(Trimmed(rest.substr(before + 1)));
    for (const TimeUnit& unit : TimeUnits)
        if (word == unit.name) return unit.perSecond;
    if (bracket) throw InputError(file, 0, Quoted(heading) + ": no unit of time that is known");
    return 1;
}

// Takes the time column out. Equal steps leave their size only.
void TakeTime(SampledResponses& table, double unitsPerSecond, const std::string& name,
              const SampleLines& lines)
{
    std::vector<double> time = std::move(table.columns.front());
    table.columns.erase(table.columns.begin());
    table.names.erase(table.names.begin());
    for (double& t : time)
        t /= unitsPerSecond;
    const double step = (time.back() - time.front()) / static_cast<double>(time.size() - 1);
    if (!(step > 0) || !std::isfinite(step)) throw InputError(name, 0, "the time does not rise");
    bool even = true;
    for (size_t k = 0; k < time.size(); ++k) {
        const double expected = time.front() + static_cast<double>(k) * step;
        even = even && std::abs(time[k] - expected) <= 0.05 * step;
        if (k > 0 && time[k] < time[k - 1])
            throw InputError(name, lines.Of(k),
                             "time " + ShortText(time[k], 8) + " s after " +
                                 ShortText(time[k - 1], 8) + " s: the time must not fall");
    }
    table.interval = step;
    if (!even) table.time = std::move(time);
}

template <typename Lines>
SampledResponses ParseTable(Lines& lines, const std::string& name,
                            std::optional<double> sampleInterval)
{
    SampledResponses table;
    SampleLines samples;
    std::vector<std::string_view> fields;
    char separator = 0;
    bool hasNames = false;

    std::string_view line;
    while (lines.Next(line)) {
        line = line.substr(0, line.find_first_of("#!"));
        if (Trimmed(line).empty()) continue;
        const bool first = separator == 0;
        if (first) separator = FindSeparator(line);
        SplitFields(line, separator, fields);
        if (first) {
            table.columns.resize(fields.size());
            hasNames = !ParseNumber(fields.front());
            for (size_t k = 0; k < fields.size(); ++k)
                table.names.push_back(hasNames ? Unquoted(fields[k])
                                               : "column " + std::to_string(k + 1));
            if (hasNames) continue;
        }
        if (fields.size() != table.columns.size())
            throw InputError(name, lines.Number(),
                             std::to_string(fields.size()) + " columns; the first line has " +
                                 std::to_string(table.columns.size()));
        for (size_t k = 0; k < fields.size(); ++k) {
            const std::optional<double> value = ParseNumber(fields[k]);
            if (!value)
                throw InputError(name, lines.Number(), Quoted(fields[k]) + " is not a number");
            table.columns[k].push_back(*value);
        }
        samples.Add(lines.Number());
    }
    if (samples.Count() < 2) throw InputError(name, 0, "fewer than two samples");

    if (hasNames ? NamesTime(table.names.front()) : !sampleInterval.has_value()) {
        if (table.columns.size() < 2)
            throw InputError(name, 0,
                             "one column: give --sample-interval, or a time column before it");
        const double perSecond = hasNames ? UnitsPerSecond(table.names.front(), name) : 1;
        TakeTime(table, perSecond, name, samples);
        if (sampleInterval && std::abs(table.interval / *sampleInterval - 1) > 1e-3)
            throw InputError(name, 0,
                             "the time column has steps of " + UnitText(table.interval, "s") +
                                 ", --sample-interval says " + UnitText(*sampleInterval, "s"));
    } else if (sampleInterval) {
        table.interval = *sampleInterval;
    } else {
        throw InputError(name, 0, "the first column is not the time: give --sample-interval");
    }
    return table;
}

}  // namespace

SampledResponses ParseCsv(std::string_view text, const std::string& name,
                          std::optional<double> sampleInterval)
{
    LineWalker lines(text);
    return ParseTable(lines, name, sampleInterval);
}

SampledResponses ReadCsv(const std::string& path, std::optional<double> sampleInterval)
{
    FileLines lines(path);
    return ParseTable(lines, path, sampleInterval);
}

}  // namespace quell
