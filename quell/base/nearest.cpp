// The word that was probably meant.
#include "quell/base/nearest.h"

#include <algorithm>

#include "quell/base/lines.h"

namespace quell {

namespace {

constexpr size_t Change = 2;         // halves
constexpr size_t LongestWord = 200;  // letters; longer ones are not compared

size_t ChangeOf(char a, char b)
{
    if (a == b) return 0;
    return Lower({&a, 1}) == Lower({&b, 1}) ? Change / 2 : Change;
}

}  // namespace

size_t EditDistance(std::string_view a, std::string_view b)
{
    // Rows of the table of distances between beginnings: two back, one back, this one.
    std::vector<size_t> before(b.size() + 1);
    std::vector<size_t> last(b.size() + 1);
    std::vector<size_t> row(b.size() + 1);
    for (size_t k = 0; k <= b.size(); ++k)
        row[k] = k * Change;
    for (size_t i = 1; i <= a.size(); ++i) {
        std::swap(before, last);
        std::swap(last, row);
        row[0] = i * Change;
        for (size_t k = 1; k <= b.size(); ++k) {
            row[k] = std::min({last[k] + Change, row[k - 1] + Change,
                               last[k - 1] + ChangeOf(a[i - 1], b[k - 1])});
            if (i > 1 && k > 1 && a[i - 1] == b[k - 2] && a[i - 2] == b[k - 1])
                row[k] = std::min(row[k], before[k - 2] + Change);
        }
    }
    return row[b.size()];
}

std::optional<std::string> Nearest(std::string_view word, const std::vector<std::string>& words)
{
    std::optional<std::string> nearest;
    size_t least = 0;
    for (const std::string& candidate : words) {
        if (std::max(word.size(), candidate.size()) > LongestWord) continue;
        const size_t distance = EditDistance(word, candidate);
        const size_t enough = std::max<size_t>(2, std::max(word.size(), candidate.size()) / 3);
        if (distance > enough * Change || (nearest && distance >= least)) continue;
        nearest = candidate;
        least = distance;
    }
    return nearest;
}

}  // namespace quell
