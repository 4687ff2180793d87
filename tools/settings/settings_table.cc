#include "tools/settings/settings_table.h"

namespace forgeyard {

bool SettingsTable::isFollowed(std::int32_t id) const {
  return std::ranges::any_of(
      properties, [&](const SettingsProperty& property) { return property.id == id && property.isFollowed; });
}

}  // namespace forgeyard
