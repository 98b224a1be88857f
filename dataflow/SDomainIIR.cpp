#include "dataflow/SDomainIIR.h"

#include <algorithm>
#include <cmath>

#include "dataflow/DFErrorHandler.h"

namespace TalvernQuell {

namespace {

const double TwoPi = 6.283185307179586;

// What the bilinear transform needs to know of the cascade.
struct Transform {
    double T;  // sample interval
    double K;  // 2 / T
    double Q;  // 4 / (T * T)
    std::uint64_t order;
    std::uint64_t sections;
};

}  // namespace

static std::uint64_t Order(const Matrix<double>& real, const Matrix<std::complex<double>>& pairs)
{
    return real.m_Count + 2 * pairs.m_Count;
}

static void ScaleToRadians(Matrix<double>& real, Matrix<std::complex<double>>& pairs)
{
    for (double& root : real)
        root *= TwoPi;
    for (std::complex<double>& root : pairs)
        root = {root.real() * TwoPi, root.imag() * TwoPi};
}

static void SetSection(double* tap, double c0, double c1, double c2)
{
    tap[0] = c0;
    tap[1] = c1;
    tap[2] = c2;
}

// Writes one polynomial of every section, numerator or denominator: first the pairs, then the real
// roots two at a time, then an odd one, then the roots at infinity, which go to z = -1. `first` is
// the first coefficient of the first section.
static void MapRoots(double* first, const Matrix<double>& real,
                     const Matrix<std::complex<double>>& pairs, const Transform& t)
{
    const double K = t.K;
    const double Q = t.Q;
    std::uint64_t section = 0;
    const auto isFirstOrder = [&] { return section + 1 == t.sections && t.order % 2 != 0; };
    const auto append = [&](double c0, double c1, double c2) {
        SetSection(first + TapsPerBiquad * section, c0, c1, c2);
        ++section;
    };

    for (const std::complex<double>& root : pairs) {
        const double sigma = root.real();
        const double omega = root.imag();
        const double m = sigma * sigma + omega * omega;
        append(Q - sigma * 4.0 / t.T + m, 2.0 * (m - Q), Q + sigma * 4.0 / t.T + m);
    }
    const double* root = real.begin();
    for (; real.end() - root >= 2; root += 2) {
        const double a = root[0];
        const double b = root[1];
        append((K - b) * (K - a), -(K - b) * (K + a) - (K - a) * (K + b), (K + b) * (K + a));
    }
    if (root != real.end()) {
        const double a = *root;
        if (isFirstOrder())
            append(K - a, -(K + a), 0.0);
        else
            append(K - a, -2.0 * a, -(K + a));
    }
    while (section < t.sections) {
        if (isFirstOrder())
            append(1.0, 1.0, 0.0);
        else
            append(1.0, 2.0, 1.0);
    }
}

// Makes every D0 and N0 one and shares the gain equally among the sections.
static void Normalise(double* taps, std::uint64_t sections, double gain)
{
    double* const end = taps + TapsPerBiquad * sections;
    for (double* tap = taps; tap != end; tap += TapsPerBiquad) {
        for (const int i : {N0, N1, N2, D1, D2})
            tap[i] /= tap[D0];
        tap[D0] = 1.0;
    }
    for (double* tap = taps; tap != end; tap += TapsPerBiquad) {
        gain *= tap[N0];
        tap[N1] /= tap[N0];
        tap[N2] /= tap[N0];
        tap[N0] = 1.0;
    }
    const double share = std::pow(gain, 1.0 / static_cast<double>(sections));
    for (double* tap = taps; tap != end; tap += TapsPerBiquad)
        for (const int i : {N0, N1, N2})
            tap[i] *= share;
}

static void ReplaceTaps(SDomainIIR& filter, std::uint64_t sections)
{
    delete[] filter.m_Coefficients;
    filter.m_Coefficients = nullptr;
    filter.m_NumberOfTaps = static_cast<std::int32_t>(TapsPerBiquad * sections);
    filter.m_Coefficients = new double[TapsPerBiquad * sections];
}

SDomainIIR::SDomainIIR()
    : m_RealPoles{-650148.0708064173},
      m_ComplexConjugatePoles{{-200906.8027392695, 618327.5592971661},
                              {-525980.8381424781, 382147.44782641466}}
{
    m_Outputs.Initialize(1);
}

SDomainIIR::~SDomainIIR()
{
    delete[] m_Coefficients;
}

bool SDomainIIR::Initialize()
{
    if (!(SampleRate > 0)) {
        DFErrorHandler::PostError(this, "SampleRate must be positive.");
        return false;
    }
    if (m_FrequencyInHz == 1) {
        ScaleToRadians(m_RealPoles, m_ComplexConjugatePoles);
        ScaleToRadians(m_RealZeros, m_ComplexConjugateZeros);
    }
    Transform t;
    t.order = std::max(Order(m_RealPoles, m_ComplexConjugatePoles),
                       Order(m_RealZeros, m_ComplexConjugateZeros));
    if (t.order == 0) {
        ReplaceTaps(*this, 1);
        SetSection(m_Coefficients + N0, m_Gain, 0.0, 0.0);
        SetSection(m_Coefficients + D0, 1.0, 0.0, 0.0);
        return BiquadCascade::Initialize();
    }
    t.sections = (t.order + 1) / 2;
    t.T = 1.0 / SampleRate;
    t.K = 2.0 / t.T;
    t.Q = 4.0 / (t.T * t.T);
    ReplaceTaps(*this, t.sections);
    MapRoots(m_Coefficients + D0, m_RealPoles, m_ComplexConjugatePoles, t);
    MapRoots(m_Coefficients + N0, m_RealZeros, m_ComplexConjugateZeros, t);
    Normalise(m_Coefficients, t.sections, m_Gain);
    return BiquadCascade::Initialize();
}

bool SDomainIIR::Finalize()
{
    delete[] m_Coefficients;
    m_Coefficients = nullptr;
    return BiquadCascade::Finalize();
}

}  // namespace TalvernQuell
