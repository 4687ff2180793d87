#include "engine/self_documentation/module_path.h"

#include <dlfcn.h>

#include <filesystem>

namespace forgeyard {

namespace {

// The loader knows the path as it was given, which may be relative to where the process stood at that moment.
const std::string kLoadedFrom = [] {
  Dl_info info{};
  if (!dladdr(reinterpret_cast<void*>(&modulePath), &info) || !info.dli_fname) return std::string();
  std::error_code error;
  const std::filesystem::path whole = std::filesystem::absolute(info.dli_fname, error);
  return error ? std::string(info.dli_fname) : whole.lexically_normal().string();
}();

}  // namespace

const std::string& modulePath() {
  return kLoadedFrom;
}

}  // namespace forgeyard
