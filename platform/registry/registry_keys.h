#pragma once

#include <cstddef>
#include <string_view>

namespace forgeyard::registry_keys {

// Keys below HKEY_CURRENT_USER that more than one program knows.
inline constexpr std::string_view kRoot = "HKEY_CURRENT_USER";
inline constexpr std::string_view kKorvel = R"(Software\Korvel)";
// Value of KORVEL: the directory of the installation, a backslash path.
inline constexpr std::string_view kHome = "Home";
inline constexpr std::string_view kBuildTool = R"(Software\Korvel\Build Tool)";
// Value of kBuildTool: the GNU linker behind the linker component, a prefix of its tool chain or its path.
inline constexpr std::string_view kLinker = "Linker";
// One value for each known target; only the names count.
inline constexpr std::string_view kTargets = R"(Software\Korvel\Build Tool\Targets)";
// Value name the target, text the beginning of the command line.
inline constexpr std::string_view kCompilers = R"(Software\Korvel\Build Tool\Compilers)";
inline constexpr std::string_view kAssemblers = R"(Software\Korvel\Build Tool\Assemblers)";
// The longest text of these two that a build takes, in bytes.
inline constexpr std::size_t kLongestToolText = 260;
// Value name "C:", text the host directory.
inline constexpr std::string_view kDrives = R"(Software\Korvel\Build Tool\Drives)";
// Value names: tools that get their arguments as they stand, not spelled for the host.
inline constexpr std::string_view kNativePaths = R"(Software\Korvel\Build Tool\Native Paths)";
// The source control of projects: a value names the database that is used where a project names none, as the
// path of its srcsafe.ini.
inline constexpr std::string_view kSourceControl = R"(Software\Korvel\Forgeyard\Source Control)";
inline constexpr std::string_view kDefaultDatabase = "Database";

}  // namespace forgeyard::registry_keys
