#pragma once

#include <string>

#include "platform/com/class_table.h"
#include "platform/com/status.h"
#include "platform/registry/registry.h"

namespace forgeyard::workbench {

// The component module in this process, reached through its exports alone. Its classes are served from the
// construction of this object to its end. The library itself stays mapped: the process ends soon after. Main
// thread only.
class Module {
 public:
  // Looks beside the program, then in ../lib/forgeyard, then where the registry says that the
  // objects of a host's start are served from. Throws a Failure that says which file and why.
  explicit Module(const Registry& registry);
  ~Module();
  Module(const Module&) = delete;
  Module& operator=(const Module&) = delete;

  // Host path.
  const std::string& path() const { return path_; }
  // Enters the module's classes into the user's registry.
  HRESULT registerServer() const { return register_(); }
  // Takes them out again.
  HRESULT unregisterServer() const { return unregister_(); }
  // Whether no object of the module is alive.
  bool canUnload() const { return canUnload_() == S_OK; }

 private:
  void* load(const char* name) const;

  std::string path_;
  void* library_ = nullptr;
  GetClassObject getClassObject_ = nullptr;
  HRESULT (*canUnload_)() = nullptr;
  HRESULT (*register_)() = nullptr;
  HRESULT (*unregister_)() = nullptr;
};

// Where the registry says that the objects of a host's start are served from: a host path; empty if it names
// none.
std::string registeredModule(const Registry& registry);

}  // namespace forgeyard::workbench
