// The word that was probably meant.
#ifndef QUELL_BASE_NEAREST_H
#define QUELL_BASE_NEAREST_H

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quell {

// Fewest letters to be inserted, removed, replaced, or swapped with the next one, that make one
// word of the other (optimal string alignment). Letters in another case count as half a change, so
// that the result is in halves.
size_t EditDistance(std::string_view a, std::string_view b);

// The nearest of the words when it is near enough to be a slip: a third of the letters at most.
std::optional<std::string> Nearest(std::string_view word, const std::vector<std::string>& words);

}  // namespace quell

#endif
