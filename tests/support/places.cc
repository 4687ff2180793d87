#include "tests/support/places.h"

namespace forgeyard::places {

std::string programs() {
  return FORGEYARD_BIN_DIR;
}
std::string golden() {
  return sources() + "/tests/golden";
}
std::string samples() {
  return sources() + "/samples";
}
std::string docs() {
  return sources() + "/docs";
}
std::string sources() {
  return FORGEYARD_SOURCE_DIR;
}
std::string build() {
  return FORGEYARD_BUILD_DIR;
}
std::string cmake() {
  return FORGEYARD_CMAKE;
}
std::string storageSamples() {
  return sources() + "/tests/platform/storage/samples";
}
std::string scriptedTool() {
  return SCRIPTED_TOOL;
}
std::string spawnerTools() {
  return SPAWNER_TOOLS;
}
std::string watchpost() {
  return WATCHPOST;
}

}  // namespace forgeyard::places
