// A constant gain.
#ifndef DATAFLOW_GAIN_H
#define DATAFLOW_GAIN_H

#include "dataflow/CircularBuffer.h"
#include "dataflow/DFModel.h"

namespace TalvernQuell {

template <typename T>
class Gain : public DFModel {
public:
    static T Apply(T gain, T x) { return gain * x; }

    bool Run() override
    {
        m_Output.Current() = Apply(m_Gain, m_Input.Current());
        return true;
    }

    T m_Gain = 1;
    CircularBuffer<T> m_Input;
    CircularBuffer<T> m_Output;
};

extern template class Gain<double>;

}  // namespace TalvernQuell

#endif
