#include "platform/paths/host_lookup.h"

#include <sys/stat.h>

#include <cstddef>

namespace forgeyard {
namespace {

bool exists(const std::string& path) {
  struct stat status {};
  return stat(path.c_str(), &status) == 0;
}

// The length of the part before the last component; 0 if there is none, and for what stands in the root.
std::size_t parentLength(std::string_view path, std::size_t length) {
  const std::size_t slash = length == 0 ? path.npos : path.rfind('/', length - 1);
  length = slash == path.npos ? 0 : slash;
  while (length > 0 && path[length - 1] == '/') --length;
  return length;
}

std::size_t existingLength(std::string_view path) {
  std::size_t length = parentLength(path, path.size());
  while (length > 0 && !exists(std::string(path.substr(0, length)))) length = parentLength(path, length);
  return length;
}

std::string joined(const std::string& directory, std::string_view name) {
  std::string path = directory;
  if (!path.empty() && path.back() != '/') path += '/';
  path += name;
  return path;
}

}  // namespace

std::optional<std::string> HostLookup::existing(std::string_view modelPath) {
  const std::optional<std::string> path = paths_.toHost(modelPath);
  if (!path) return std::nullopt;
  Walk found = walk(*path);
  return found.found ? std::optional(std::move(found.path)) : std::nullopt;
}

std::optional<std::string> HostLookup::resolve(std::string_view modelPath) {
  const std::optional<std::string> path = paths_.toHost(modelPath);
  if (!path) return std::nullopt;
  return walk(*path).path;
}

HostLookup::Walk HostLookup::walk(const std::string& hostPath) {
  if (exists(hostPath)) return {hostPath, true};
  std::string_view rest = hostPath;
  while (rest.size() > 1 && rest.back() == '/') rest.remove_suffix(1);
  const std::string_view trailing = std::string_view(hostPath).substr(rest.size());
  const std::size_t known = existingLength(rest);
  Walk result{known == 0 && rest.front() == '/' ? "/" : std::string(rest.substr(0, known)), true};
  rest.remove_prefix(known);
  while (!rest.empty()) {
    const std::size_t start = rest.find_first_not_of('/');
    if (start == rest.npos) break;
    const std::size_t end = rest.find('/', start);
    const std::string_view name = rest.substr(start, end - start);
    const std::optional<std::string> actual = actualName(result.path, name);
    if (!actual) return {joined(result.path, rest.substr(start)).append(trailing), false};
    result.path = joined(result.path, *actual);
    rest = end == rest.npos ? std::string_view() : rest.substr(end);
  }
  result.path += trailing;
  result.found = exists(result.path);  // a link to nothing has a name, too
  return result;
}

std::optional<std::string> HostLookup::actualName(const std::string& directory, std::string_view name) {
  if (exists(joined(directory, name))) return std::string(name);
  return cache_.find(directory.empty() ? "." : directory, name);
}

}  // namespace forgeyard
