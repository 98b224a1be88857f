// A fan-out: every output gets the input.
#ifndef DATAFLOW_FORK_H
#define DATAFLOW_FORK_H

#include <cstdint>

#include "dataflow/CircularBuffer.h"
#include "dataflow/CircularBufferBus.h"
#include "dataflow/DFModel.h"

namespace TalvernQuell {

// B is the type of the ports.
template <typename B>
class Fork : public DFModel {
public:
    bool Run() override
    {
        for (std::uint64_t i = 0; i < m_Outputs.m_Count; ++i)
            m_Outputs.Get(i)->Current() = m_Input.Current();
        return true;
    }

    B m_Input;
    CircularBufferBusT<B> m_Outputs;
};

extern template class Fork<CircularBuffer<double>>;

}  // namespace TalvernQuell

#endif
