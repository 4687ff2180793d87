#include "workbench/base/lock_holder.h"

#include <sys/stat.h>
#include <sys/sysmacros.h>

#include <array>
#include <cstdio>
#include <fstream>
#include <sstream>

namespace forgeyard::workbench {

namespace {

// The name that /proc has for the process; it may have gone by now.
std::string programOf(long process) {
  std::ifstream file("/proc/" + std::to_string(process) + "/comm");
  std::string name;
  std::getline(file, name);
  return name;
}

// Its state is the letter behind the name in parentheses, which may hold any character.
bool isStopped(long process) {
  std::ifstream file("/proc/" + std::to_string(process) + "/stat");
  std::string line;
  std::getline(file, line);
  const std::size_t end = line.rfind(')');
  return end != line.npos && end + 2 < line.size() && line[end + 2] == 'T';
}

}  // namespace

std::optional<LockHolder> findLockHolder(const std::string& file) {
  struct stat status {};
  if (::stat(file.c_str(), &status) != 0) return std::nullopt;
  std::array<char, 64> wanted{};
  std::snprintf(wanted.data(), wanted.size(), "%02x:%02x:%lu", ::major(status.st_dev), ::minor(status.st_dev),
                static_cast<unsigned long>(status.st_ino));
  std::ifstream locks("/proc/locks");
  for (std::string line; std::getline(locks, line);) {
    // "1: FLOCK  ADVISORY  WRITE 4711 08:01:123456 0 EOF"; waiting ones have "->" behind the number.
    std::istringstream words(line);
    std::string number, kind, strictness, access, place;
    long process = 0;
    if (!(words >> number >> kind >> strictness >> access >> process >> place)) continue;
    if (place != wanted.data() || process <= 0) continue;
    return LockHolder{process, programOf(process), isStopped(process)};
  }
  return std::nullopt;
}

std::string toText(const LockHolder& holder) {
  return "process " + std::to_string(holder.process) +
         (holder.program.empty() ? "" : " (" + holder.program + ")");
}

std::string lockHolder(const std::string& file) {
  const auto holder = findLockHolder(file);
  return holder ? toText(*holder) : "";
}

std::string inUse(const std::string& file) {
  const std::string holder = lockHolder(file);
  return file + " is open in " + (holder.empty() ? "another process" : holder) + ".";
}

}  // namespace forgeyard::workbench
