#include "plugin/registration.h"

#include <algorithm>

#include "platform/registry/registry.h"
#include "platform/storage/storage_status.h"
#include "platform/text/fold.h"
#include "plugin/class_registration.h"
#include "typelib/classes.h"

namespace forgeyard {

namespace {

bool isAt(const RegistryEntry& entry, std::string_view key) {
  return equalFolded(entry.key, key);
}

bool isAtOrBelow(const RegistryEntry& entry, std::string_view key) {
  return isAt(entry, key) || (entry.key.size() > key.size() && entry.key[key.size()] == '\\' &&
                              equalFolded(std::string_view(entry.key).substr(0, key.size()), key));
}

// Takes out of a key what is none of the entries, so that nothing stays of an older version.
void removeOthers(Registry& registry, const std::string& key, const std::vector<RegistryEntry>& entries) {
  const auto open = registry.open(key);
  if (!open) return;
  const std::vector<std::string> subkeys = open->subkeys();
  for (const std::string& name : open->valueNames()) {
    const bool wanted = std::any_of(entries.begin(), entries.end(), [&](const RegistryEntry& entry) {
      return isAt(entry, key) && entry.text && equalFolded(entry.name, name);
    });
    if (!wanted) registry.removeValue(key, name);
  }
  for (const std::string& subkey : subkeys) {
    const std::string below = std::string(key).append("\\").append(subkey);
    const bool wanted = std::any_of(entries.begin(), entries.end(),
                                    [&](const RegistryEntry& entry) { return isAtOrBelow(entry, below); });
    if (wanted) {
      removeOthers(registry, below, entries);
    } else {
      registry.removeKey(below);
    }
  }
}

void enter(Registry& registry, const std::vector<RegistryEntry>& entries) {
  for (const RegistryEntry& entry : entries) {
    if (entry.text) {
      registry.setValue(entry.key, entry.name, *entry.text);
    } else {
      registry.createKey(entry.key);
    }
  }
}

void enterTypeLibrary(Registry& registry, const std::string& modulePath) {
  const std::string version = R"(HKEY_CLASSES_ROOT\TypeLib\{)" + formatGuid(LIBID_FORGEYARDLib) + R"(}\1.0)";
  registry.setValue(version, "", "Forgeyard 1.0 Type Library");
  registry.setValue(version + R"(\FLAGS)", "", "0");
  registry.setValue(version + R"(\409\linux)", "", modulePath);
}

// One write for all classes.
template <class Change>
HRESULT changeRegistry(Change&& change) {
  return guard([&] {
    const auto error = Registry::update(Registry::defaultFile(), std::forward<Change>(change));
    return error ? compound::statusOf(error->code, compound::Attempt::Write) : S_OK;
  });
}

}  // namespace

HRESULT registerClasses(const std::string& path) {
  return changeRegistry([&](Registry& registry) {
    for (const RegisteredClass& one : registeredClasses()) {
      const std::vector<RegistryEntry> entries = one.entries(path);
      removeOthers(registry, one.classKey(), entries);
      enter(registry, entries);
    }
    enterTypeLibrary(registry, path);
  });
}

HRESULT unregisterClasses() {
  return changeRegistry([](Registry& registry) {
    for (const RegisteredClass& one : registeredClasses()) {
      for (const std::string& key : {one.versionedProgramKey(), one.programKey(), one.classKey()}) {
        registry.removeKey(key);
      }
    }
  });
}

}  // namespace forgeyard
