// From a transfer function to an impulse response on a time grid.
#ifndef QUELL_SIGNAL_TRANSFORM_H
#define QUELL_SIGNAL_TRANSFORM_H

#include <complex>
#include <functional>
#include <span>
#include <vector>

namespace quell {

// The inverse discrete Fourier transform of a transfer function sampled at k / (samples x
// interval), k = 0 ... samples / 2, divided by the interval: an impulse response in V/s whose sum
// times the interval is the gain at frequency zero. Responses longer than the record wrap around.
// samples is even; interval in seconds.
std::vector<double> ImpulseResponse(const std::function<std::complex<double>(double)>& gain,
                                    size_t samples, double interval);

// The transfer function back from an impulse response in V/s, at k / (samples x interval); samples
// is even and at least the length of the response.
std::vector<std::complex<double>> TransferFunction(std::span<const double> impulse, size_t samples,
                                                   double interval);

}  // namespace quell

#endif
