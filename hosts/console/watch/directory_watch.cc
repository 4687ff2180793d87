#include "hosts/console/watch/directory_watch.h"

#include <sys/inotify.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <filesystem>

namespace forgeyard::console {

namespace {

namespace fs = std::filesystem;

constexpr std::uint32_t kEvents = IN_CLOSE_WRITE | IN_MODIFY | IN_ATTRIB | IN_CREATE | IN_DELETE |
                                  IN_MOVED_FROM | IN_MOVED_TO | IN_DELETE_SELF | IN_MOVE_SELF | IN_ONLYDIR;

// Other machines write on these without a word to this one's kernel.
bool isShared(const std::string& directory) {
  constexpr std::array<unsigned long, 5> kShares{0x6969, 0x517B, 0xFF534D42, 0xFE534D42, 0x01021997};
  struct statfs status {};
  return ::statfs(directory.c_str(), &status) == 0 &&
         std::find(kShares.begin(), kShares.end(), static_cast<unsigned long>(status.f_type)) !=
             kShares.end();
}

}  // namespace

DirectoryWatch::DirectoryWatch(const FileStates::Paths& files)
    : events_(::inotify_init1(IN_CLOEXEC | IN_NONBLOCK)), complete_(bool(events_)) {
  if (!events_) return;
  FileStates::Paths directories;
  for (const std::string& file : files) {
    directories.insert(fs::path(file).parent_path().string());
    // What a link leads to is written elsewhere.
    std::error_code error;
    if (!fs::is_symlink(file, error)) continue;
    const fs::path target = fs::canonical(file, error);
    if (!error) directories.insert(target.parent_path().string());
  }
  for (const std::string& directory : directories) watch(directory);
}

// The directory, or the lowest one above it that is there: it will show that the next one is made.
void DirectoryWatch::watch(std::string directory) {
  while (::inotify_add_watch(events_.get(), directory.c_str(), kEvents) < 0) {
    const bool missing = errno == ENOENT || errno == ENOTDIR;
    const fs::path above = fs::path(directory).parent_path();
    if (!missing || above == directory || above.empty()) {
      complete_ = false;
      return;
    }
    directory = above.string();
  }
  if (isShared(directory)) complete_ = false;
}

void DirectoryWatch::clear() noexcept {
  std::array<char, 4096> buffer;
  while (::read(events_.get(), buffer.data(), buffer.size()) > 0) {
  }
}

}  // namespace forgeyard::console
