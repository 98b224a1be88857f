// The contents of a file on one screen, for people.
#ifndef QUELL_INFO_SCREEN_H
#define QUELL_INFO_SCREEN_H

#include <nlohmann/json.hpp>
#include <string>

namespace quell {

// From what DescribeFile gives. Long lists are cut, with the number of what is left out.
std::string InfoScreen(const nlohmann::ordered_json& file);

}  // namespace quell

#endif
