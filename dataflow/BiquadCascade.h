// A digital filter of second-order sections in series.
#ifndef DATAFLOW_BIQUADCASCADE_H
#define DATAFLOW_BIQUADCASCADE_H

#include <cstdint>

#include "dataflow/CircularBuffer.h"
#include "dataflow/CircularBufferBus.h"
#include "dataflow/DFModel.h"

namespace TalvernQuell {

// Taps of one section: (N0 + N1 z^-1 + N2 z^-2) / (D0 + D1 z^-1 + D2 z^-2).
enum BiquadTap { N0, N1, N2, D0, D1, D2, TapsPerBiquad };

// One section in direct form II with D0 = 1; s1 and s2 are w[n-1] and w[n-2].
inline double BiquadStep(const double* tap, double& s1, double& s2, double x)
{
    const double w = x - tap[D1] * s1 - tap[D2] * s2;
    const double y = tap[N0] * w + tap[N1] * s1 + tap[N2] * s2;
    s2 = s1;
    s1 = w;
    return y;
}

// Output 0 carries the last section, output 1 the one before it, and so on.
class BiquadCascade : public DFModel {
public:
    BiquadCascade() = default;
    ~BiquadCascade() override;
    BiquadCascade(const BiquadCascade&) = delete;
    BiquadCascade& operator=(const BiquadCascade&) = delete;

    // Normalises the taps in place to D0 = 1 and clears the states. Refuses a number of taps that
    // is no positive multiple of six, a D0 whose integer part is zero or does not fit 32 bits, and
    // more outputs than sections.
    bool Initialize() override;

    bool Run() override
    {
        const std::uint64_t sections = m_NumberOfBiquads;
        if (sections == 0) return true;
        double x = m_Input.Current();
        std::uint64_t output = m_Outputs.m_Count;
        for (std::uint64_t k = 0; k < sections; ++k) {
            x = BiquadStep(m_Coefficients + TapsPerBiquad * k, m_State1[k], m_State2[k], x);
            if (k + m_Outputs.m_Count >= sections) m_Outputs.Get(--output)->Current() = x;
        }
        return true;
    }

    bool Finalize() override;

    double* m_Coefficients = nullptr;  // six taps per section; whoever set it owns it
    std::int32_t m_NumberOfTaps = 0;
    CircularBuffer<double> m_Input;
    CircularBufferBusT<CircularBuffer<double>> m_Outputs;
    double* m_State1 = nullptr;  // owned; w[n-1] of each section
    double* m_State2 = nullptr;  // owned; w[n-2] of each section
    std::uint64_t m_NumberOfBiquads = 0;
};

}  // namespace TalvernQuell

#endif
