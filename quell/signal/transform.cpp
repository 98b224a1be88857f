// From a transfer function to an impulse response, and back.
#include "quell/signal/transform.h"

#include <algorithm>
#include <kissfft/kissfft.hh>

namespace quell {

std::vector<double> ImpulseResponse(const std::function<std::complex<double>(double)>& gain,
                                    size_t samples, double interval)
{
    std::vector<std::complex<double>> spectrum(samples);
    const double length = static_cast<double>(samples) * interval;
    for (size_t k = 0; k <= samples / 2; ++k) {
        spectrum[k] = gain(static_cast<double>(k) / length);
        if (k > 0) spectrum[samples - k] = std::conj(spectrum[k]);
    }
    // A real response has real values at frequency zero and at half the sampling rate.
    spectrum[samples / 2] = spectrum[samples / 2].real();
    spectrum[0] = spectrum[0].real();

    std::vector<std::complex<double>> time(samples);
    kissfft<double>(samples, true).transform(spectrum.data(), time.data());
    std::vector<double> impulse(samples);
    for (size_t n = 0; n < samples; ++n)
        impulse[n] = time[n].real() / length;
    return impulse;
}

std::vector<std::complex<double>> TransferFunction(std::span<const double> impulse, size_t samples,
                                                   double interval)
{
    std::vector<std::complex<double>> time(samples);
    for (size_t n = 0; n < impulse.size(); ++n)
        time[n] = impulse[n] * interval;
    std::vector<std::complex<double>> spectrum(samples);
    kissfft<double>(samples, false).transform(time.data(), spectrum.data());
    spectrum.resize(samples / 2 + 1);
    return spectrum;
}

}  // namespace quell
