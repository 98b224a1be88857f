// Numbers as text, through std::from_chars and std::to_chars, which know no locale.
#include "quell/base/numbers.h"

#include <array>
#include <charconv>
#include <cmath>

namespace quell {

namespace {

struct Prefix {
    char letter;
    int exponent;
};

constexpr Prefix Prefixes[] = {
    {'f', -15}, {'p', -12}, {'n', -9}, {'u', -6}, {'m', -3},
    {'k', 3},   {'M', 6},   {'G', 9},  {'T', 12},
};

// Reads the longest number at the start; text is advanced behind it.
std::optional<double> ReadNumber(std::string_view& text)
{
    std::string_view digits = text;
    if (!digits.empty() && digits.front() == '+') digits.remove_prefix(1);
    // from_chars would take "inf" and "nan" as well; no input of ours means these.
    const size_t first = !digits.empty() && digits.front() == '-' ? 1 : 0;
    if (digits.size() <= first) return std::nullopt;
    const char lead = digits[first];
    if (lead != '.' && (lead < '0' || lead > '9')) return std::nullopt;
    if (first == 1 && text.front() == '+') return std::nullopt;

    double value = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    if (error == std::errc::invalid_argument) return std::nullopt;
    if (error == std::errc::result_out_of_range) {
        // Too small is zero, too large is no number; only a negative exponent or a long row of
        // zeros makes a number too small.
        const std::string_view number(digits.data(), static_cast<size_t>(end - digits.data()));
        const size_t exponent = number.find_first_of("eE");
        const bool small = exponent == std::string_view::npos
                               ? number[first] == '0' || number[first] == '.'
                               : exponent + 1 < number.size() && number[exponent + 1] == '-';
        if (!small) return std::nullopt;
        value = 0;
    }
    text = std::string_view(end, static_cast<size_t>(text.data() + text.size() - end));
    return value;
}

}  // namespace

std::optional<double> ParseNumber(std::string_view text)
{
    const std::optional<double> value = ReadNumber(text);
    return text.empty() ? value : std::nullopt;
}

std::optional<double> ParseQuantity(std::string_view text, std::string_view unit)
{
    const std::optional<double> value = ReadNumber(text);
    if (!value) return std::nullopt;
    while (!text.empty() && text.front() == ' ')
        text.remove_prefix(1);
    if (text.empty() || text == unit) return value;
    for (const Prefix& prefix : Prefixes) {
        if (text.front() != prefix.letter) continue;
        const std::string_view rest = text.substr(1);
        if (!rest.empty() && rest != unit) return std::nullopt;
        // Division by an exact power of ten keeps "12.5p" the nearest double to 12.5e-12.
        const double scale = std::pow(10.0, std::abs(prefix.exponent));
        const double scaled = prefix.exponent < 0 ? *value / scale : *value * scale;
        return std::isfinite(scaled) ? std::optional(scaled) : std::nullopt;
    }
    return std::nullopt;
}

std::string ExactText(double value)
{
    std::array<char, 40> buffer;
    const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value);
    return std::string(buffer.data(), result.ptr);
}

std::string ShortText(double value, int digits)
{
    std::array<char, 80> buffer;
    const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                                      std::chars_format::general, digits);
    return std::string(buffer.data(), result.ptr);
}

std::string UnitText(double value, std::string_view unit, int digits)
{
    const double size = std::abs(value);
    int exponent = 0;
    if (size > 0 && std::isfinite(size)) {
        // Rounding to the digits shown must not turn 999.99 into "1000".
        const double rounded = size * (1 + 0.5 * std::pow(10.0, -digits));
        exponent = 3 * static_cast<int>(std::floor(std::log10(rounded) / 3));
    }
    std::string scale;
    for (const Prefix& prefix : Prefixes)
        if (prefix.exponent == exponent) scale = prefix.letter;
    if (scale.empty()) exponent = 0;
    const std::string number = ShortText(value / std::pow(10.0, exponent), digits);
    return number + " " + scale + std::string(unit);
}

}  // namespace quell
