// JSON as text.
#include "quell/base/json.h"

namespace quell {

namespace {

using Json = nlohmann::ordered_json;

}  // namespace

std::string JsonText(const Json& json)
{
    return json.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

std::string JsonLine(const Json& json)
{
    return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

std::string JsonAsciiLine(const Json& json)
{
    return json.dump(-1, ' ', true, Json::error_handler_t::replace);
}

}  // namespace quell
