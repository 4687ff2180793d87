#pragma once

#include <string>
#include <string_view>

namespace forgeyard {

// A directory of its own below TMPDIR, gone with everything in it when this object goes.
class TemporaryDirectory {
 public:
  // Throws std::system_error that names the directory and the reason.
  explicit TemporaryDirectory(std::string_view program);
  ~TemporaryDirectory();
  TemporaryDirectory(const TemporaryDirectory&) = delete;
  TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

  const std::string& path() const noexcept { return path_; }
  std::string file(std::string_view name) const { return path_ + "/" + std::string(name); }

 private:
  std::string path_;
};

}  // namespace forgeyard
