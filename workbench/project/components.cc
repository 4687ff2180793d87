#include "workbench/project/components.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "platform/storage/records/persist.h"
#include "typelib/classes.h"
#include "typelib/settings.h"
#include "workbench/base/failure.h"
#include "workbench/base/nearest.h"
#include "workbench/project/collections.h"

namespace forgeyard::workbench {

namespace {

constexpr std::array kKinds{
    ComponentKind{"folder", CLSID_Folder, IFolder::iid, IFolderSettings::iid, "a folder of source files"},
    ComponentKind{"cmdline", CLSID_CmdLine, ICmdLine::iid, ICmdLineSettings::iid,
                  "a command line of your own"},
    ComponentKind{"cc", CLSID_Cc, ICc::iid, ICcSettings::iid, "a compiler"},
    ComponentKind{"asm", CLSID_Asm, IAsm::iid, IAsmSettings::iid, "an assembler"},
    ComponentKind{"linker", CLSID_Linker, ILinker::iid, ILinkerSettings::iid, "a linker"},
};
// What the edit boxes of the module's dialogs hold.
constexpr std::size_t kLongestName = 260;

const ComponentKind* kindOfObject(IComponent& component) {
  const Ref<IPersistStorage> persist = query<IPersistStorage>(&component);
  Guid clsid;
  return persist && succeeded(persist->GetClassID(&clsid)) ? kindOf(clsid) : nullptr;
}

std::optional<std::int32_t> idFrom(std::string_view name) {
  if (!name.starts_with('#')) return std::nullopt;
  std::int32_t id = 0;
  const char* end = name.data() + name.size();
  const auto [stop, error] = std::from_chars(name.data() + 1, end, id);
  return error == std::errc() && stop == end ? std::optional(id) : std::nullopt;
}

std::vector<Component> matching(const std::vector<Component>& all, const std::string& name) {
  std::vector<Component> found;
  std::copy_if(all.begin(), all.end(), std::back_inserter(found),
               [&](const Component& component) { return component.name == name; });
  if (!found.empty()) return found;
  if (const auto id = idFrom(name)) {
    std::copy_if(all.begin(), all.end(), std::back_inserter(found),
                 [&](const Component& component) { return component.id == *id; });
  }
  return found;
}

Component onlyOne(const std::vector<Component>& all, const std::string& name, const std::string& what) {
  const std::vector<Component> found = matching(all, name);
  if (found.size() == 1) return found.front();
  std::vector<std::string> names;
  if (found.empty()) {
    for (const Component& component : all) names.push_back(component.name);
    throw Failure("There is no " + what + " " + name + "." + suggestion(name, names, what + "s"));
  }
  for (const Component& component : found)
    names.push_back("#" + std::to_string(component.id) + " (" + component.kindName() + ")");
  throw Failure("There are several " + what + "s " + name + ": " + enumeration(names) +
                ". Say which one by its number.");
}

}  // namespace

std::span<const ComponentKind> componentKinds() {
  return kKinds;
}

const ComponentKind* kindOf(const Guid& clsid) {
  const auto found =
      std::find_if(kKinds.begin(), kKinds.end(), [&](const auto& kind) { return kind.clsid == clsid; });
  return found == kKinds.end() ? nullptr : &*found;
}

std::vector<Component> componentsOf(IProject& project) {
  Ref<IComponents> components;
  check(project.get_Components(&components));
  std::vector<Component> result;
  for (const Ref<IComponent>& object : elementsOf<IComponent>(*components)) {
    Component component{object, 0, "", kindOfObject(*object)};
    BString name;
    check(object->get_ComponentName(&name));
    check(object->get_Id(&component.id));
    component.name = name.narrow();
    result.push_back(std::move(component));
  }
  return result;
}

Component findComponent(IProject& project, const std::string& name) {
  return onlyOne(componentsOf(project), name, "component");
}

Component findFolder(IProject& project, const std::string& name) {
  std::vector<Component> folders = componentsOf(project);
  std::erase_if(folders, [](const Component& component) { return component.kindName() != kFolderKind; });
  return onlyOne(folders, name, "folder");
}

void requireFreeName(IProject& project, const std::string& name, IComponent* except) {
  if (name.empty()) throw Failure("A component needs a name.");
  if (BString::fromNarrow(name).size() > kLongestName)
    throw Failure("A component's name has at most " + std::to_string(kLongestName) + " characters.");
  for (const Component& component : componentsOf(project)) {
    if (component.name != name || sameObject(component.object.get(), except)) continue;
    throw Failure("There is a component " + name + " already (#" + std::to_string(component.id) + ", " +
                  component.kindName() + ").");
  }
}

}  // namespace forgeyard::workbench
