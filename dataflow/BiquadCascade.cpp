#include "dataflow/BiquadCascade.h"

#include <cstdlib>
#include <limits>
#include <locale>
#include <sstream>

#include "dataflow/DFErrorHandler.h"
#include "dataflow/Numeric.h"

namespace TalvernQuell {

// The test looks at the integer part alone: magnitudes below 1 count as zero, and so does what
// truncates to the smallest integer, whose magnitude is no 32-bit number.
static bool IsZeroD0(double d0)
{
    const std::int32_t whole = TruncateToInt32(d0);
    return whole == 0 || whole == std::numeric_limits<std::int32_t>::min();
}

// Posts the pieces as one line, with numbers as in the C locale whatever the host has set.
template <typename... Pieces>
static bool Refuse(BiquadCascade* block, const Pieces&... pieces)
{
    std::ostringstream text;
    text.imbue(std::locale::classic());
    (text << ... << pieces);
    DFErrorHandler::PostError(block, text.str().c_str());
    return false;
}

BiquadCascade::~BiquadCascade()
{
    delete[] m_State1;
    delete[] m_State2;
}

bool BiquadCascade::Initialize()
{
    if (m_NumberOfTaps < 1 || m_NumberOfTaps % TapsPerBiquad != 0)
        return Refuse(this, "The number of parameter taps must not be zero ",
                      "and must be a multiple of ", int{TapsPerBiquad}, " taps. ",
                      "There are currently ", m_NumberOfTaps, " taps.");
    m_NumberOfBiquads = static_cast<std::uint64_t>(m_NumberOfTaps / TapsPerBiquad);
    for (std::uint64_t k = 0; k < m_NumberOfBiquads; ++k) {
        double* const tap = m_Coefficients + TapsPerBiquad * k;
        if (IsZeroD0(tap[D0]))
            return Refuse(this, "The D0 coefficient for biquad number ", k + 1,
                          " cannot be zero. ");
        for (const int i : {N0, N1, N2, D1, D2})
            tap[i] /= tap[D0];
        tap[D0] = 1.0;
    }
    for (double** state : {&m_State1, &m_State2}) {
        delete[] * state;
        *state = nullptr;
        *state = new double[m_NumberOfBiquads]();
    }
    if (m_Outputs.m_Count > m_NumberOfBiquads)
        return Refuse(this, "The number of outputs must be less than or equal to the ",
                      "number of biquads in the cascade.  Currently, there are ", m_Outputs.m_Count,
                      " outputs and ", m_NumberOfBiquads, " biquads.");
    return true;
}

bool BiquadCascade::Finalize()
{
    return true;
}

}  // namespace TalvernQuell
