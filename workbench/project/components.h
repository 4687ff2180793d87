#pragma once

#include <span>
#include <string>
#include <vector>

#include "typelib/component.h"
#include "typelib/folder.h"
#include "typelib/project.h"

namespace forgeyard::workbench {

// A kind of component that the command line knows.
struct ComponentKind {
  const char* name;  // "cc"
  Guid clsid;
  Guid iid;       // its own dispatch interface: what a component has beyond its settings
  Guid settings;  // the interface of its settings
  const char* help;
};

std::span<const ComponentKind> componentKinds();
// Null for a class that the command line doesn't know.
const ComponentKind* kindOf(const Guid& clsid);
inline constexpr std::string_view kFolderKind = "folder";

struct Component {
  Ref<IComponent> object;
  std::int32_t id = 0;
  std::string name;
  const ComponentKind* kind = nullptr;  // null for a class that the command line doesn't know

  std::string kindName() const { return kind ? kind->name : "other"; }
};

// In the project's order.
std::vector<Component> componentsOf(IProject& project);

// By its name, or by "#ID" where that is no component's name. Throws a Failure for none and for several.
Component findComponent(IProject& project, const std::string& name);
// The same for folders alone.
Component findFolder(IProject& project, const std::string& name);

// Throws a Failure if the name is empty, too long for a dialog, or another component's.
void requireFreeName(IProject& project, const std::string& name, IComponent* except = nullptr);

}  // namespace forgeyard::workbench
