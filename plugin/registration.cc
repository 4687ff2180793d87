#include "plugin/registration.h"

#include <dlfcn.h>

#include "platform/registry/registry.h"
#include "plugin/module.h"

namespace forgeyard {

namespace {

// Keys of classes stand beside those of the user.
constexpr std::string_view kClasses = R"(HKEY_CLASSES_ROOT\)";

std::string classKey(const ClassEntry& entry) {
  return std::string(kClasses) + "CLSID\\{" + formatGuid(entry.clsid) + "}";
}

void enter(Registry& registry, const ClassEntry& entry, const std::string& path) {
  const std::string name = entry.name;
  const std::string title = name + " Class";
  const std::string id = "{" + formatGuid(entry.clsid) + "}";
  const std::string versioned = std::string(kClasses) + "KV." + name + ".1";
  const std::string general = std::string(kClasses) + "KV." + name;
  registry.setValue(versioned, "", title);
  registry.setValue(versioned + "\\CLSID", "", id);
  registry.setValue(general, "", title);
  registry.setValue(general + "\\CurVer", "", "KV." + name + ".1");
  registry.setValue(general + "\\CLSID", "", id);
  const std::string key = classKey(entry);
  registry.setValue(key, "", title);
  registry.setValue(key + "\\ProgID", "", "KV." + name + ".1");
  registry.setValue(key + "\\VersionIndependentProgID", "", "KV." + name);
  registry.createKey(key + "\\Programmable");
  registry.setValue(key + "\\InprocServer32", "", path);
  registry.setValue(key + "\\InprocServer32", "ThreadingModel", "Apartment");
}

void remove(Registry& registry, const ClassEntry& entry) {
  const std::string name = entry.name;
  registry.removeKey(std::string(kClasses) + "KV." + name + ".1");
  registry.removeKey(std::string(kClasses) + "KV." + name);
  registry.removeKey(classKey(entry));
}

template <class Change>
HRESULT changeAll(Change&& change) {
  return guard([&] {
    const auto error = Registry::update(Registry::defaultFile(), [&](Registry& registry) {
      for (const ClassEntry& entry : objectMap()) change(registry, entry);
    });
    return error ? E_FAIL : S_OK;
  });
}

}  // namespace

HRESULT registerClasses(const std::string& path) {
  return changeAll([&](Registry& registry, const ClassEntry& entry) { enter(registry, entry, path); });
}

HRESULT unregisterClasses() {
  return changeAll(remove);
}

std::string modulePath() {
  Dl_info info{};
  return dladdr(reinterpret_cast<void*>(&registerClasses), &info) && info.dli_fname ? info.dli_fname : "";
}

}  // namespace forgeyard
