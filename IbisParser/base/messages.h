// The rows of the message table as constants of the compiler, and the search over them.
#ifndef IBISPARSER_BASE_MESSAGES_H
#define IBISPARSER_BASE_MESSAGES_H

#include <cstddef>

#include "IbisParser/errlog.h"

inline constexpr ErrorRow errRows[] = {
#include "IbisParser/base/messages/table.inc"
};

// The second table: numbers from 5000 on, sorted, for what errorLogTable has no row for. Programs
// see of it only what is raised.
inline constexpr ErrorRow errLaterRows[] = {
#include "IbisParser/base/messages/m5900.inc"  // 5900-5902 component tables
};

// The index of the row that answers for a number, or -1. Bisection over rows that are not wholly
// sorted: which of two rows of a number answers, and whether one does, hangs on these very steps.
template <std::size_t n>
constexpr int ERRLOG_FindRow(const ErrorRow (&rows)[n], int number)
{
    int low = 0;
    int high = static_cast<int>(n) - 1;
    while (low <= high) {
        const int middle = (low + high) / 2;
        if (rows[middle].number == number) return middle;
        if (rows[middle].number < number)
            low = middle + 1;
        else
            high = middle - 1;
    }
    return -1;
}

// The row of either table that answers for a number, or null.
constexpr const ErrorRow* ERRLOG_RowOf(int number)
{
    const int row = ERRLOG_FindRow(errRows, number);
    if (row >= 0) return &errRows[row];
    const int later = ERRLOG_FindRow(errLaterRows, number);
    return later >= 0 ? &errLaterRows[later] : nullptr;
}

#endif
