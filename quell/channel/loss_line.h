// The built-in channel: a matched line with skin-effect loss.
#ifndef QUELL_CHANNEL_LOSS_LINE_H
#define QUELL_CHANNEL_LOSS_LINE_H

#include <complex>
#include <optional>
#include <string_view>

namespace quell {

// H(f) = exp(-k (1 + j) sqrt(f)) exp(-j 2 pi f 1 ns), k = (loss / (20 / ln 10)) / sqrt(frequency):
// loss and extra delay of a conductor in which the skin effect rules (Ramo, Whinnery, Van Duzer,
// "Fields and Waves in Communication Electronics"), behind a nanosecond of pure delay.
struct LossLine {
    double loss = 0;       // dB
    double frequency = 0;  // Hz, where the loss is that

    static constexpr double Delay = 1e-9;  // s

    // Length of the record: 4096 samples, above 16 samples a bit as many as 256 bits take. Even,
    // and without prime factors above 5.
    static size_t Samples(double samplesPerBit);

    std::complex<double> Gain(double f) const;
    double LossAt(double f) const;  // dB
};

// "8dB@2.5GHz". Empty when it is not of this form, nor when a frequency below 1 MHz has no unit:
// 2.5 is hardly meant in Hz.
std::optional<LossLine> ParseLossLine(std::string_view text);

}  // namespace quell

#endif
