#pragma once

#include <string>
#include <string_view>

namespace forgeyard {

// A file without a name in any directory: gone with the last process that has it open, however that ends.
// Programs that this process starts don't inherit it, but can open its path.
class MemoryFile {
 public:
  // Throws std::system_error if the system has no memory or descriptor for it, or can't take the content.
  explicit MemoryFile(const char* purpose, std::string_view content = {});
  ~MemoryFile();
  MemoryFile(const MemoryFile&) = delete;
  MemoryFile& operator=(const MemoryFile&) = delete;

  int descriptor() const noexcept { return descriptor_; }
  // Under which the processes of this user can open it while this process has it.
  std::string path() const;
  // Keeps it when this process becomes another program.
  void keepOnExec() const noexcept;

 private:
  int descriptor_;
};

}  // namespace forgeyard
