// Buses: a fixed number of ports of one kind.
#ifndef DATAFLOW_CIRCULARBUFFERBUS_H
#define DATAFLOW_CIRCULARBUFFERBUS_H

#include <cstdint>

#include "dataflow/CircularBuffer.h"

namespace TalvernQuell {

class CircularBufferBus {
public:
    // Makes the bus count default buffers long. With as many buffers as there are, nothing
    // happens: they keep their settings and arrays.
    virtual void Initialize(std::uint64_t count) = 0;
    virtual ~CircularBufferBus() = default;
    // Buffer number index, which is not checked.
    virtual CircularBufferBase* Get(std::uint64_t index) = 0;

    std::uint64_t m_Count = 0;

protected:
    CircularBufferBus() = default;
    CircularBufferBus(const CircularBufferBus&) = delete;
    CircularBufferBus& operator=(const CircularBufferBus&) = delete;
};

// B is the type of the buffers.
template <typename B>
class CircularBufferBusT final : public CircularBufferBus {
public:
    void Initialize(std::uint64_t count) override
    {
        if (count == m_Count) return;
        delete[] m_Buffers;
        m_Buffers = nullptr;
        m_Count = count;
        if (count != 0) m_Buffers = new B[count];
    }

    ~CircularBufferBusT() override { delete[] m_Buffers; }

    B* Get(std::uint64_t index) override { return m_Buffers + index; }

    B* m_Buffers = nullptr;
};

extern template class CircularBufferBusT<CircularBuffer<double>>;

}  // namespace TalvernQuell

#endif
