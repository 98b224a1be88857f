// Columns of numbers in memory that a process shares with the one that started it.
#ifndef QUELL_PROCESS_SHARED_MATRIX_H
#define QUELL_PROCESS_SHARED_MATRIX_H

#include <memory>
#include <span>

#include "quell/process/shared_block.h"

namespace quell {

// Handed on by moving. The columns lie one behind the other; a write behind the last is a fault.
class SharedMatrix {
public:
    // Zeros. Throws CommandError when the system gives no memory.
    SharedMatrix(size_t rows, size_t columns);

    size_t Rows() const { return m_Rows; }
    size_t Columns() const { return m_Columns; }
    double* Data() const { return static_cast<double*>(m_Block->Data()); }
    std::span<double> Column(size_t k) { return {Data() + k * m_Rows, m_Rows}; }
    std::span<const double> Column(size_t k) const { return {Data() + k * m_Rows, m_Rows}; }

    SharedMatrix Copy() const;

private:
    size_t m_Rows;
    size_t m_Columns;
    std::unique_ptr<SharedBlock> m_Block;
};

}  // namespace quell

#endif
