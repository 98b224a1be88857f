// Numbers as text, always in the C locale.
#ifndef QUELL_BASE_NUMBERS_H
#define QUELL_BASE_NUMBERS_H

#include <optional>
#include <string>
#include <string_view>

namespace quell {

// The whole text as a finite number; a leading '+' is allowed, too small a number is 0.
std::optional<double> ParseNumber(std::string_view text);

// A number and a unit with an optional scale letter between them: "2.5GHz", "2mV", "5e9". The unit
// may be left out; nothing else may follow. Scale letters: f p n u m k M G T.
std::optional<double> ParseQuantity(std::string_view text, std::string_view unit);

// The shortest text that reads back as the same double; "nan", "inf" or "-inf" when not finite.
std::string ExactText(double value);

// A number with so many significant digits, as %g prints it.
std::string ShortText(double value, int digits = 6);

// Engineering notation with a unit: "12.5 ps", "2.5 GHz".
std::string UnitText(double value, std::string_view unit, int digits = 4);

}  // namespace quell

#endif
