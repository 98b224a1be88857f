// What an IBIS, package, board or AMI parameter file holds, as JSON.
#ifndef QUELL_INFO_DESCRIBE_H
#define QUELL_INFO_DESCRIBE_H

#include <nlohmann/json.hpp>

#include "quell/reader/opening.h"

namespace quell {

// Reads the file with the parser library, which keeps its state in globals and may end the process:
// call it in a process of its own. Throws InputError when the file cannot be read.
//
// The members are stable; new ones may be added. Numbers are in SI units, null where the file gives
// none or NA. Lists are in the order of the file, and empty lists are kept.
nlohmann::ordered_json DescribeFile(const Opening& opening);

}  // namespace quell

#endif
