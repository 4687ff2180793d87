#include "platform/storage/disk/file_attributes.h"

#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstring>

namespace forgeyard::compound {
namespace {

constexpr mode_t kPermissions = 07777;

void copyOwnerAndMode(int from, int to) noexcept {
  struct stat old {};
  struct stat fresh {};
  if (::fstat(from, &old) != 0 || ::fstat(to, &fresh) != 0) return;
  mode_t mode = old.st_mode & kPermissions;
  const bool sameGroup = old.st_gid == fresh.st_gid || ::fchown(to, static_cast<uid_t>(-1), old.st_gid) == 0;
  if (!sameGroup) mode = (mode & ~static_cast<mode_t>(S_IRWXG | S_ISGID)) | ((mode & S_IRWXO) << 3);
  if (old.st_uid != fresh.st_uid && ::fchown(to, old.st_uid, static_cast<gid_t>(-1)) != 0) {
    mode &= ~static_cast<mode_t>(S_ISUID);
  }
  // Last, since a change of the owner takes bits away.
  static_cast<void>(::fchmod(to, mode));
}

void copyExtendedAttributes(int from, int to) noexcept {
  std::array<char, 4096> names;
  std::array<char, 4096> value;
  const ssize_t length = ::flistxattr(from, names.data(), names.size());
  for (const char* name = names.data(); length > 0 && name < names.data() + length;
       name += std::strlen(name) + 1) {
    const ssize_t size = ::fgetxattr(from, name, value.data(), value.size());
    if (size >= 0) static_cast<void>(::fsetxattr(to, name, value.data(), static_cast<std::size_t>(size), 0));
  }
}

}  // namespace

void copyAttributes(const HostFile& from, const HostFile& to) noexcept {
  copyOwnerAndMode(from.descriptor(), to.descriptor());
  copyExtendedAttributes(from.descriptor(), to.descriptor());
}

}  // namespace forgeyard::compound
