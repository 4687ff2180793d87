#include "platform/paths/host_path.h"

#include <algorithm>
#include <cstddef>

#include "platform/text/fold.h"

namespace forgeyard {
namespace {

bool isSeparator(char c) {
  return c == '\\' || c == '/';
}
bool isLetter(char c) {
  return foldAscii(c) >= 'a' && foldAscii(c) <= 'z';
}
std::size_t slotOf(char letter) {
  return static_cast<std::size_t>(foldAscii(letter) - 'a');
}

bool namesDrive(std::string_view path) {
  return path.size() >= 2 && path[1] == ':' && static_cast<unsigned char>(path[0]) < 0x80;
}

std::string withSlashes(std::string_view path) {
  std::string result(path);
  std::replace(result.begin(), result.end(), '\\', '/');
  return result;
}

std::string withBackslashes(std::string_view path) {
  std::string result(path);
  std::replace(result.begin(), result.end(), '/', '\\');
  return result;
}

bool covers(std::string_view directory, std::string_view path) {
  return path.starts_with(directory) && (path.size() == directory.size() || path[directory.size()] == '/');
}

std::string_view componentWith(std::string_view path, std::size_t at) {
  const std::size_t before = path.rfind('/', at);
  const std::size_t start = before == path.npos ? 0 : before + 1;
  return path.substr(start, path.find('/', at) - start);
}

bool isSpeakable(std::string_view hostPath, std::string* error) {
  const std::size_t bad = hostPath.find_first_of(std::string_view("\\\0", 2));
  if (!hostPath.empty() && bad == hostPath.npos) return true;
  if (!error) return false;
  if (hostPath.empty()) {
    *error = "an empty path names no file";
  } else if (hostPath[bad] == '\0') {
    *error = "a path with a null character in it names no file";
  } else {
    *error = std::string(hostPath) + ": the name \"" + std::string(componentWith(hostPath, bad)) +
             "\" has a backslash in it, which separates directories in a project; rename it";
  }
  return false;
}

}  // namespace

HostPaths::HostPaths() {
  drives_[slotOf('Z')] = "";
}

bool HostPaths::mapDrive(char letter, std::string_view hostDirectory) {
  if (!isLetter(letter)) return false;
  if (hostDirectory.empty()) {
    drives_[slotOf(letter)].reset();
    return true;
  }
  if (hostDirectory.front() != '/' || hostDirectory.find('\0') != hostDirectory.npos) return false;
  while (hostDirectory.ends_with('/')) hostDirectory.remove_suffix(1);
  drives_[slotOf(letter)] = hostDirectory;
  return true;
}

bool HostPaths::mapDrive(std::string_view name, std::string_view hostDirectory) {
  return name.size() == 2 && name[1] == ':' && mapDrive(name[0], hostDirectory);
}

std::optional<std::string> HostPaths::drive(char letter) const {
  if (!isLetter(letter) || !drives_[slotOf(letter)]) return std::nullopt;
  return drives_[slotOf(letter)]->empty() ? "/" : *drives_[slotOf(letter)];
}

std::optional<std::string> HostPaths::toHost(std::string_view modelPath) const {
  if (modelPath.empty() || modelPath.find('\0') != modelPath.npos) return std::nullopt;
  if (namesDrive(modelPath)) {
    if (!isLetter(modelPath[0]) || !drives_[slotOf(modelPath[0])]) return std::nullopt;
    const std::string_view rest = modelPath.substr(2);
    std::string result = *drives_[slotOf(modelPath[0])];
    if (rest.empty() || !isSeparator(rest[0])) result += '/';
    return result + withSlashes(rest);
  }
  if (modelPath.size() >= 2 && isSeparator(modelPath[0]) && isSeparator(modelPath[1])) return std::nullopt;
  return withSlashes(modelPath);
}

std::optional<std::string> HostPaths::toModel(std::string_view hostPath, std::string* error,
                                              Spelling spelling) const {
  if (!isSpeakable(hostPath, error)) return std::nullopt;
  // Two backslashes at the start would name a network share.
  while (hostPath.starts_with("//")) hostPath.remove_prefix(1);
  if (namesDrive(hostPath)) return ".\\" + withBackslashes(hostPath);
  if (spelling == Spelling::Drive) return withDrive(hostPath);
  return withBackslashes(hostPath);
}

std::string HostPaths::withDrive(std::string_view hostPath) const {
  std::size_t best = drives_.size();
  for (std::size_t slot = 0; slot < drives_.size(); ++slot) {
    const std::optional<std::string>& directory = drives_[slot];
    if (!directory || directory->empty() || !covers(*directory, hostPath)) continue;
    if (best == drives_.size() || directory->size() > drives_[best]->size()) best = slot;
  }
  if (best == drives_.size()) return withBackslashes(hostPath);
  const std::string_view rest = hostPath.substr(drives_[best]->size());
  std::string result{static_cast<char>('A' + best), ':'};
  return result + (rest.empty() ? "\\" : withBackslashes(rest));
}

}  // namespace forgeyard
