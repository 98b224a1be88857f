// The result of a link as JSON.
#ifndef QUELL_LINK_JSON_H
#define QUELL_LINK_JSON_H

#include <nlohmann/json.hpp>

#include "quell/link/link.h"

namespace quell {

// Numbers read back bit for bit; what is not finite or not there is null. Responses themselves are
// not part of it.
nlohmann::ordered_json ResultJson(const LinkResult& result);

}  // namespace quell

#endif
