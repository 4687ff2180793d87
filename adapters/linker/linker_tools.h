#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "adapters/common/host_spelling.h"

namespace forgeyard {

// The tools of one tool chain that make a link.
struct LinkerTools {
  std::string ld, objcopy, nm, readelf, driver;

  // `text` is a prefix (`mipsel-linux-gnu-`, `/opt/t/bin/`) or the linker itself
  // (`/opt/t/bin/mipsel-elf-ld`).
  static LinkerTools fromText(std::string_view text, HostSpelling& spelling);
  // What FORGEYARD_LINKER says, else the value "Linker" of the registry, else the MIPS tool chain of this
  // system.
  static LinkerTools configured(UserRegistry& registry, HostSpelling& spelling);
};

// The directories in which the C compiler's driver has the start-up files and its own libraries, for scripts
// that link with the C library. Empty where there is no driver or it has none.
std::vector<std::string> runtimeDirectories(const LinkerTools& tools, const std::string& temporaryFile);

}  // namespace forgeyard
