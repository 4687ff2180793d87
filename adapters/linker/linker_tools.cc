#include "adapters/linker/linker_tools.h"

#include <stdlib.h>

#include <algorithm>

#include "adapters/common/child.h"
#include "adapters/common/file_names.h"
#include "adapters/common/tool_family.h"
#include "adapters/common/whole_file.h"
#include "platform/registry/registry_keys.h"

namespace forgeyard {
namespace {

constexpr std::string_view kDefaultPrefix = "mipsel-linux-gnu-";

// "ld", "ld.bfd": the end of the linker's name that tells it from the other tools.
std::string_view ownName(std::string_view ld) {
  const std::string_view name = ld.substr(ld.find_last_of("/-") + 1);
  return name.starts_with("ld") ? name : std::string_view("ld");
}

// The driver leads there by way of its own directory; people read these names in messages.
std::string realDirectoryOf(const std::string& file) {
  char* const real = ::realpath(directoryOf(file).c_str(), nullptr);
  std::string result = real ? real : directoryOf(file);
  ::free(real);
  return result;
}

}  // namespace

LinkerTools LinkerTools::fromText(std::string_view text, HostSpelling& spelling) {
  std::string ld(text);
  if (ld.find('\\') != ld.npos) ld = spelling.path(ld);
  if (!ld.ends_with('/') && ld.find('/') != ld.npos && spelling.isDirectory(ld)) ld += '/';
  if (ld.ends_with('-') || ld.ends_with('/')) ld += "ld";
  const std::string_view own = ownName(ld);
  return {ld, relatedTool(ld, own, "objcopy"), relatedTool(ld, own, "nm"), relatedTool(ld, own, "readelf"),
          relatedTool(ld, own, "gcc")};
}

LinkerTools LinkerTools::configured(UserRegistry& registry, HostSpelling& spelling) {
  if (const char* const chosen = ::getenv("FORGEYARD_LINKER"); chosen && *chosen) {
    return fromText(chosen, spelling);
  }
  const std::string set =
      registry.get().value(registry_keys::kBuildTool, registry_keys::kLinker).value_or("");
  return fromText(set.empty() ? kDefaultPrefix : std::string_view(set), spelling);
}

std::vector<std::string> runtimeDirectories(const LinkerTools& tools, const std::string& temporaryFile) {
  std::vector<std::string> directories;
  for (const std::string name : {"crt1.o", "crtbeginT.o"}) {
    const ChildResult asked =
        runChild({{tools.driver, "-print-file-name=" + name}, temporaryFile, [](std::string_view) {}});
    std::string file = asked.succeeded() ? readWholeFile(temporaryFile).value_or("") : "";
    if (file.ends_with('\n')) file.pop_back();
    if (file.find('/') == file.npos) continue;  // not found: the name comes back as it is
    const std::string directory = realDirectoryOf(file);
    if (std::find(directories.begin(), directories.end(), directory) == directories.end()) {
      directories.push_back(directory);
    }
  }
  return directories;
}

}  // namespace forgeyard
