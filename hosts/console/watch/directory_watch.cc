#include "hosts/console/watch/directory_watch.h"

#include <sys/inotify.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <filesystem>
#include <optional>

namespace forgeyard::console {

using namespace workbench;

namespace {

namespace fs = std::filesystem;
using Directories = std::set<std::string>;

constexpr std::uint32_t kEvents = IN_CLOSE_WRITE | IN_MODIFY | IN_ATTRIB | IN_CREATE | IN_DELETE |
                                  IN_MOVED_FROM | IN_MOVED_TO | IN_DELETE_SELF | IN_MOVE_SELF | IN_ONLYDIR;
// As many as the system follows.
constexpr int kMostLinks = 40;

// Other machines write on these without a word to this one's kernel.
bool isShared(const std::string& directory) {
  constexpr std::array<unsigned long, 5> kShares{0x6969, 0x517B, 0xFF534D42, 0xFE534D42, 0x01021997};
  struct statfs status {};
  return ::statfs(directory.c_str(), &status) == 0 &&
         std::find(kShares.begin(), kShares.end(), static_cast<unsigned long>(status.f_type)) !=
             kShares.end();
}

// The path with the first link in it followed; the link's directory goes to `places`. Nothing without a link.
std::optional<fs::path> followed(const fs::path& path, Directories& places) {
  fs::path walked;
  for (auto part = path.begin(); part != path.end(); ++part) {
    std::error_code error;
    const fs::path target = fs::read_symlink(walked / *part, error);
    if (error) {
      walked /= *part;
      continue;
    }
    places.insert(walked.string());
    walked /= target;
    while (++part != path.end()) walked /= *part;
    return walked;
  }
  return std::nullopt;
}

// The directory in which the path ends, and those of all links on the way to it: a change in one of them can
// make the path another file.
void addPlaces(fs::path path, Directories& places) {
  for (int links = 0; links < kMostLinks; ++links) {
    std::optional<fs::path> next = followed(path, places);
    if (!next) break;
    path = std::move(*next);
  }
  places.insert(path.parent_path().string());
}

Directories placesOf(const FileStates::Paths& files) {
  Directories places;
  Directories known;
  for (const std::string& file : files) {
    const fs::path directory = fs::path(file).parent_path();
    // With a slash behind it the path ends in the directory.
    if (known.insert(directory.string()).second) addPlaces(directory / "", places);
    std::error_code error;
    if (fs::is_symlink(file, error)) addPlaces(file, places);
  }
  return places;
}

}  // namespace

DirectoryWatch::DirectoryWatch(const FileStates::Paths& files)
    : events_(::inotify_init1(IN_CLOEXEC | IN_NONBLOCK)), complete_(bool(events_)) {
  if (!events_) return;
  for (const std::string& directory : placesOf(files)) watch(directory);
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
