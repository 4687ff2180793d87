#pragma once

#include <string>
#include <utility>
#include <vector>

#include "typelib/host.h"
#include "workbench/session/command_host.h"
#include "workbench/session/registered_classes.h"

namespace forgeyard::workbench {

// The objects that a host creates at its start: one of each class that the registry lists for it, sited, and
// known to the command service with their commands. The end lets them close what they own, last first. Main
// thread only.
class LoadedObjects {
 public:
  // What can't be made is left out: a class of a part that isn't built yet is no reason not to start. Throws
  // a Failure for an object that refuses its site. Borrows the command service.
  LoadedObjects(const Registry& registry, IUnknown* site, CommandHost& commands);
  LoadedObjects(const LoadedObjects&) = delete;
  LoadedObjects& operator=(const LoadedObjects&) = delete;
  ~LoadedObjects();

  // The first object that has the interface I, or null.
  template <class I>
  Ref<I> find() const {
    for (const auto& entry : objects_) {
      if (Ref<I> found = entry.second.template as<I>()) return found;
    }
    return nullptr;
  }

  // In order of creation.
  const std::vector<std::pair<RegisteredClass, Ref<ILoadedObject>>>& all() const { return objects_; }

 private:
  void load(const RegisteredClass& one, IUnknown* site);
  void unload();

  CommandHost& commands_;
  std::vector<std::pair<RegisteredClass, Ref<ILoadedObject>>> objects_;
};

}  // namespace forgeyard::workbench
