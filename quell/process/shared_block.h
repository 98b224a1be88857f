// Memory that a process shares with the one that started it, its end guarded.
#ifndef QUELL_PROCESS_SHARED_BLOCK_H
#define QUELL_PROCESS_SHARED_BLOCK_H

#include <cstddef>
#include <new>

namespace quell {

// An anonymous shared mapping between two pages that nobody may touch. The block ends where the
// second one begins, so that a write behind it is a fault of the writer and not of a neighbour.
class SharedBlock {
public:
    // Throws CommandError when the system gives no memory.
    explicit SharedBlock(size_t size);
    ~SharedBlock();
    SharedBlock(const SharedBlock&) = delete;
    SharedBlock& operator=(const SharedBlock&) = delete;

    void* Data() const { return m_Data; }

private:
    void* m_Mapping;
    size_t m_Length;
    void* m_Data;
};

// One object in a block of its own.
template <typename T>
class Shared {
public:
    Shared() : m_Block(sizeof(T)), m_Object(new (m_Block.Data()) T) {}

    T& operator*() const { return *m_Object; }
    T* operator->() const { return m_Object; }

private:
    SharedBlock m_Block;
    T* m_Object;
};

}  // namespace quell

#endif
