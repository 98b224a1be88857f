// Touchstone files, version 1: S-parameters of an n-port over frequency.
#ifndef QUELL_CHANNEL_TOUCHSTONE_H
#define QUELL_CHANNEL_TOUCHSTONE_H

#include <complex>
#include <string>
#include <string_view>
#include <vector>

namespace quell {

struct Touchstone {
    int ports = 0;
    double reference = 50;          // ohm
    std::vector<double> frequency;  // Hz, strictly ascending
    // Row-major matrices, one after another.
    std::vector<std::complex<double>> parameters;

    // From port `in` to port `out`, both counted from 1.
    std::complex<double> S(size_t point, int out, int in) const
    {
        const size_t n = static_cast<size_t>(ports);
        return parameters[(point * n + static_cast<size_t>(out - 1)) * n +
                          static_cast<size_t>(in - 1)];
    }
};

// The n of a name that ends in ".s<n>p", any case; 0 for any other name.
int TouchstonePorts(std::string_view fileName);

// Parses the text of a file with so many ports. Throws InputError with name and line. Noise data
// behind a 2-port's parameters are skipped.
Touchstone ParseTouchstone(std::string_view text, const std::string& name, int ports);

}  // namespace quell

#endif
