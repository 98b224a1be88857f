// The rows of the message table as constants of the compiler, and the search over them.
#ifndef IBISPARSER_BASE_MESSAGES_H
#define IBISPARSER_BASE_MESSAGES_H

#include <cstddef>

#include "IbisParser/errlog.h"

inline constexpr ErrorRow errRows[] = {
#include "IbisParser/base/messages/table.inc"
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

#endif
