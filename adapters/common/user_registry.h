#pragma once

#include <optional>
#include <string>

#include "platform/paths/host_path.h"
#include "platform/registry/registry.h"

namespace forgeyard {

// The user's registry, read at the first question: most commands of a build need nothing from it.
class UserRegistry {
 public:
  UserRegistry() = default;
  explicit UserRegistry(Registry registry) : registry_(std::move(registry)) {}

  const Registry& get() {
    if (!registry_) registry_ = Registry::load(Registry::defaultFile());
    return *registry_;
  }

  // The table of drives that it holds.
  HostPaths drives();

 private:
  std::optional<Registry> registry_;
};

}  // namespace forgeyard
