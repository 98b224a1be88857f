#include "model/Quell_PCIe_Gen2_Tx.h"

#include <algorithm>
#include <bit>
#include <complex>
#include <cstring>

#include "dataflow/Numeric.h"

using TalvernQuell::Add;
using TalvernQuell::BiquadStep;
using TalvernQuell::CircularBuffer;
using TalvernQuell::DelayStep;
using TalvernQuell::Gain;
using TalvernQuell::Matrix;

namespace {

// The whole chain by value: the operations of the blocks over copies of their taps and states.
struct Chain {
    double mainTap;
    double postTap;
    double offset;
    double outputGain;
    double taps[TalvernQuell::TapsPerBiquad];
    double state1;
    double state2;
    DelayStep<double> delay;

    double Step(double x)
    {
        const double delayed = delay.Apply(x);
        double u = Add<double>::Empty;
        u = Add<double>::Accumulate(u, Gain<double>::Apply(mainTap, x));
        u = Add<double>::Accumulate(u, offset);
        u = Add<double>::Accumulate(u, Gain<double>::Apply(postTap, delayed));
        return Gain<double>::Apply(outputGain, BiquadStep(taps, state1, state2, u));
    }
};

}  // namespace

static bool SameBits(double a, double b)
{
    return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}

static bool IsConstant(const double* x, std::int64_t count)
{
    return std::memcmp(x, x + 1, static_cast<std::size_t>(count - 1) * sizeof(double)) == 0;
}

static std::int64_t ConstantLength(const double* x, std::int64_t count)
{
    return std::find_if(x, x + count, [=](double y) { return !SameBits(y, x[0]); }) - x;
}

// Filters count samples of one value that also fills the delay line. Rounding brings the filter's
// state to a stop or into a short cycle; from the first state that comes back (found by Brent's
// method) the output repeats and is copied.
static void RunConstant(Chain& chain, double* x, std::int64_t count)
{
    const double value = x[0];
    Chain seen = chain;
    std::int64_t seenAt = 0;
    std::int64_t patience = 64;
    for (std::int64_t done = 0; done < count;) {
        x[done++] = chain.Step(value);
        if (SameBits(chain.state1, seen.state1) && SameBits(chain.state2, seen.state2)) {
            const std::int64_t rest = (count - done) % (done - seenAt);
            chain.delay.Skip(static_cast<std::uint64_t>(count - done - rest));
            for (std::int64_t i = 0; i < rest; ++i)
                chain.Step(value);
            // Whole periods each time, so the next copy starts a period too.
            while (done < count)
                done = std::copy_n(x + seenAt, std::min(done - seenAt, count - done), x + done) - x;
        } else if (done - seenAt == patience) {
            seen = chain;
            seenAt = done;
            patience *= 2;
        }
    }
}

// Attaches a new wire to its two ends.
static void Connect(double*& wire, CircularBuffer<double>& writer, CircularBuffer<double>& reader)
{
    wire = new double[1];
    writer.Attach(wire, 1);
    reader.Attach(wire, 1);
}

template <typename T>
static void SetList(Matrix<T>& list, const std::uint64_t (&dimensions)[2],
                    const T* values = nullptr, std::uint64_t count = 0)
{
    list.Reshape(dimensions[0], dimensions[1]);
    if (count != 0) list.Fill(values, count);
}

Quell_PCIe_Gen2_Tx::~Quell_PCIe_Gen2_Tx()
{
    DeleteBuffers();
}

bool Quell_PCIe_Gen2_Tx::Setup()
{
    // The poles stand here once more: m_Pole1 and m_Pole2 show them to a reader of the equations.
    static const std::uint64_t S1_m_RealPoles_Dimensions[2] = {1, 2};
    static const double S1_m_RealPoles[2] = {-7.0e9, -1.0e10};
    static const std::uint64_t S1_m_ComplexConjugatePoles_Dimensions[2] = {0, 0};
    static const std::uint64_t S1_m_RealZeros_Dimensions[2] = {0, 0};
    static const std::uint64_t S1_m_ComplexConjugateZeros_Dimensions[2] = {0, 0};

    RunEquations();

    m_Filter.SampleRate = m_SamplesPerBit / m_BitTime;
    m_Filter.m_Gain = m_FilterGain;
    // Filled anew at each use, because the filter scales its lists in place.
    SetList(m_Filter.m_RealPoles, S1_m_RealPoles_Dimensions, S1_m_RealPoles, 2);
    SetList(m_Filter.m_ComplexConjugatePoles, S1_m_ComplexConjugatePoles_Dimensions);
    SetList(m_Filter.m_RealZeros, S1_m_RealZeros_Dimensions);
    SetList(m_Filter.m_ComplexConjugateZeros, S1_m_ComplexConjugateZeros_Dimensions);
    m_Filter.m_FrequencyInHz = 1;

    m_PostTapGain.m_Gain = m_PostTap;
    m_MainTapGain.m_Gain = m_MainTap;
    m_Sum.m_Inputs.Initialize(3);
    m_Offset.InitialDelay = 0;
    m_Offset.m_Value = -m_PostTap;
    m_UIDelay.m_DelayControl.m_Active = false;
    m_UIDelay.MaxDelay = TalvernQuell::TruncateToInt32(m_SamplesPerBit);
    m_OutputGain.m_Gain = 1.0;
    m_Split.m_Outputs.Initialize(2);

    for (CircularBuffer<double>* port : {&m_Input, &m_Output}) {
        port->m_Step = 1;
        if (port->m_Size == 0) port->m_Size = 1;
    }
    return true;
}

bool Quell_PCIe_Gen2_Tx::Initialize()
{
    DeleteBuffers();
    // clang-format off
    //      wire      writer                      reader
    Connect(m_Wire1,  m_InputTap,                 m_Split.m_Input);
    Connect(m_Wire2,  m_OutputGain.m_Output,      m_OutputTap);
    Connect(m_Wire3,  *m_Filter.m_Outputs.Get(0), m_OutputGain.m_Input);
    Connect(m_Wire4,  m_PostTapGain.m_Output,     *m_Sum.m_Inputs.Get(2));
    Connect(m_Wire5,  m_MainTapGain.m_Output,     *m_Sum.m_Inputs.Get(0));
    Connect(m_Wire6,  m_Sum.m_Output,             m_Filter.m_Input);
    Connect(m_Wire7,  m_Offset.m_Output,          *m_Sum.m_Inputs.Get(1));
    Connect(m_Wire8,  m_UIDelay.m_Output,         m_PostTapGain.m_Input);
    Connect(m_Wire9,  *m_Split.m_Outputs.Get(0),  m_MainTapGain.m_Input);
    Connect(m_Wire10, *m_Split.m_Outputs.Get(1),  m_UIDelay.m_Input);
    // clang-format on

    // A filter that refuses its rate does not keep the others from reporting.
    const bool filterReady = m_Filter.Initialize();
    const bool offsetReady = m_Offset.Initialize();
    const bool delayReady = m_UIDelay.Initialize();
    return filterReady && offsetReady && delayReady;
}

bool Quell_PCIe_Gen2_Tx::Run()
{
    m_InputTap.Current() = m_Input.Current();
    m_Split.Run();
    m_UIDelay.Run();
    m_MainTapGain.Run();
    m_PostTapGain.Run();
    m_Offset.Run();
    m_Sum.Run();
    const bool filtered = m_Filter.Run();
    m_OutputGain.Run();
    m_Output.Current() = m_OutputTap.Current();
    return filtered;
}

bool Quell_PCIe_Gen2_Tx::Finalize()
{
    const bool finalized = m_Filter.Finalize();
    DeleteBuffers();
    return finalized;
}

bool Quell_PCIe_Gen2_Tx::RunEquations()
{
    m_Pole1 = -7.0e9;
    m_Pole2 = -1.0e10;
    m_FilterGain = 2.76348923230502e21;
    m_InvDeEmphasis = 1.0 / m_DeEmphasis;
    m_MainTap = (m_InvDeEmphasis + 1.0) * 0.5;
    m_PostTap = m_MainTap - 1.0;
    return true;
}

void Quell_PCIe_Gen2_Tx::DeleteBuffers()
{
    for (double** wire : {&m_Wire1, &m_Wire2, &m_Wire3, &m_Wire4, &m_Wire5, &m_Wire6, &m_Wire7,
                          &m_Wire8, &m_Wire9, &m_Wire10}) {
        delete[] * wire;
        *wire = nullptr;
    }
}

// The latency of the filter's recurrence bounds the loop; everything else fits beside it as long as
// it stays in registers. A constant tail is found rather than computed: a filter that has run down
// sticks at a subnormal number, where each step costs many times a normal one.
bool Quell_PCIe_Gen2_Tx::RunColumn(double* column, std::int64_t count)
{
    const std::int64_t BlockSize = 64;

    if (count <= 0) return true;
    // The last sample takes the wires, so that ports and wires end as they do sample by sample.
    const std::int64_t fast = count - 1;

    Chain chain = {
        m_MainTapGain.m_Gain, m_PostTapGain.m_Gain, m_Offset.m_Value, m_OutputGain.m_Gain, {},
        m_Filter.m_State1[0], m_Filter.m_State2[0], m_UIDelay.Line()};
    std::copy_n(m_Filter.m_Coefficients, TalvernQuell::TapsPerBiquad, chain.taps);

    std::uint64_t constantRun = 0;  // samples up to start, in whole blocks, that are constantValue
    double constantValue = 0.0;
    for (std::int64_t start = 0; start < fast;) {
        double* const x = column + start;
        std::int64_t n = std::min(BlockSize, fast - start);
        const bool constant = IsConstant(x, n);
        if (!constant || !SameBits(x[0], constantValue)) constantRun = 0;
        constantValue = x[0];
        if (constant && constantRun >= chain.delay.capacity) {
            n = ConstantLength(x, fast - start);
            RunConstant(chain, x, n);
        } else {
            for (std::int64_t i = 0; i < n; ++i)
                x[i] = chain.Step(x[i]);
        }
        if (constant) constantRun += static_cast<std::uint64_t>(n);
        start += n;
    }

    m_Filter.m_State1[0] = chain.state1;
    m_Filter.m_State2[0] = chain.state2;
    m_UIDelay.m_DelayLine.m_Position = chain.delay.position;
    m_Offset.m_FiringCount += static_cast<std::uint64_t>(fast);

    m_Input.Current() = column[fast];
    const bool result = Run();
    if (result) column[fast] = m_Output.Current();
    return result;
}
