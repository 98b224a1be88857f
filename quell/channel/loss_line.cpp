// The built-in channel: a matched line with skin-effect loss.
#include "quell/channel/loss_line.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "quell/base/numbers.h"

namespace quell {

namespace {

constexpr double LeastWithoutUnit = 1e6;  // Hz

}  // namespace

size_t LossLine::Samples(double samplesPerBit)
{
    constexpr size_t Least = 4096;
    constexpr double Bits = 256;
    for (size_t samples = std::max(Least, static_cast<size_t>(std::ceil(Bits * samplesPerBit)));;
         ++samples) {
        size_t rest = samples;
        for (const size_t factor : {2U, 3U, 5U})
            while (rest % factor == 0)
                rest /= factor;
        if (rest == 1 && samples % 2 == 0) return samples;
    }
}

std::complex<double> LossLine::Gain(double f) const
{
    const double k = loss / (20 / std::numbers::ln10) / std::sqrt(frequency);
    const double skin = k * std::sqrt(f);
    const double angle = -skin - 2 * std::numbers::pi * f * Delay;
    return std::exp(-skin) * std::complex<double>(std::cos(angle), std::sin(angle));
}

double LossLine::LossAt(double f) const
{
    return loss * std::sqrt(f / frequency);
}

std::optional<LossLine> ParseLossLine(std::string_view text)
{
    const size_t at = text.find('@');
    if (at == std::string_view::npos) return std::nullopt;
    const std::optional<double> loss = ParseQuantity(text.substr(0, at), "dB");
    const std::optional<double> frequency = ParseQuantity(text.substr(at + 1), "Hz");
    if (!loss || !frequency || *loss < 0 || *loss > 1000 || *frequency <= 0) return std::nullopt;
    if (ParseNumber(text.substr(at + 1)) && *frequency < LeastWithoutUnit) return std::nullopt;
    return LossLine{*loss, *frequency};
}

}  // namespace quell
