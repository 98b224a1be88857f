// Where the files that come with the command lie.
#ifndef QUELL_BASE_PATHS_H
#define QUELL_BASE_PATHS_H

#include <string>

namespace quell {

// A file of the model kit: beside the folder of the executable in a build tree (../kit), in the
// library folder of an installation (../lib/quell). The first place when neither has it.
std::string KitFile(const std::string& name);

}  // namespace quell

#endif
