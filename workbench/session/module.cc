#include "workbench/session/module.h"

#include <dlfcn.h>
#include <unistd.h>

#include <array>

#include "workbench/base/failure.h"
#include "workbench/base/program_paths.h"
#include "workbench/session/registered_classes.h"

namespace forgeyard::workbench {

namespace {

constexpr const char* kFileName = "Forgeyard.so";

std::string findModule(const Registry& registry) {
  const std::string here = programDirectory();
  const std::array places{here + "/" + kFileName, here + "/../lib/forgeyard/" + kFileName};
  for (const std::string& place : places) {
    if (::access(place.c_str(), F_OK) == 0) return place;
  }
  std::string registered = registeredModule(registry);
  if (!registered.empty()) return registered;
  throw Failure(std::string(kFileName) + " is neither in " + here + " nor in " + here +
                "/../lib/forgeyard, and the registry " + Registry::defaultFile() +
                " names no other place. Install it beside the program.");
}

}  // namespace

std::string registeredModule(const Registry& registry) {
  const std::vector<RegisteredClass> classes = loadedObjectClasses(registry);
  return classes.empty() ? "" : classes.front().module;
}

Module::Module(const Registry& registry) : path_(findModule(registry)) {
  library_ = ::dlopen(path_.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (!library_) {
    const char* why = ::dlerror();
    throw Failure(path_ + " can't be loaded: " + (why ? why : "no reason given") + ".");
  }
  getClassObject_ = reinterpret_cast<GetClassObject>(load("DllGetClassObject"));
  canUnload_ = reinterpret_cast<HRESULT (*)()>(load("DllCanUnloadNow"));
  register_ = reinterpret_cast<HRESULT (*)()>(load("DllRegisterServer"));
  unregister_ = reinterpret_cast<HRESULT (*)()>(load("DllUnregisterServer"));
  addClassSource(getClassObject_);
}

Module::~Module() {
  removeClassSource(getClassObject_);
}

void* Module::load(const char* name) const {
  void* address = ::dlsym(library_, name);
  if (!address) throw Failure(path_ + " is not the Forgeyard module: it has no " + name + ".");
  return address;
}

}  // namespace forgeyard::workbench
