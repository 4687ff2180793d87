#include "platform/storage/disk/model_path.h"

#include <optional>

#include "platform/com/status.h"
#include "platform/files/host_files.h"

namespace forgeyard::compound {

std::string hostPathOf(const BString& path) {
  std::optional<std::string> host = toHost(path);
  if (!host) throw StatusError(STG_E_PATHNOTFOUND);
  return *std::move(host);
}

}  // namespace forgeyard::compound
