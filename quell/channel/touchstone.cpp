// Touchstone files, version 1. A file is a stream of numbers: wrapping of lines carries no meaning
// but for the noise data of a 2-port, whose lines hold five numbers.
#include "quell/channel/touchstone.h"

#include <cmath>
#include <numbers>

#include "quell/base/errors.h"
#include "quell/base/lines.h"
#include "quell/base/numbers.h"

namespace quell {

namespace {

enum class Format { MagnitudeAngle, DecibelAngle, RealImaginary };

struct UnitRow {
    std::string_view name;
    double hertz;
};

constexpr UnitRow Units[] = {{"hz", 1}, {"khz", 1e3}, {"mhz", 1e6}, {"ghz", 1e9}};

struct FormatRow {
    std::string_view name;
    Format format;
};

constexpr FormatRow Formats[] = {
    {"ma", Format::MagnitudeAngle}, {"db", Format::DecibelAngle}, {"ri", Format::RealImaginary}};

constexpr size_t NoiseColumns = 5;

// What stands in the option line; these are its defaults.
struct Options {
    double hertz = 1e9;
    Format format = Format::MagnitudeAngle;
    double reference = 50;
};

std::complex<double> ToComplex(Format format, double a, double b)
{
    if (format == Format::RealImaginary) return {a, b};
    const double magnitude = format == Format::DecibelAngle ? std::pow(10.0, a / 20) : a;
    const double angle = b * (std::numbers::pi / 180);
    return {magnitude * std::cos(angle), magnitude * std::sin(angle)};
}

size_t CountTokens(std::string_view line, size_t enough)
{
    size_t count = 0;
    while (count < enough && !NextToken(line).empty())
        ++count;
    return count;
}

class Parser {
public:
    Parser(const std::string& name, int ports) : m_Name(name)
    {
        m_Result.ports = ports;
        m_PointSize = 1 + 2 * static_cast<size_t>(ports) * static_cast<size_t>(ports);
        m_Point.reserve(m_PointSize);
    }

    Touchstone Parse(std::string_view text)
    {
        LineWalker lines(text);
        std::string_view line;
        while (lines.Next(line)) {
            m_Line = lines.Number();
            line = line.substr(0, line.find('!'));
            std::string_view rest = line;
            const std::string_view first = NextToken(rest);
            if (first.empty()) continue;
            if (first.front() == '#') {
                ReadOptions(line.substr(line.find('#') + 1));
            } else if (first.front() == '[') {
                Fail("keyword " + Quoted(first) + ": only Touchstone version 1 is read");
            } else {
                ReadData(line);
            }
        }
        if (!m_Point.empty()) {
            m_Line = m_PointLine;
            Fail("this point has " + std::to_string(m_Point.size()) + " numbers; a " +
                 std::to_string(m_Result.ports) + "-port has " + std::to_string(m_PointSize));
        }
        if (m_Result.frequency.size() < 2)
            throw InputError(m_Name, 0, "fewer than two frequencies");
        m_Result.reference = m_Options.reference;
        return std::move(m_Result);
    }

private:
    [[noreturn]] void Fail(const std::string& what) const
    {
        throw InputError(m_Name, m_Line, what);
    }

    // Only the first option line counts, and it stands before the data.
    void ReadOptions(std::string_view line)
    {
        if (m_HasOptions) return;
        if (!m_Result.frequency.empty() || !m_Point.empty()) Fail("option line after the data");
        m_HasOptions = true;
        for (std::string_view token = NextToken(line); !token.empty(); token = NextToken(line)) {
            if (!ReadOption(Lower(token), line)) Fail("unknown option " + Quoted(token));
        }
    }

    bool ReadOption(const std::string& word, std::string_view& rest)
    {
        for (const UnitRow& row : Units) {
            if (word != row.name) continue;
            m_Options.hertz = row.hertz;
            return true;
        }
        for (const FormatRow& row : Formats) {
            if (word != row.name) continue;
            m_Options.format = row.format;
            return true;
        }
        if (word == "s") return true;
        if (word == "y" || word == "z" || word == "g" || word == "h")
            Fail("the file holds " + std::string(1, static_cast<char>(word[0] - 'a' + 'A')) +
                 "-parameters; only S-parameters are read");
        if (word != "r") return false;
        const std::string_view token = NextToken(rest);
        const std::optional<double> value = ParseNumber(token);
        if (!value || *value <= 0)
            Fail("reference resistance " + Quoted(token) + " is not positive");
        m_Options.reference = *value;
        return true;
    }

    void ReadData(std::string_view line)
    {
        if (m_InNoise) {
            CheckNoise(line);
            return;
        }
        for (std::string_view token = NextToken(line); !token.empty(); token = NextToken(line)) {
            const std::optional<double> value = ParseNumber(token);
            if (!value) Fail(Quoted(token) + " is not a number");
            if (m_Point.empty()) {
                m_PointLine = m_Line;
                if (StartsNoise(*value, line)) {
                    m_InNoise = true;
                    return;
                }
                CheckFrequency(*value);
            }
            m_Point.push_back(*value);
            if (m_Point.size() == m_PointSize) TakePoint();
        }
    }

    // Noise data begin where the frequency of a 2-port falls back, with five numbers on the line.
    bool StartsNoise(double frequency, std::string_view rest) const
    {
        return m_Result.ports == 2 && !m_Result.frequency.empty() &&
               frequency * m_Options.hertz <= m_Result.frequency.back() &&
               CountTokens(rest, NoiseColumns) == NoiseColumns - 1;
    }

    void CheckNoise(std::string_view line) const
    {
        size_t count = 0;
        for (std::string_view token = NextToken(line); !token.empty(); token = NextToken(line)) {
            if (!ParseNumber(token)) Fail(Quoted(token) + " is not a number");
            ++count;
        }
        if (count != NoiseColumns) Fail("noise data have five numbers on a line");
    }

    void CheckFrequency(double value) const
    {
        const double hertz = value * m_Options.hertz;
        if (value < 0 || !std::isfinite(hertz)) Fail("bad frequency " + ShortText(value));
        if (!m_Result.frequency.empty() && hertz <= m_Result.frequency.back())
            Fail("frequency " + UnitText(hertz, "Hz") + " after " +
                 UnitText(m_Result.frequency.back(), "Hz") +
                 ": not ascending, or a point before it has a number too few or too many");
    }

    void TakePoint()
    {
        const size_t n = static_cast<size_t>(m_Result.ports);
        m_Result.frequency.push_back(m_Point[0] * m_Options.hertz);
        const size_t start = m_Result.parameters.size();
        m_Result.parameters.resize(start + n * n);
        for (size_t k = 0; k < n * n; ++k) {
            const std::complex<double> value =
                ToComplex(m_Options.format, m_Point[1 + 2 * k], m_Point[2 + 2 * k]);
            if (!std::isfinite(value.real()) || !std::isfinite(value.imag()))
                Fail("a parameter is too large");
            // A 2-port is written column by column, S11 S21 S12 S22; all others row by row.
            const size_t place = n == 2 ? (k % 2) * 2 + k / 2 : k;
            m_Result.parameters[start + place] = value;
        }
        m_Point.clear();
    }

    const std::string& m_Name;
    Touchstone m_Result;
    Options m_Options;
    bool m_HasOptions = false;
    bool m_InNoise = false;
    size_t m_Line = 0;
    size_t m_PointLine = 0;
    size_t m_PointSize = 0;
    std::vector<double> m_Point;  // numbers of the point being read, frequency first
};

}  // namespace

int TouchstonePorts(std::string_view fileName)
{
    const size_t dot = fileName.rfind('.');
    if (dot == std::string_view::npos) return 0;
    const std::string extension = Lower(fileName.substr(dot + 1));
    if (extension.size() < 3 || extension.size() > 5) return 0;
    if (extension.front() != 's' || extension.back() != 'p') return 0;
    int ports = 0;
    for (const char c : extension.substr(1, extension.size() - 2)) {
        if (c < '0' || c > '9') return 0;
        ports = 10 * ports + (c - '0');
    }
    return ports;
}

Touchstone ParseTouchstone(std::string_view text, const std::string& name, int ports)
{
    return Parser(name, ports).Parse(text);
}

}  // namespace quell
