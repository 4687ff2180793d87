#pragma once

#include "typelib/host.h"

namespace forgeyard {

// The host's services that a project uses. Without services everything here does nothing. Main thread only.
class ProjectServices {
 public:
  void set(IServiceLookup* services);
  // Null before set() and after clear().
  IServiceLookup* get() const { return services_.get(); }
  void clear();

  // Has the host ask again for the commands of the configuration menu.
  void refreshConfigurationMenu() const;
  // While `project` is registered, host commands that are bound to the class of projects reach it.
  void registerActive(IUnknown* project) const;
  void unregisterActive(IUnknown* project) const;

 private:
  Ref<IServiceLookup> services_;
  Ref<ICommandHost> commandHost_;
};

}  // namespace forgeyard
