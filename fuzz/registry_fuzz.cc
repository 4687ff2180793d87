// The registry's text, on any bytes: it comes back byte for byte, and a value that is set reads back.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>

#include "platform/registry/registry.h"
#include "platform/registry/registry_paths.h"

namespace {

using namespace forgeyard;

void require(bool holds) {
  if (!holds) std::abort();
}

void readAll(const Registry& registry, const std::string& path, int depth) {
  const std::optional<RegistryKey> key = registry.open(path);
  if (!key || depth == 0) return;
  for (const std::string& name : key->valueNames()) require(key->value(name).has_value());
  for (const std::string& name : key->subkeys()) {
    readAll(registry, std::string(path).append("\\").append(name), depth - 1);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  Registry registry = Registry::parse(text);
  require(registry.text() == text);
  readAll(registry, "HKEY_CURRENT_USER", 3);
  (void)hostPathsFrom(registry);

  const std::string_view name = text.substr(0, 8);
  registry.setValue("a\\b", name, text);
  require(registry.value("a\\b", name) == text);
  Registry again = Registry::parse(registry.text());
  require(again.value("a\\b", name) == text);
  require(again.removeValue("a\\b", name) && !again.value("a\\b", name));
  require(again.removeKey("a") && !again.open("a"));
  return 0;
}
