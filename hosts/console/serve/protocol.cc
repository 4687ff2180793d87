#include "hosts/console/serve/protocol.h"

namespace forgeyard::console {

using Json = ObjectHandles::Json;

namespace {

bool isId(const Json& value) {
  return value.is_string() || value.is_number() || value.is_null();
}

}  // namespace

std::string faultOf(const Json& request) {
  if (!request.is_object()) return "A request is an object.";
  if (request.value("jsonrpc", Json()) != "2.0") return R"(A request has "jsonrpc": "2.0" in it.)";
  const auto method = request.find("method");
  if (method == request.end() || !method->is_string()) return "A request names a method.";
  if (const auto id = request.find("id"); id != request.end() && !isId(*id))
    return "The id of a request is a text, a number or null.";
  const auto parameters = request.find("params");
  if (parameters != request.end() && !parameters->is_object())
    return "The parameters of a request are an object: they go by their names.";
  return "";
}

Json idOf(const Json& request) {
  if (!request.is_object()) return nullptr;
  const auto id = request.find("id");
  return id != request.end() && isId(*id) ? *id : Json();
}

bool expectsAnswer(const Json& request) {
  return !request.is_object() || request.contains("id") || !faultOf(request).empty();
}

const std::string& textIn(const Json& parameters, const char* name) {
  const auto found = parameters.find(name);
  if (found == parameters.end() || !found->is_string())
    throw InvalidParameters(std::string("A text \"") + name + "\" is needed.");
  return found->get_ref<const std::string&>();
}

std::int64_t numberIn(const Json& parameters, const char* name) {
  const auto found = parameters.find(name);
  if (found == parameters.end() || !found->is_number_integer())
    throw InvalidParameters(std::string("A number \"") + name + "\" is needed.");
  return found->get<std::int64_t>();
}

}  // namespace forgeyard::console
