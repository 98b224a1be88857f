// What an IBIS, package, board or AMI parameter file holds, as JSON.
#ifndef QUELL_INFO_DESCRIBE_H
#define QUELL_INFO_DESCRIBE_H

#include <nlohmann/json.hpp>
#include <string>

namespace quell {

// Reads the file in a process of its own; one of a version after the last known one as far as that
// one goes. Throws InputError when it cannot be read.
//
// The members are stable; new ones may be added. Numbers are in SI units, null where the file gives
// none or NA. Lists are in the order of the file, and empty lists are kept.
nlohmann::ordered_json DescribeFile(const std::string& path);

}  // namespace quell

#endif
