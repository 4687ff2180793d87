#include "platform/files/file_system.h"

#include <atomic>

#include "platform/files/host_files.h"

namespace forgeyard {
namespace {

// Null: the host's.
std::atomic<FileSystem*> replacement{nullptr};

}  // namespace

bool FileSystem::isDirectory(const BString& path) {
  const auto found = status(path);
  return found && found->directory;
}

bool FileSystem::isReadOnly(const BString& path) {
  const auto found = status(path);
  return found && found->readOnly;
}

std::optional<FileTime> FileSystem::modified(const BString& path) {
  const auto found = status(path);
  return found ? found->comparableTime() : std::nullopt;
}

bool FileSystem::createDirectories(const BString& path) {
  if (isDirectory(path)) return true;
  const std::u16string_view text = path.view();
  for (std::size_t i = 1; i < text.size(); ++i) {
    if (text[i] == u'\\' || text[i] == u'/') static_cast<void>(createDirectory(text.substr(0, i)));
  }
  return !createDirectory(path);
}

FileSystem& files() {
  FileSystem* const replaced = replacement.load(std::memory_order_acquire);
  return replaced ? *replaced : hostFiles();
}

ScopedFileSystem::ScopedFileSystem(FileSystem& substitute) : previous_(replacement.exchange(&substitute)) {}

ScopedFileSystem::~ScopedFileSystem() {
  replacement.store(previous_, std::memory_order_release);
}

}  // namespace forgeyard
