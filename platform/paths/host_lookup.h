#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "platform/paths/directory_cache.h"
#include "platform/paths/host_path.h"

namespace forgeyard {

// Finds the files that model paths name. An exact spelling always wins. Where nothing exists as spelled, each
// component is looked up without regard to case, and a no-break space (U+00A0) of the model path also stands
// for a blank, so that a project written on a system that ignores case builds here. Relative paths start at
// the process's directory. Owns its table of drives and its cache; used by one thread at a time.
class HostLookup {
 public:
  explicit HostLookup(HostPaths paths = {}, std::size_t cachedNames = DirectoryCache::kDefaultNames)
      : paths_(std::move(paths)), cache_(cachedNames) {}

  const HostPaths& paths() const noexcept { return paths_; }
  void setPaths(HostPaths paths) { paths_ = std::move(paths); }

  // The host path of the existing file or directory; nothing if there is none.
  std::optional<std::string> existing(std::string_view modelPath);

  // The host path under which a file or directory is to be opened or made: the existing one if there is one,
  // else the existing parents as they are spelled on disk and the rest as it stands. Nothing only for a path
  // that can name no file (see HostPaths::toHost).
  std::optional<std::string> resolve(std::string_view modelPath);

  DirectoryCache& cache() noexcept { return cache_; }

 private:
  struct Walk {
    std::string path;
    bool found = true;
  };
  Walk walk(const std::string& hostPath);
  std::optional<std::string> actualName(const std::string& directory, std::string_view name);

  HostPaths paths_;
  DirectoryCache cache_;
};

}  // namespace forgeyard
