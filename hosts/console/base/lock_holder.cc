#include "hosts/console/base/lock_holder.h"

#include <sys/stat.h>
#include <sys/sysmacros.h>

#include <array>
#include <cstdio>
#include <fstream>
#include <sstream>

namespace forgeyard::console {

namespace {

// The name that /proc has for the process; it may have gone by now.
std::string programOf(long process) {
  std::ifstream file("/proc/" + std::to_string(process) + "/comm");
  std::string name;
  std::getline(file, name);
  return name;
}

}  // namespace

std::string lockHolder(const std::string& file) {
  struct stat status {};
  if (::stat(file.c_str(), &status) != 0) return "";
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
    const std::string program = programOf(process);
    return "process " + std::to_string(process) + (program.empty() ? "" : " (" + program + ")");
  }
  return "";
}

std::string inUse(const std::string& file) {
  const std::string holder = lockHolder(file);
  return file + " is open in " + (holder.empty() ? "another process" : holder) + ".";
}

}  // namespace forgeyard::console
