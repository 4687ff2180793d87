#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>

#include "platform/text/bstring.h"

namespace forgeyard {

// A last write time in nanoseconds since 1970 (UTC).
using FileTime = std::int64_t;

struct FileStatus {
  bool directory = false;
  bool readOnly = false;  // the owner's write bit is clear
  bool readable = false;  // this process could open it for reading
  FileTime modified = 0;
  std::uint64_t size = 0;  // in bytes
  // A regular file with this one name, spelled as the disk has it: neither a link nor linked elsewhere.
  bool plain = false;

  // What decides whether a file is out of date: the write time of a file that could be opened for reading.
  std::optional<FileTime> comparableTime() const {
    return directory || !readable ? std::nullopt : std::optional<FileTime>(modified);
  }
};

// The disk as the model sees it: every path is an absolute backslash path, and becomes a host path in here
// alone. A drive that isn't mapped is a file that doesn't exist. A name that doesn't exist as spelled is
// looked up without regard to case. Nothing throws but std::bad_alloc; a failed operation says why in its
// error code and leaves the disk as it was. Any thread may call.
class FileSystem {
 public:
  virtual ~FileSystem() = default;

  // Empty if there is nothing; symbolic links are followed.
  virtual std::optional<FileStatus> status(const BString& path) = 0;
  bool exists(const BString& path) { return status(path).has_value(); }
  bool isDirectory(const BString& path);
  bool isReadOnly(const BString& path);
  // The last write time of a file that can be opened for reading; empty for anything else, directories
  // included.
  std::optional<FileTime> modified(const BString& path);

  // One level. Succeeds if the directory stands already.
  virtual std::error_code createDirectory(const BString& path) = 0;
  // All levels that are missing; failures on the way are ignored. Returns whether the directory stands.
  bool createDirectories(const BString& path);

  // Files only. Fails for a file that is read-only, whatever the directory around it permits.
  virtual std::error_code deleteFile(const BString& path) = 0;
  // Overwrites unless the destination is read-only. Write time and read-only state come along. The
  // destination holds the old contents or the new ones, never a part.
  virtual std::error_code copyFile(const BString& from, const BString& to) = 0;
  // An empty file with the present time; one that exists is emptied, unless it is read-only.
  virtual std::error_code createEmpty(const BString& path) = 0;
  // Takes the read-only state away (or puts it on).
  virtual std::error_code setReadOnly(const BString& path, bool readOnly) = 0;
  std::error_code setNormalAttributes(const BString& path) { return setReadOnly(path, false); }

  // Whether a FileChangeWatch tells what changes here.
  virtual bool isWatchable() const noexcept { return false; }

  // The whole contents. std::errc::file_too_large beyond `limit` bytes; `contents` then stays as it was.
  virtual std::error_code readWhole(const BString& path, std::size_t limit, std::string& contents) = 0;
};

// The process's disk: the host's own unless a test has put another in place.
FileSystem& files();

// Puts another disk in place of the host's for its life time. Not while other threads use files().
class ScopedFileSystem {
 public:
  explicit ScopedFileSystem(FileSystem& substitute);
  ~ScopedFileSystem();
  ScopedFileSystem(const ScopedFileSystem&) = delete;
  ScopedFileSystem& operator=(const ScopedFileSystem&) = delete;

 private:
  FileSystem* previous_;
};

}  // namespace forgeyard
