// The result of a link as JSON.
#ifndef QUELL_LINK_JSON_H
#define QUELL_LINK_JSON_H

#include <nlohmann/json.hpp>

#include "quell/link/eye.h"

namespace quell {

// Numbers read back bit for bit; what is not finite or not there is null. Responses themselves are
// not part of it.
nlohmann::ordered_json ResultJson(const LinkResult& result, const std::optional<LinkEye>& eye);

}  // namespace quell

#endif
