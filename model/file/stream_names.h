#pragma once

namespace forgeyard {

// The streams of a project file's root.
inline constexpr const char16_t* kSettingsStream = u"Settings";
inline constexpr const char16_t* kConnectionsStream = u"Connections";
inline constexpr const char16_t* kConfigurationsStream = u"Configurations";

}  // namespace forgeyard
