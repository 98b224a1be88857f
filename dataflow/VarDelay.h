// A delay of whole samples, fixed or controlled per firing.
#ifndef DATAFLOW_VARDELAY_H
#define DATAFLOW_VARDELAY_H

#include <algorithm>
#include <cstdint>

#include "dataflow/CircularBuffer.h"
#include "dataflow/DFErrorHandler.h"
#include "dataflow/DFModel.h"

namespace TalvernQuell {

// A step through a ring of elements. It writes before it reads, so equal offsets pass the sample
// straight through.
template <typename T>
struct DelayStep {
    T* line;
    std::uint64_t capacity;
    std::uint64_t step;
    std::uint64_t writeOffset;
    std::uint64_t readOffset;
    std::uint64_t position;

    T Apply(T x)
    {
        line[WrappedIndex(position, writeOffset, capacity)] = x;
        const T y = line[WrappedIndex(position, readOffset, capacity)];
        position = WrappedIndex(position, step, capacity);
        return y;
    }

    // Moves on by count samples that the whole line holds already.
    void Skip(std::uint64_t count) { position = (position + count * step) % capacity; }
};

// B is the type of the ports. While m_DelayControl is active the delay is read from it at each
// firing and clamped to 0..MaxDelay; else the delay stays what it was, MaxDelay after Initialize.
// The first samples out are what the line holds: zeros when it is new, and the end of the previous
// use when it was long enough to be kept.
template <typename B>
class VarDelay : public DFModel {
public:
    using T = typename B::Element;

    VarDelay() = default;
    // The line is this block's own.
    ~VarDelay() override { m_DelayLine.DeallocateMemory(nullptr); }
    VarDelay(const VarDelay&) = delete;
    VarDelay& operator=(const VarDelay&) = delete;

    bool Initialize() override
    {
        if (MaxDelay < 0) {
            DFErrorHandler::PostError(this, "MaxDelay must be >= 0");
            return false;
        }
        m_MaxDelaySamples = static_cast<std::uint64_t>(MaxDelay);
        m_CurrentDelay = m_MaxDelaySamples;
        m_DelayLine.Grow(m_MaxDelaySamples + 1);
        return true;
    }

    // The line and its offsets for the current delay. The caller puts the position back.
    DelayStep<T> Line()
    {
        return {m_DelayLine.Elements(),
                m_DelayLine.m_Capacity,
                m_DelayLine.m_Step,
                m_MaxDelaySamples,
                m_MaxDelaySamples - m_CurrentDelay,
                m_DelayLine.m_Position};
    }

    bool Run() override
    {
        if (m_DelayControl.m_Active) m_CurrentDelay = Clamp(m_DelayControl.Current());
        DelayStep<T> line = Line();
        m_Output.Current() = line.Apply(m_Input.Current());
        m_DelayLine.m_Position = line.position;
        return true;
    }

    B m_Input;
    B m_Output;
    CircularBuffer<int> m_DelayControl;  // samples
    std::int32_t MaxDelay = 0;           // samples
    B m_DelayLine;
    std::uint64_t m_CurrentDelay = 0;
    std::uint64_t m_MaxDelaySamples = 0;

private:
    // A negative delay means none.
    std::uint64_t Clamp(int delay) const
    {
        if (delay < 0) return 0;
        return std::min(static_cast<std::uint64_t>(delay), m_MaxDelaySamples);
    }
};

extern template class VarDelay<CircularBuffer<double>>;

}  // namespace TalvernQuell

#endif
