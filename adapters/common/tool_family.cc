#include "adapters/common/tool_family.h"

namespace forgeyard {

std::string relatedTool(std::string_view program, std::string_view own, std::string_view wanted) {
  if (!program.ends_with(own)) return std::string(wanted);
  const std::string_view prefix = program.substr(0, program.size() - own.size());
  const bool wholeName = prefix.empty() || prefix.back() == '/' || prefix.back() == '-';
  return wholeName ? std::string(prefix).append(wanted) : std::string(wanted);
}

}  // namespace forgeyard
