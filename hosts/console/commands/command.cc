#include "hosts/console/commands/command.h"

namespace forgeyard::console {

const std::string& Invocation::text(std::string_view parameter) const {
  static const std::string none;
  const std::vector<std::string>& given = texts(parameter);
  return given.empty() ? none : given.front();
}

const std::vector<std::string>& Invocation::texts(std::string_view parameter) const {
  static const std::vector<std::string> none;
  const auto found = values_.find(parameter);
  return found == values_.end() ? none : found->second;
}

}  // namespace forgeyard::console
