#include "workbench/session/registered_classes.h"

#include "typelib/classes.h"

namespace forgeyard::workbench {

namespace {

const std::string kRoot = R"(HKEY_CLASSES_ROOT\)";
const std::string kClasses = kRoot + "CLSID";

bool isInCategory(const Registry& registry, const std::string& key, const Guid& category) {
  return registry.open(key + R"(\Implemented Categories\{)" + formatGuid(category) + "}").has_value();
}

template <class Wanted>
std::vector<RegisteredClass> classesWhere(const Registry& registry, Wanted&& wanted) {
  std::vector<RegisteredClass> classes;
  const auto all = registry.open(kClasses);
  if (!all) return classes;
  for (const std::string& name : all->subkeys()) {
    const auto clsid = parseGuid(name);
    const std::string key = std::string(kClasses).append("\\").append(name);
    if (!clsid || !wanted(key)) continue;
    classes.push_back({*clsid, registry.value(key + "\\VersionIndependentProgID", "").value_or(""),
                       registry.value(key + "\\InprocServer32", "").value_or("")});
  }
  return classes;
}

}  // namespace

std::vector<RegisteredClass> loadedObjectClasses(const Registry& registry) {
  return classesWhere(registry, [&](const std::string& key) {
    return isInCategory(registry, key, CATID_LoadedObject) && isInCategory(registry, key, CATID_UseCommands);
  });
}

std::vector<RegisteredClass> registeredClasses(const Registry& registry) {
  return classesWhere(registry, [](const std::string&) { return true; });
}

Guid classNamed(const Registry& registry, std::string_view name) {
  if (const auto clsid = parseGuid(name)) return *clsid;
  const auto found = registry.value(kRoot + std::string(name) + R"(\CLSID)", "");
  return found ? parseGuid(*found).value_or(GUID_NULL) : GUID_NULL;
}

}  // namespace forgeyard::workbench
