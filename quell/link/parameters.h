// The parameter string that a model gets: where its root name comes from, and how settings become
// a parenthesised tree.
#ifndef QUELL_LINK_PARAMETERS_H
#define QUELL_LINK_PARAMETERS_H

#include <string>
#include <string_view>
#include <vector>

namespace quell {

// A setting as the command line gives it: "de_emphasis=3.5", "tap.0=-0.1". Dots make branches.
struct Setting {
    std::vector<std::string> path;
    std::string value;
};

// Throws InputError for a text without "=" or with a name or value that the parenthesised string
// cannot carry: quotes, parentheses, control characters, blanks in a name.
Setting ParseSetting(std::string_view text);

// "(Root (NAME VALUE) (tap (0 VALUE) (1 VALUE)))": settings in their order, those of one branch
// together where its first one stands. Values with blanks and empty ones are quoted. A root name
// before the first dot is taken as such. Throws InputError for a name given twice or used both as
// branch and as leaf, and for a root name that is none.
std::string BuildParameterString(const std::string& root, const std::vector<Setting>& settings);

// The model's file name without folder and extension.
std::string ModelStem(const std::string& model);

}  // namespace quell

#endif
