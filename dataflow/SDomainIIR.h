// An analogue filter, given by gain, poles and zeros, as a digital cascade of biquads.
#ifndef DATAFLOW_SDOMAINIIR_H
#define DATAFLOW_SDOMAINIIR_H

#include <complex>
#include <cstdint>

#include "dataflow/BiquadCascade.h"
#include "dataflow/Matrix.h"

namespace TalvernQuell {

// H(s) = m_Gain * prod(s - zero) / prod(s - pole), mapped to the z domain by the bilinear transform
// s = K (1 - z^-1) / (1 + z^-1), K = 2 * SampleRate, without pre-warping of frequencies and without
// normalisation of the gain. A complex element stands for itself and its conjugate. A zero at
// s = K exactly gives infinite or NaN taps; nothing checks for it.
class SDomainIIR : public BiquadCascade {
public:
    SDomainIIR();
    ~SDomainIIR() override;

    // Computes the taps and hands over to the cascade. With m_FrequencyInHz = 1 the pole and zero
    // lists are scaled in place, so a further call would scale them again. Refuses a SampleRate
    // that is not above zero.
    bool Initialize() override;
    bool Finalize() override;

    // The defaults are a fifth-order Butterworth low-pass with its corner at 650148.07 rad/s.
    double SampleRate = 1000000.0;           // samples per second
    double m_Gain = 1.1616128054708951e+29;  // (rad/s)^(poles - zeros)
    Matrix<double> m_RealPoles;              // rad/s, or Hz
    Matrix<std::complex<double>> m_ComplexConjugatePoles;
    Matrix<double> m_RealZeros;
    Matrix<std::complex<double>> m_ComplexConjugateZeros;
    std::int32_t m_FrequencyInHz = 0;  // 1: poles and zeros are in Hz; else in rad/s
};

}  // namespace TalvernQuell

#endif
