// Circular buffers: the ports through which blocks exchange samples.
#ifndef DATAFLOW_CIRCULARBUFFER_H
#define DATAFLOW_CIRCULARBUFFER_H

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace TalvernQuell {

// Index of the element `offset` after `position` in a ring of `capacity` elements. The offset is
// below the capacity, so one subtraction wraps it.
inline std::uint64_t WrappedIndex(std::uint64_t position, std::uint64_t offset,
                                  std::uint64_t capacity)
{
    const std::uint64_t index = position + offset;
    return index < capacity ? index : index - capacity;
}

// A buffer never frees the array attached to it, because several ports may share one array:
// whoever attached the array frees it. Indices, counts and a missing array are not checked.
class CircularBufferBase {
public:
    virtual ~CircularBufferBase() = default;
    // Copies count elements from one plain array to another.
    virtual void Copy(const void* source, void* destination, std::uint64_t count) const = 0;
    // Copies count elements, from sourceOffset after the current element of this buffer to
    // destinationOffset after the current element of the destination, wrapping in both.
    virtual void Copy(std::uint64_t sourceOffset, CircularBufferBase* destination,
                      std::uint64_t destinationOffset, std::uint64_t count) const = 0;
    // Clears count elements from offset after the current one. Works on the buffer's own array
    // whatever the third argument is. Always true.
    virtual bool Zero(std::uint64_t offset, std::uint64_t count, void* ignored) = 0;
    // A new array of count elements, not initialised and not attached.
    virtual void* AllocateMemory(std::uint64_t count) = 0;
    // Frees the given array. Null stands for the buffer's own, which leaves the buffer empty.
    virtual void DeallocateMemory(void* elements) = 0;

    std::uint64_t m_Step = 1;         // positions that a private buffer advances per firing
    std::uint64_t m_Size = 1;         // requested length in elements
    bool m_Attached = false;          // for the wiring; no block reads it
    std::uint64_t m_ElementSize = 0;  // bytes per element
    std::uint64_t m_Position = 0;     // index of the current element
    void* m_Data = nullptr;           // the elements
    std::uint64_t m_Capacity = 0;     // allocated elements
    bool m_Active = true;             // on the delay control port: the delay is read per firing

protected:
    explicit CircularBufferBase(std::uint64_t elementSize) : m_ElementSize(elementSize) {}
    CircularBufferBase(const CircularBufferBase&) = default;
    CircularBufferBase& operator=(const CircularBufferBase&) = default;
};

template <typename T>
class CircularBuffer : public CircularBufferBase {
public:
    using Element = T;

    CircularBuffer() : CircularBufferBase(sizeof(T)) {}

    T* Elements() { return static_cast<T*>(m_Data); }
    const T* Elements() const { return static_cast<const T*>(m_Data); }
    T& Current() { return Elements()[m_Position]; }
    const T& Current() const { return Elements()[m_Position]; }

    // Attaches an array of the caller's, with the first element as the current one.
    void Attach(T* elements, std::uint64_t capacity)
    {
        m_Data = elements;
        m_Capacity = capacity;
        m_Step = 1;
        m_Position = 0;
    }

    // Makes room for count elements in a private buffer. A new array is all zeros and starts at
    // position 0: what the old one held is dropped. One that is long enough stays as it is.
    void Grow(std::uint64_t count)
    {
        m_Size = count;
        if (count <= m_Capacity) return;
        void* elements = AllocateMemory(count);
        if (m_Capacity != 0) DeallocateMemory(nullptr);
        m_Capacity = count;
        m_Data = elements;
        Zero(m_Position, count, nullptr);
    }

    void Copy(const void* source, void* destination, std::uint64_t count) const override
    {
        std::memmove(destination, source, count * sizeof(T));
    }

    void Copy(std::uint64_t sourceOffset, CircularBufferBase* destination,
              std::uint64_t destinationOffset, std::uint64_t count) const override
    {
        const T* const from = Elements();
        T* const to = static_cast<T*>(destination->m_Data);
        const std::uint64_t toCapacity = destination->m_Capacity;
        std::uint64_t s = WrappedIndex(m_Position, sourceOffset, m_Capacity);
        std::uint64_t d = WrappedIndex(destination->m_Position, destinationOffset, toCapacity);
        if (count == 1) {
            to[d] = from[s];
            return;
        }
        while (count != 0) {
            const std::uint64_t run = std::min({m_Capacity - s, toCapacity - d, count});
            Copy(from + s, to + d, run);
            d = WrappedIndex(d, run, toCapacity);
            s = WrappedIndex(s, run, m_Capacity);
            count -= run;
        }
    }

    bool Zero(std::uint64_t offset, std::uint64_t count, void* /*ignored*/) override
    {
        for (std::uint64_t k = 0; k < count; ++k)
            Elements()[WrappedIndex(m_Position, offset + k, m_Capacity)] = T();
        return true;
    }

    void* AllocateMemory(std::uint64_t count) override { return new T[count]; }

    void DeallocateMemory(void* elements) override
    {
        if (elements != nullptr) {
            delete[] static_cast<T*>(elements);
            return;
        }
        delete[] Elements();
        m_Data = nullptr;
        m_Position = 0;
        m_Capacity = 0;
    }
};

extern template class CircularBuffer<double>;
extern template class CircularBuffer<int>;

}  // namespace TalvernQuell

#endif
