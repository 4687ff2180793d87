#include "workbench/watch/file_states.h"

#include <sys/stat.h>

namespace forgeyard::workbench {

namespace {

constexpr std::int64_t kMissing = -1;
constexpr std::int64_t kUnlikeAny = -2;
constexpr std::int64_t kSecond = 1'000'000'000;

}  // namespace

FileStates::State FileStates::look(const std::string& path) {
  struct stat status {};
  if (::stat(path.c_str(), &status) != 0) return {kMissing, 0, 0};
  return {status.st_mtim.tv_sec * kSecond + status.st_mtim.tv_nsec, status.st_size, status.st_ino};
}

FileStates::FileStates(const Paths& paths) {
  for (const std::string& path : paths) states_.emplace(path, look(path));
}

FileStates FileStates::extendedTo(const FileStates& now, std::int64_t start) const {
  FileStates result = now;
  for (auto& [path, state] : result.states_) {
    if (const auto known = states_.find(path); known != states_.end()) {
      state = known->second;
    } else if (state.modified > start) {
      state.modified = kUnlikeAny;
    }
  }
  return result;
}

FileStates::Paths FileStates::changedSince(const FileStates& before) const {
  Paths result;
  for (const auto& [path, state] : states_) {
    const auto known = before.states_.find(path);
    if (known == before.states_.end() || known->second != state) result.insert(path);
  }
  return result;
}

}  // namespace forgeyard::workbench
