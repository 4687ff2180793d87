#pragma once

#include <optional>
#include <string>

namespace forgeyard::workbench {

struct LockHolder {
  long process = 0;
  std::string program;   // empty if the system doesn't tell
  bool stopped = false;  // suspended, by Ctrl-Z for example
};

// Who has the file locked, where the system tells.
std::optional<LockHolder> findLockHolder(const std::string& file);

// "process 4711 (forgeyard)".
std::string toText(const LockHolder& holder);

// The same of the file's holder; empty if there is none.
std::string lockHolder(const std::string& file);

// The sentence for a file that can't be opened because somebody has it.
std::string inUse(const std::string& file);

}  // namespace forgeyard::workbench
