#include "adapters/common/temporary.h"

#include <dirent.h>
#include <errno.h>
#include <fcntl.h>
#include <stdlib.h>
#include <unistd.h>

#include <system_error>

namespace forgeyard {

namespace {

std::string parentDirectory() {
  const char* const chosen = ::getenv("TMPDIR");
  return chosen && *chosen ? chosen : "/tmp";
}

std::string nameTemplate(std::string_view program) {
  return parentDirectory() + "/" + std::string(program) + "-XXXXXX";
}

[[noreturn]] void fail(const char* what) {
  const int error = errno;
  throw std::system_error(error, std::generic_category(),
                          "cannot make a temporary " + std::string(what) + " in " + parentDirectory());
}

}  // namespace

TemporaryDirectory::TemporaryDirectory(std::string_view program) : path_(nameTemplate(program)) {
  if (!::mkdtemp(path_.data())) fail("directory");
}

TemporaryDirectory::~TemporaryDirectory() {
  // It holds files only.
  if (DIR* const entries = ::opendir(path_.c_str())) {
    while (const dirent* const entry = ::readdir(entries)) ::unlink(file(entry->d_name).c_str());
    ::closedir(entries);
  }
  ::rmdir(path_.c_str());
}

TemporaryFile::TemporaryFile(std::string_view program) : path_(nameTemplate(program)) {
  const int file = ::mkostemp(path_.data(), O_CLOEXEC);
  if (file < 0) fail("file");
  ::close(file);
}

TemporaryFile::~TemporaryFile() {
  ::unlink(path_.c_str());
}

}  // namespace forgeyard
