// Columns of numbers in memory that a process shares with the one that started it.
#include "quell/process/shared_matrix.h"

#include <algorithm>

namespace quell {

SharedMatrix::SharedMatrix(size_t rows, size_t columns)
    : m_Rows(rows),
      m_Columns(columns),
      m_Block(std::make_unique<SharedBlock>(rows * columns * sizeof(double)))
{
}

SharedMatrix SharedMatrix::Copy() const
{
    SharedMatrix copy(m_Rows, m_Columns);
    std::copy_n(Data(), m_Rows * m_Columns, copy.Data());
    return copy;
}

}  // namespace quell
