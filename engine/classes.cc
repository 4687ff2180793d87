#include "engine/classes.h"

#include <array>

#include "engine/build_tool/build_tool.h"
#include "typelib/classes.h"

namespace forgeyard {

std::span<const ClassEntry> engineClasses() {
  static constexpr std::array classes{ClassEntry{CLSID_BuildTool, "BuildTool", createObject<CBuildTool>}};
  return classes;
}

}  // namespace forgeyard
