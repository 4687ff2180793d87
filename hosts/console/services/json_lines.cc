#include "hosts/console/services/json_lines.h"

#include <nlohmann/json.hpp>

namespace forgeyard::console {

namespace {

using Json = nlohmann::ordered_json;

std::string object(std::string_view type, const Json& members) {
  std::string text = "{\"type\":\"";
  text += type;
  text += '"';
  if (!members.empty()) text += ',' + members.dump(-1, ' ', false, Json::error_handler_t::replace).substr(1);
  if (members.empty()) text += '}';
  return text;
}

}  // namespace

void writeObject(LineWriter& out, std::string_view type, const Json& members) {
  out.raw(object(type, members) + '\n');
}

std::string lineObject(std::string_view text) {
  return object("line", {{"text", text}});
}

}  // namespace forgeyard::console
