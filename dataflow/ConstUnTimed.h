// A constant source with an initial run of zeros.
#ifndef DATAFLOW_CONSTUNTIMED_H
#define DATAFLOW_CONSTUNTIMED_H

#include <cstdint>

#include "dataflow/CircularBuffer.h"
#include "dataflow/DFErrorHandler.h"
#include "dataflow/DFModel.h"

namespace TalvernQuell {

// T is the type of the samples, B that of the port. What a zero is, a derived class says.
template <typename T, typename B>
class ConstUnTimedBase : public DFModel {
public:
    bool Initialize() override
    {
        m_FiringCount = 0;
        return UpdateDynamicParameters();
    }

    bool Run() override
    {
        // Signed, so that a negative InitialDelay that was refused still means no zeros.
        if (static_cast<std::int64_t>(m_FiringCount) < InitialDelay)
            SetOutputToZero();
        else
            m_Output.Current() = m_Value;
        ++m_FiringCount;
        return true;
    }

    bool UpdateDynamicParameters() override
    {
        if (InitialDelay < 0) {
            DFErrorHandler::PostError(this, "InitialDelay must be >= 0");
            return false;
        }
        return true;
    }

    virtual void SetOutputToZero() = 0;

    B m_Output;
    T m_Value = 0;
    std::int32_t InitialDelay = 0;  // firings
    std::uint64_t m_FiringCount = 0;
};

template <typename T>
class ConstUnTimed : public ConstUnTimedBase<T, CircularBuffer<T>> {
public:
    void SetOutputToZero() override { this->m_Output.Current() = 0; }
};

extern template class ConstUnTimedBase<double, CircularBuffer<double>>;
extern template class ConstUnTimed<double>;

}  // namespace TalvernQuell

#endif
