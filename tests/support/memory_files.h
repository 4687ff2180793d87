#pragma once

#include <atomic>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "platform/files/file_system.h"

namespace forgeyard {

// A disk in memory with a clock turned by hand, for tests: put(u"\\p\\a.o"); tick(); put(u"\\p\\a.c").
// Ignores case. Directories above a file that is put stand by themselves; all
// others have to be created. One thread changes it; status() may be asked by several.
class MemoryFileSystem : public FileSystem {
 public:
  MemoryFileSystem();

  // The present time; every change stamps it.
  FileTime now() const noexcept { return now_; }
  void tick(FileTime nanoseconds = 1) noexcept { now_ += nanoseconds; }

  // Creates or overwrites, with all directories above.
  void put(const BString& path, std::string contents = {});
  // Gives an existing file the present time.
  void touch(const BString& path);
  // What a file holds; empty text if it isn't there.
  std::string contents(const BString& path) const;
  // Files that this interface's operations deleted and created (by createEmpty and copyFile), in order.
  const std::vector<BString>& deleted() const noexcept { return deleted_; }
  const std::vector<BString>& created() const noexcept { return created_; }
  // How often status() was asked: what a cache saves.
  std::size_t statusCalls() const noexcept { return statusCalls_; }

  std::optional<FileStatus> status(const BString& path) override;
  std::error_code createDirectory(const BString& path) override;
  std::error_code deleteFile(const BString& path) override;
  std::error_code copyFile(const BString& from, const BString& to) override;
  std::error_code createEmpty(const BString& path) override;
  std::error_code setReadOnly(const BString& path, bool readOnly) override;
  std::error_code readWhole(const BString& path, std::size_t limit, std::string& contents) override;

 private:
  struct Node {
    bool directory = false;
    bool readOnly = false;
    FileTime modified = 0;
    std::string contents;
  };
  Node* find(const BString& path);
  std::error_code write(const BString& path, Node file);

  std::map<std::string, Node> nodes_;  // by folded path; the root is ""
  FileTime now_ = 1'000'000'000;
  std::vector<BString> deleted_;
  std::vector<BString> created_;
  std::atomic<std::size_t> statusCalls_ = 0;
};

}  // namespace forgeyard
