#pragma once

#include <sys/stat.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

#include "platform/files/descriptor.h"
#include "platform/storage/disk/file_calls.h"

namespace forgeyard::compound {

// An open file: reads and writes at offsets, and the lock that keeps other openers out. The lock belongs to
// the open file, so the system frees it when its holder dies. Failures throw StatusError. Shared by all
// streams that read from it; any thread may read.
class HostFile {
 public:
  HostFile(FileCalls& calls, int owned) noexcept : calls_(calls), descriptor_(owned) {}
  HostFile(const HostFile&) = delete;
  HostFile& operator=(const HostFile&) = delete;

  FileCalls& calls() const noexcept { return calls_; }
  int descriptor() const noexcept { return descriptor_.get(); }
  struct stat status() const;
  std::uint64_t size() const;

  // Fewer bytes than asked for only where the file ends.
  std::size_t readAt(std::uint64_t offset, std::span<std::uint8_t> out) const;
  void writeAt(std::uint64_t offset, std::span<const std::uint8_t> bytes);
  void sync();
  // Gives all space back; a failure leaves the space used.
  void discardContents() noexcept;

  // Throws STG_E_MEDIUMFULL if the process may not write files of that many bytes: writing on would raise
  // SIGXFSZ, which ends a program that has made no arrangements.
  static void requireAllowedSize(std::uint64_t bytes);

  // False when somebody else holds the file.
  bool tryLock();
  void unlock() noexcept;

 private:
  FileCalls& calls_;
  Descriptor descriptor_;
};

using SharedFile = std::shared_ptr<HostFile>;

}  // namespace forgeyard::compound
