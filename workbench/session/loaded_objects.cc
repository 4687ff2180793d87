#include "workbench/session/loaded_objects.h"

#include "platform/com/class_table.h"
#include "workbench/base/failure.h"

namespace forgeyard::workbench {

LoadedObjects::LoadedObjects(const Registry& registry, IUnknown* site, CommandHost& commands)
    : commands_(commands) {
  try {
    for (const RegisteredClass& one : loadedObjectClasses(registry)) load(one, site);
  } catch (...) {
    unload();
    throw;
  }
}

void LoadedObjects::load(const RegisteredClass& one, IUnknown* site) {
  const Ref<ILoadedObject> object = createInstance<ILoadedObject>(one.clsid);
  if (!object) return;
  require(object->OnLoad(site), one.program + " does not start");
  objects_.emplace_back(one, object);
  if (const Ref<IUseCommands> commands = object.as<IUseCommands>()) commands_.addObject(*commands);
}

void LoadedObjects::unload() {
  commands_.removeObjects();
  while (!objects_.empty()) {
    ignore(objects_.back().second->OnUnload());
    objects_.pop_back();
  }
}

LoadedObjects::~LoadedObjects() {
  unload();
}

}  // namespace forgeyard::workbench
