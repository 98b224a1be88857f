// What an AMI parameter file describes, for people and for programs.
#ifndef QUELL_PARAMS_LISTING_H
#define QUELL_PARAMS_LISTING_H

#include <nlohmann/json.hpp>
#include <string>

#include "quell/params/ami_file.h"

namespace quell {

std::string ParamsTable(const AmiFile& file);

// Texts as the file gives them.
nlohmann::ordered_json ParamsJson(const AmiFile& file);

}  // namespace quell

#endif
