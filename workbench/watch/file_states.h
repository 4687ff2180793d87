#pragma once

#include <sys/types.h>

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace forgeyard::workbench {

// How files stood at a moment, by host path, to tell later which of them have changed since.
class FileStates {
 public:
  using Paths = std::set<std::string>;

  FileStates() = default;
  // As they stand now.
  explicit FileStates(const Paths& paths);

  // The states of the paths of `now`: what is known here as it is known here, the others as there, unless
  // they were written after `start` (nanoseconds since 1970): those count as changed.
  FileStates extendedTo(const FileStates& now, std::int64_t start) const;
  // The paths whose files stand otherwise here than they did in `before`, or aren't in that.
  Paths changedSince(const FileStates& before) const;

 private:
  struct State {
    std::int64_t modified = -1;  // nanoseconds since 1970; -1: no such file, -2: unlike any file
    off_t size = 0;
    ino_t inode = 0;

    friend bool operator==(const State&, const State&) = default;
  };
  static State look(const std::string& path);

  std::map<std::string, State> states_;
};

}  // namespace forgeyard::workbench
