#pragma once

#include <stdlib.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

namespace forgeyard::fuzz {

inline void require(bool holds) {
  if (!holds) std::abort();
}

// A directory in memory if there is one, for as long as the process runs.
inline const std::string& scratchDirectory() {
  static const struct Directory {
    Directory() {
      const bool memory = std::filesystem::is_directory("/dev/shm");
      path =
          (memory ? "/dev/shm" : std::filesystem::temp_directory_path().string()) + "/forgeyard-fuzz-XXXXXX";
      require(mkdtemp(path.data()) != nullptr);
    }
    ~Directory() { std::filesystem::remove_all(path); }
    std::string path;
  } instance;
  return instance.path;
}

inline void putFile(const std::string& file, const std::uint8_t* data, std::size_t size) {
  std::ofstream(file, std::ios::binary)
      .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
}

}  // namespace forgeyard::fuzz
