// Transfer functions over frequency, sampled as a file gives them.
#ifndef QUELL_CHANNEL_FREQUENCY_RESPONSE_H
#define QUELL_CHANNEL_FREQUENCY_RESPONSE_H

#include <complex>
#include <optional>
#include <vector>

namespace quell {

struct FrequencyResponse {
    std::vector<double> frequency;           // Hz, strictly ascending, at least two
    std::vector<std::complex<double>> gain;  // V/V
};

// Loss in dB (positive for a gain below one), straight in dB between the points; empty outside the
// band. Infinite where the gain is zero.
std::optional<double> LossAt(const FrequencyResponse& response, double frequency);

// The group delay in seconds, averaged over the band with the power as weight: minus the slope of
// the phase. It is known modulo 1 / step of the frequencies only; the answer is not negative
// beyond a tenth of that.
double GroupDelay(const FrequencyResponse& response);

// How far the phase of the lowest point lies off the straight line from DC, where a real system
// has none, to the second point; delay taken out, in rad.
double LowestPhaseError(const FrequencyResponse& response);

// The response at any frequency from 0 up. The delay is taken out first, so that what is left
// changes slowly, and put back afterwards.
//  - Between points: natural cubic splines of the real and the imaginary part.
//  - Down to DC: the gain there is real. A straight line over sqrt(f), as the skin effect has it,
//    through the magnitudes of the lowest octave gives it, held to one where the file is passive;
//    their phases give its sign.
//  - Above the band: the logarithm of the magnitude and the phase go on along the straight lines
//    fitted to the last quarter of the band; the magnitude never rises.
class ResponseCurve {
public:
    explicit ResponseCurve(const FrequencyResponse& response);

    double Delay() const { return m_Delay; }  // s, as GroupDelay gives it
    double DcGain() const { return m_Gain[0].real(); }
    std::complex<double> At(double frequency) const;

private:
    void FitSplines();
    void FitContinuation();

    double m_Delay;
    std::vector<double> m_Frequency;             // starts at 0
    std::vector<std::complex<double>> m_Gain;    // delay taken out
    std::vector<std::complex<double>> m_Second;  // second derivatives at the points
    double m_LogSlope = 0;                       // of ln |gain|, per Hz, not positive
    double m_PhaseSlope = 0;                     // rad per Hz
};

}  // namespace quell

#endif
