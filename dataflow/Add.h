// The sum of any number of inputs.
#ifndef DATAFLOW_ADD_H
#define DATAFLOW_ADD_H

#include <cstdint>

#include "dataflow/CircularBuffer.h"
#include "dataflow/CircularBufferBus.h"
#include "dataflow/DFModel.h"

namespace TalvernQuell {

template <typename T>
class Add : public DFModel {
public:
    // The sum starts from zero and takes the inputs one by one, in bus order. That order is part
    // of the result.
    static constexpr T Empty = 0;
    static T Accumulate(T sum, T x) { return sum + x; }

    bool Run() override
    {
        T sum = Empty;
        for (std::uint64_t i = 0; i < m_Inputs.m_Count; ++i)
            sum = Accumulate(sum, m_Inputs.Get(i)->Current());
        m_Output.Current() = sum;
        return true;
    }

    CircularBufferBusT<CircularBuffer<T>> m_Inputs;
    CircularBuffer<T> m_Output;
};

extern template class Add<double>;

}  // namespace TalvernQuell

#endif
