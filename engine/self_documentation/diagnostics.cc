#include "engine/self_documentation/diagnostics.h"

#include <dlfcn.h>

#include <filesystem>

#include "engine/self_documentation/module_path.h"

namespace forgeyard {

namespace {

using Operation = void (*)(IUnknown* object);

struct Watchpost {
  Operation registerObject = nullptr;
  Operation unregisterObject = nullptr;
};

Operation operation(void* library, const char* name) {
  return library ? reinterpret_cast<Operation>(::dlsym(library, name)) : nullptr;
}

// Asked for once: looking for the file with each object would cost more than all the rest of it.
const Watchpost& watchpost() {
  static const Watchpost found = [] {
    const std::filesystem::path file = std::filesystem::path(modulePath()).replace_filename("Watchpost.so");
    void* library = ::dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
    return Watchpost{operation(library, "DllRegisterObject"), operation(library, "DllUnRegisterObject")};
  }();
  return found;
}

}  // namespace

Diagnostics::Diagnostics(IUnknown* object) {
  if (!watchpost().registerObject) return;
  registered_ = object;
  watchpost().registerObject(object);
}

Diagnostics::~Diagnostics() {
  if (watchpost().unregisterObject) watchpost().unregisterObject(registered_);
}

}  // namespace forgeyard
