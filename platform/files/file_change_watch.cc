#include "platform/files/file_change_watch.h"

#include <fcntl.h>
#include <linux/fs.h>
#include <linux/magic.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/statfs.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <climits>
#include <exception>
#include <fstream>
#include <thread>
#include <utility>

#include "platform/files/blocked_signals.h"
#include "platform/files/host_location.h"
#include "platform/files/os_error.h"
#include "platform/files/spelled_host.h"
#include "platform/text/fold.h"

namespace forgeyard {
namespace {

// With IN_MASK_ADD, since one file may be reached in two ways and the second must not undo the first.
constexpr std::uint32_t directoryEvents = IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO | IN_ATTRIB |
                                          IN_DELETE_SELF | IN_MOVE_SELF | IN_ONLYDIR | IN_DONT_FOLLOW |
                                          IN_MASK_ADD;
constexpr std::uint32_t fileEvents = IN_MODIFY | IN_CLOSE_WRITE | IN_ATTRIB | IN_DONT_FOLLOW | IN_MASK_ADD;

constexpr int maximumLinks = 40;  // as the system's own
constexpr std::size_t defaultAllowance = 4096;

// File systems that only this machine writes to and that tell case apart unless a directory's flags say
// otherwise. On any other kind, shares above all, changes may show no event.
bool isLocal(int directory) {
  struct statfs info {};
  if (::fstatfs(directory, &info) != 0) return false;
  constexpr std::array<std::uint32_t, 7> kinds{EXT4_SUPER_MAGIC,     XFS_SUPER_MAGIC, BTRFS_SUPER_MAGIC,
                                               F2FS_SUPER_MAGIC,     TMPFS_MAGIC,     RAMFS_MAGIC,
                                               OVERLAYFS_SUPER_MAGIC};
  return std::find(kinds.begin(), kinds.end(), static_cast<std::uint32_t>(info.f_type)) != kinds.end();
}

// Events name a file as the disk spells it, which there need not be the spelling that found it.
bool ignoresCase(int directory) {
  long flags = 0;
  return ::ioctl(directory, FS_IOC_GETFLAGS, &flags) == 0 && (flags & FS_CASEFOLD_FL);
}

// Whether a path that leads nowhere as spelled finds nothing either when case is ignored; not even a link.
bool hasNoOtherSpelling(const BString& path, std::string_view spelled) {
  const auto resolved = toHost(path);
  return resolved && *resolved == spelled;
}

// The system takes tens of milliseconds to take watches down, which nobody should have to wait for.
void closeAside(Descriptor watches) noexcept {
  const BlockedSignals blocked;
  try {
    std::thread([fd = watches.get()] { ::close(fd); }).detach();
    watches.release();
  } catch (const std::exception&) {
    // No thread to be had: then it is closed here.
  }
}

}  // namespace

FileChangeWatch::~FileChangeWatch() {
  closeAside(std::move(events_));
}

std::size_t FileChangeWatch::allowance() {
  std::size_t limit = 0;
  std::ifstream("/proc/sys/fs/inotify/max_user_watches") >> limit;
  return limit == 0 ? defaultAllowance : limit / 2;
}

std::unique_ptr<FileChangeWatch> FileChangeWatch::begin(std::size_t maximumWatches) {
  Descriptor events(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC));
  Descriptor mounts(::open("/proc/self/mountinfo", O_RDONLY | O_CLOEXEC));
  if (!events || !mounts) return nullptr;
  std::unique_ptr<FileChangeWatch> watch(
      new FileChangeWatch(std::move(events), std::move(mounts), maximumWatches));
  const Descriptor root(::open("/", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (!root || !isLocal(root.get()) || ignoresCase(root.get())) return nullptr;
  watch->root_ = watch->watchDirectory(nullptr, "/");
  if (!watch->root_) return nullptr;
  watch->root_->path.clear();
  watch->root_->parent = watch->root_;
  return watch;
}

FileChangeWatch::FileChangeWatch(Descriptor events, Descriptor mounts, std::size_t maximumWatches)
    : events_(std::move(events)),
      mounts_(std::move(mounts)),
      maximumWatches_(maximumWatches),
      drives_(drivesVersion()) {}

std::optional<FileChangeWatch::Place> FileChangeWatch::watch(const BString& path) {
  const SpelledHost host(path);
  if (exhausted_ || !host) return std::nullopt;
  const std::string_view text = host.c_str();
  const std::size_t slash = text.rfind('/');
  if (slash == text.npos || text.front() != '/') return std::nullopt;
  const std::string_view name = text.substr(slash + 1);
  if (name.empty() || name == "." || name == "..") return std::nullopt;
  Directory* const directory = directoryAt(text.substr(0, slash));
  if (!directory) return std::nullopt;
  if (const auto file = watchFile(*directory, name)) return Place{*file, true};
  if (errno != ENOENT || !hasNoOtherSpelling(path, text)) return std::nullopt;
  return Place{directory->missing, false};
}

// Directories, from the root down: each is watched before it is looked into

FileChangeWatch::Directory* FileChangeWatch::directoryAt(std::string_view hostPath) {
  std::string key(hostPath);
  if (const auto known = byPath_.find(key); known != byPath_.end()) return known->second;
  Directory* const found = descend(root_, hostPath, 0);
  return byPath_.emplace(std::move(key), found).first->second;
}

FileChangeWatch::Directory* FileChangeWatch::descend(Directory* from, std::string_view path, int links) {
  while (from && !path.empty()) {
    const std::size_t end = path.find('/');
    const std::string_view name = path.substr(0, end);
    path = end == path.npos ? std::string_view() : path.substr(end + 1);
    if (name.empty() || name == ".") continue;
    from = name == ".." ? from->parent : child(*from, name, links);
  }
  return from;
}

FileChangeWatch::Directory* FileChangeWatch::child(Directory& parent, std::string_view name, int links) {
  std::string key(name);
  if (const auto known = parent.children.find(key); known != parent.children.end()) return known->second;
  parent.steps.insert(folded(name));
  Directory* const found = enter(parent, parent.path + '/' + key, links);
  return parent.children.emplace(std::move(key), found).first->second;
}

FileChangeWatch::Directory* FileChangeWatch::enter(Directory& parent, const std::string& path, int links) {
  constexpr int flags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK;
  const Descriptor opened(::open(path.c_str(), flags));
  if (!opened) return errno == ENOTDIR || errno == ELOOP ? follow(parent, path, links) : nullptr;
  return isLocal(opened.get()) && !ignoresCase(opened.get()) ? watchDirectory(&parent, path) : nullptr;
}

// The directory that a link leads to. The link itself can't change without an event of its name.
FileChangeWatch::Directory* FileChangeWatch::follow(Directory& parent, const std::string& link, int links) {
  std::array<char, PATH_MAX> target;
  const ssize_t size = ::readlink(link.c_str(), target.data(), target.size());
  if (size <= 0 || links == maximumLinks) return nullptr;
  const std::string_view path(target.data(), static_cast<std::size_t>(size));
  return descend(path.front() == '/' ? root_ : &parent, path, links + 1);
}

FileChangeWatch::Directory* FileChangeWatch::watchDirectory(Directory* parent, const std::string& path) {
  const int descriptor = addWatch(path, directoryEvents);
  if (descriptor < 0) return nullptr;
  Owner& events = owner(descriptor);
  // A second way to a directory, by a mount: its events are the first one's.
  if (events.directory) return nullptr;
  if (events.file) displaced_.push_back(*events.file);
  auto made = std::make_unique<Directory>();
  made->path = path;
  made->parent = parent;
  made->missing = subjects_++;
  directories_.push_back(std::move(made));
  events = {directories_.back().get(), std::nullopt};
  return events.directory;
}

// Files

// Nothing, with errno set, if there is none or it can't be watched.
std::optional<FileChangeWatch::Subject> FileChangeWatch::watchFile(Directory& directory,
                                                                   std::string_view name) {
  const int descriptor = addWatch((directory.path + '/').append(name), fileEvents);
  if (descriptor < 0) return std::nullopt;
  Owner& events = owner(descriptor);
  errno = EISDIR;
  if (events.directory) return std::nullopt;
  const Subject subject = subjectFor(directory, name);
  // The file had another name, or has one by way of a mount: one of them hears of it, the other is void.
  if (events.file && *events.file != subject) displaced_.push_back(*events.file);
  events.file = subject;
  return subject;
}

FileChangeWatch::Subject FileChangeWatch::subjectFor(Directory& directory, std::string_view name) {
  const auto [known, isNew] = directory.files.try_emplace(folded(name), subjects_);
  if (isNew) ++subjects_;
  return known->second;
}

// The watch descriptor, or -1 with errno set.
int FileChangeWatch::addWatch(const std::string& path, std::uint32_t events) {
  const int descriptor =
      watches_ < maximumWatches_ ? ::inotify_add_watch(events_.get(), path.c_str(), events) : -1;
  if (descriptor >= 0) {
    const Owner& before = owner(descriptor);
    if (!before.directory && !before.file) ++watches_;
    return descriptor;
  }
  if (watches_ >= maximumWatches_) errno = ENOSPC;
  if (errno == ENOSPC || errno == ENOMEM) exhausted_ = true;
  return -1;
}

FileChangeWatch::Owner& FileChangeWatch::owner(int descriptor) {
  const auto at = static_cast<std::size_t>(descriptor);
  if (at >= owners_.size()) owners_.resize(std::max(at + 1, owners_.size() * 2));
  return owners_[at];
}

// Events

bool FileChangeWatch::collect(std::vector<Subject>& changed) {
  changed = std::exchange(displaced_, {});
  if (exhausted_ || drives_ != drivesVersion() || mountsChanged()) return false;
  alignas(inotify_event) std::array<char, 65536> buffer;
  for (;;) {
    const ssize_t size = detail::retry([&] { return ::read(events_.get(), buffer.data(), buffer.size()); });
    if (size <= 0) return size < 0 && errno == EAGAIN;
    for (const char* at = buffer.data(); at < buffer.data() + size;) {
      const auto& event = *reinterpret_cast<const inotify_event*>(at);
      if (!apply(event, changed)) return false;
      at += sizeof event + event.len;
    }
  }
}

bool FileChangeWatch::mountsChanged() const {
  pollfd mounts{mounts_.get(), POLLPRI, 0};
  const int ready = detail::retry([&] { return ::poll(&mounts, 1, 0); });
  return ready != 0;
}

bool FileChangeWatch::apply(const inotify_event& event, std::vector<Subject>& changed) {
  if (event.mask & (IN_Q_OVERFLOW | IN_UNMOUNT)) return false;
  if (event.wd < 0 || static_cast<std::size_t>(event.wd) >= owners_.size()) return false;
  const Owner& concerned = owners_[static_cast<std::size_t>(event.wd)];
  if (concerned.directory) return applyTo(*concerned.directory, event, changed);
  if (!concerned.file) return false;
  if (event.mask & IN_IGNORED) --watches_;  // the file is gone, and its descriptor isn't given again
  changed.push_back(*concerned.file);
  return true;
}

bool FileChangeWatch::applyTo(const Directory& directory, const inotify_event& event,
                              std::vector<Subject>& changed) {
  // What befalls the directory itself, its permissions included, concerns all below it.
  if (event.len == 0 || (event.mask & (IN_IGNORED | IN_DELETE_SELF | IN_MOVE_SELF))) return false;
  const std::string name = folded(event.name);
  if (directory.steps.contains(name)) return false;
  if (const auto file = directory.files.find(name); file != directory.files.end()) {
    changed.push_back(file->second);
  }
  if (event.mask & (IN_CREATE | IN_MOVED_TO)) changed.push_back(directory.missing);
  return true;
}

}  // namespace forgeyard
