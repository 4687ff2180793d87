#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "adapters/common/file_names.h"
#include "adapters/common/user_registry.h"
#include "platform/paths/host_lookup.h"

namespace forgeyard {

// Spells the model's paths (`\home\u\a.c`, `C:\p\a.c`) as the native tools know them. Files that exist are
// found without regard to case. Borrows the registry, and asks it only for paths with a drive.
class HostSpelling {
 public:
  explicit HostSpelling(UserRegistry& registry) : registry_(registry) {}

  // Text that is a path as a whole. A path that can name no file stays as it is, for the tool to name it.
  std::string path(std::string_view text);

  // The path of a file that is to be written: looked up only if its directory isn't there as spelled.
  std::string outputPath(std::string_view text);

  // An argument of a tool of which nothing is known; see spellPathsInArgument.
  std::string argument(std::string_view text);

  // The host path of what exists; nothing if there is none.
  std::optional<std::string> existing(std::string_view text);
  bool isFile(std::string_view text);
  bool isDirectory(std::string_view text);

  // With the drives that the registry maps.
  const HostPaths& paths();

 private:
  std::optional<std::string> absolute(std::string_view text);
  void readDrivesFor(std::string_view text);

  UserRegistry& registry_;
  HostLookup lookup_;
  bool drivesRead_ = false;
};

// Replaces the paths in an argument: the whole of it, or what stands behind the letters of an option
// (`-o\home\u\a.obj`) or behind one of `= , ; @` (`-Wl,-Map=\home\u\a.map`), if it begins with a backslash or
// a drive and `hostPath` knows a spelling for it. All else stays word for word: a pattern (`\n`,
// `s/\(a\)/b/`) is no path, as there is no such directory.
std::string spellPathsInArgument(std::string_view argument,
                                 const std::function<std::optional<std::string>(std::string_view)>& hostPath);

}  // namespace forgeyard
