// A component file, read, checked and drawn.
#ifndef QUELL_VIEW_VIEW_FILE_H
#define QUELL_VIEW_VIEW_FILE_H

#include <string>
#include <vector>

namespace quell {

struct ViewedFile {
    std::string page;
    std::vector<std::string> warnings;  // what the page cannot show as it should
};

// In a process of its own. model: the only one to be shown; empty: all. Throws InputError when the
// file cannot be read or has no such model.
ViewedFile ViewFile(const std::string& file, const std::string& model);

}  // namespace quell

#endif
