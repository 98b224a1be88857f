// The time grid of a run, and sampled responses brought onto it.
#ifndef QUELL_SIGNAL_TIME_GRID_H
#define QUELL_SIGNAL_TIME_GRID_H

#include <complex>
#include <cstddef>
#include <span>
#include <vector>

namespace quell {

struct TimeGrid {
    double bitRate = 5e9;       // bit/s
    double samplesPerBit = 16;  // at least 1, need not be whole

    double BitTime() const { return 1 / bitRate; }                     // s
    double Interval() const { return 1 / (bitRate * samplesPerBit); }  // s
    double Nyquist() const { return bitRate / 2; }                     // Hz

    // Interval(), or the double next below whose quotient of the bit time, truncated, is the
    // samples per bit: models count their samples so.
    double ModelInterval() const;  // s
};

enum class ResponseKind { Impulse, Step, Pulse };

// The impulse response in V/s of a sampled one. A step response is differentiated, its first value
// taken for its offset; of a pulse
// response (the answer to one bit of 1 V) first the step response is rebuilt, s(t) = p(t) +
// s(t - one unit interval). An impulse response is taken as it is, in V/s.
std::vector<double> ToImpulse(std::vector<double> response, ResponseKind kind, double interval,
                              double bitTime);

// The same of samples at any instants (s, none before the one in front of it), at a sample interval
// of one's choice from the first instant on. Straight between the samples; of an impulse response
// the running integral is sampled, which keeps the DC gain.
std::vector<double> ToImpulse(std::span<const double> time, std::span<const double> response,
                              ResponseKind kind, double interval, double bitTime);

// An impulse response in V/s moved to another sample interval: its running integral, straight
// between the samples, is sampled anew and differentiated, which keeps the DC gain.
std::vector<double> Resample(std::span<const double> impulse, double interval, double newInterval);

// The gain at one frequency: the sum of h[n] exp(-j 2 pi f n T) T.
std::complex<double> GainAt(std::span<const double> impulse, double interval, double frequency);

// The sum of the samples times the interval.
double DcGain(std::span<const double> impulse, double interval);

}  // namespace quell

#endif
