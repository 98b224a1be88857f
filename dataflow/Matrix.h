// The two-dimensional container of pole and zero lists.
#ifndef DATAFLOW_MATRIX_H
#define DATAFLOW_MATRIX_H

#include <algorithm>
#include <complex>
#include <cstdint>
#include <initializer_list>

namespace TalvernQuell {

// Elements lie column after column: the stride of a dimension is the product of the sizes before
// it. A list is a matrix of one row.
template <typename T>
class Matrix {
public:
    Matrix() { Reshape(0, 0); }
    Matrix(std::initializer_list<T> row)
    {
        Reshape(1, row.size());
        Fill(row.begin(), row.size());
    }
    ~Matrix()
    {
        delete[] m_Data;
        delete[] m_Sizes;
        delete[] m_Strides;
    }
    Matrix(const Matrix&) = delete;
    Matrix& operator=(const Matrix&) = delete;

    T* begin() { return m_Data; }
    T* end() { return m_Data + m_Count; }
    const T* begin() const { return m_Data; }
    const T* end() const { return m_Data + m_Count; }

    // Sets the sizes. The elements are not initialised where the array had to be replaced.
    void Reshape(std::uint64_t rows, std::uint64_t columns)
    {
        if (m_DimensionCapacity < 2) ReplaceDimensions();
        m_Dimensions = 2;
        m_Sizes[0] = rows;
        m_Sizes[1] = columns;
        m_Count = rows * columns;
        if (m_Capacity < m_Count) {
            delete[] m_Data;
            m_Data = nullptr;
            m_Capacity = 0;
            m_Data = new T[m_Count];
            m_Capacity = m_Count;
        }
        m_Strides[0] = 1;
        m_Strides[1] = rows;
    }

    // Takes the elements from a table and clears those beyond its end.
    void Fill(const T* table, std::uint64_t tableCount)
    {
        T* const rest = std::copy_n(table, std::min(m_Count, tableCount), m_Data);
        std::fill(rest, end(), T());
    }

    T* m_Data = nullptr;                    // owned
    std::uint64_t m_Dimensions = 0;         // 2 from construction on
    std::uint64_t* m_Sizes = nullptr;       // owned; elements along each dimension
    std::uint64_t m_Count = 0;              // elements in use
    std::uint64_t* m_Strides = nullptr;     // owned; distance of neighbours in each dimension
    std::uint64_t m_Capacity = 0;           // elements allocated
    std::uint64_t m_DimensionCapacity = 0;  // entries of m_Sizes and of m_Strides

private:
    void ReplaceDimensions()
    {
        delete[] m_Sizes;
        delete[] m_Strides;
        m_Sizes = nullptr;
        m_Strides = nullptr;
        m_Sizes = new std::uint64_t[2]();
        m_Strides = new std::uint64_t[2]();
        m_DimensionCapacity = 2;
    }
};

extern template class Matrix<double>;
extern template class Matrix<std::complex<double>>;

}  // namespace TalvernQuell

#endif
