// The transmitter of a PCI Express Gen2 link: two-tap de-emphasis and a two-pole low-pass.
#ifndef MODEL_QUELL_PCIE_GEN2_TX_H
#define MODEL_QUELL_PCIE_GEN2_TX_H

#include <cstdint>

#include "dataflow/Add.h"
#include "dataflow/CircularBuffer.h"
#include "dataflow/ConstUnTimed.h"
#include "dataflow/DFModel.h"
#include "dataflow/Fork.h"
#include "dataflow/Gain.h"
#include "dataflow/SDomainIIR.h"
#include "dataflow/VarDelay.h"

// With the voltage ratio r = m_DeEmphasis, a = (1 / r + 1) / 2, b = a - 1 and D samples per bit:
//
//     u[n] = a x[n] - b + b x[n - D]
//     y[n] = u[n] through K / ((s + 2 pi 7 GHz) (s + 2 pi 10 GHz)), bilinear transform
//
// A transition bit leaves at full swing (a - b = 1) and a repeated one at 1 / r (a + b). The
// constant -b is added to every sample, so the input is to be in volts per second, where it is
// nothing. The filter's rate is the rounded m_SamplesPerBit over m_BitTime, whatever the sample
// interval of the caller.
//
// Setup, Initialize, Run per sample and Finalize may be repeated on the same object. The line of
// the delay keeps its samples in between: a use starts with the end of the use before it.
class Quell_PCIe_Gen2_Tx : public TalvernQuell::DFModel {
public:
    Quell_PCIe_Gen2_Tx() = default;
    ~Quell_PCIe_Gen2_Tx() override;
    Quell_PCIe_Gen2_Tx(const Quell_PCIe_Gen2_Tx&) = delete;
    Quell_PCIe_Gen2_Tx& operator=(const Quell_PCIe_Gen2_Tx&) = delete;

    bool Setup() override;
    // False when the filter refuses its rate or the delay is negative.
    bool Initialize() override;
    bool Run() override;
    bool Finalize() override;

    // Evaluates the equation variables. Always true.
    bool RunEquations();
    // Frees the wires.
    void DeleteBuffers();

    // Filters count samples in place: the same result and the same state, bit for bit, as count
    // samples taken one by one through m_Input, Run and m_Output. After Setup and Initialize, with
    // storage at m_Input and m_Output.
    bool RunColumn(double* column, std::int64_t count);

    // The storage of the two ports is the caller's.
    TalvernQuell::CircularBuffer<double> m_Input;
    TalvernQuell::CircularBuffer<double> m_Output;

    double m_DeEmphasis = 1.496618675573222;  // voltage ratio
    double m_SamplesPerBit = 16.0;            // an integer
    double m_BitTime = 2e-10;                 // seconds

    TalvernQuell::SDomainIIR m_Filter;
    TalvernQuell::Gain<double> m_PostTapGain;
    TalvernQuell::Gain<double> m_MainTapGain;
    TalvernQuell::Add<double> m_Sum;
    TalvernQuell::ConstUnTimed<double> m_Offset;
    TalvernQuell::VarDelay<TalvernQuell::CircularBuffer<double>> m_UIDelay;
    TalvernQuell::Gain<double> m_OutputGain;
    TalvernQuell::Fork<TalvernQuell::CircularBuffer<double>> m_Split;

    // Each wire is one owned double, or null.
    double* m_Wire1 = nullptr;
    TalvernQuell::CircularBuffer<double> m_InputTap;
    double* m_Wire2 = nullptr;
    TalvernQuell::CircularBuffer<double> m_OutputTap;
    double* m_Wire3 = nullptr;
    double* m_Wire4 = nullptr;
    double* m_Wire5 = nullptr;
    double* m_Wire6 = nullptr;
    double* m_Wire7 = nullptr;
    double* m_Wire8 = nullptr;
    double* m_Wire9 = nullptr;
    double* m_Wire10 = nullptr;

    // Equation variables.
    double m_Pole1 = 0.0;       // Hz
    double m_Pole2 = 0.0;       // Hz
    double m_FilterGain = 0.0;  // (rad/s)^2
    double m_InvDeEmphasis = 0.0;
    double m_MainTap = 0.0;
    double m_PostTap = 0.0;
};

#endif
