#pragma once

#include <gtest/gtest.h>

#include <string>

#include "platform/com/class_table.h"
#include "tests/platform/support/scratch.h"

namespace forgeyard::test {

// Where the build puts the module.
std::string modulePath();

// The module as a host has it: loaded by its path, reached through its exports alone. Unloads at its end.
class LoadedModule {
 public:
  explicit LoadedModule(const std::string& path = modulePath());
  LoadedModule(const LoadedModule&) = delete;
  LoadedModule& operator=(const LoadedModule&) = delete;
  ~LoadedModule() { unload(); }

  HRESULT canUnloadNow() const { return canUnloadNow_(); }
  HRESULT registerServer() const { return registerServer_(); }
  HRESULT unregisterServer() const { return unregisterServer_(); }
  HRESULT getClassObject(const Guid& clsid, const Guid& iid, void** out) const {
    return getClassObject_(clsid, iid, out);
  }
  GetClassObject classSource() const { return getClassObject_; }

  // Null, with the status in *status if given, when it can't be made.
  Ref<IUnknown> create(const Guid& clsid, HRESULT* status = nullptr) const;
  Ref<IClassFactory> factory(const Guid& clsid, HRESULT* status = nullptr) const;

  void unload();

 private:
  void* symbol(const char* name) const;

  void* library_;
  HRESULT (*canUnloadNow_)();
  HRESULT (*registerServer_)();
  HRESULT (*unregisterServer_)();
  GetClassObject getClassObject_;
};

// A loaded module with a registry and a runtime directory of its own, and no object left at the end.
class ModuleTest : public testing::Test {
 protected:
  ~ModuleTest() override { EXPECT_EQ(module_.canUnloadNow(), S_OK) << "objects outlive the test"; }

  std::string registryFile() const { return scratch_ / "registry"; }

  ScratchDirectory scratch_;
  ScopedVariable runtime_{"FORGEYARD_RUNTIME_DIR", scratch_.path()};
  ScopedVariable registry_{"FORGEYARD_REGISTRY", scratch_ / "registry"};
  LoadedModule module_;
};

}  // namespace forgeyard::test
