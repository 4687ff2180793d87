#include "adapters/common/temporary.h"

#include <dirent.h>
#include <errno.h>
#include <stdlib.h>
#include <unistd.h>

#include <system_error>

namespace forgeyard {

TemporaryDirectory::TemporaryDirectory(std::string_view program) {
  const char* const chosen = ::getenv("TMPDIR");
  const std::string parent = chosen && *chosen ? chosen : "/tmp";
  path_ = parent + "/" + std::string(program) + "-XXXXXX";
  if (!::mkdtemp(path_.data())) {
    throw std::system_error(errno, std::generic_category(), "cannot make a temporary directory in " + parent);
  }
}

TemporaryDirectory::~TemporaryDirectory() {
  // It holds files only.
  if (DIR* const entries = ::opendir(path_.c_str())) {
    while (const dirent* const entry = ::readdir(entries)) ::unlink(file(entry->d_name).c_str());
    ::closedir(entries);
  }
  ::rmdir(path_.c_str());
}

}  // namespace forgeyard
