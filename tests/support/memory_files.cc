#include "tests/support/memory_files.h"

#include <algorithm>

#include "platform/files/os_error.h"
#include "platform/text/fold.h"

namespace forgeyard {
namespace {

using detail::errorOf;

// The text by which a path is found: one kind of separator, none at the end, no case.
std::string keyOf(const BString& path) {
  std::string key = folded(path.narrow());
  std::replace(key.begin(), key.end(), '/', '\\');
  while (!key.empty() && key.back() == '\\') key.pop_back();
  return key;
}

std::string parentOf(const std::string& key) {
  const std::size_t separator = key.rfind('\\');
  return separator == std::string::npos ? std::string() : key.substr(0, separator);
}

}  // namespace

MemoryFileSystem::MemoryFileSystem() {
  nodes_[""] = {true, false, now_, {}};
}

MemoryFileSystem::Node* MemoryFileSystem::find(const BString& path) {
  const auto found = nodes_.find(keyOf(path));
  return found == nodes_.end() ? nullptr : &found->second;
}

void MemoryFileSystem::put(const BString& path, std::string contents) {
  const std::string key = keyOf(path);
  for (std::string parent = parentOf(key); !parent.empty(); parent = parentOf(parent)) {
    nodes_.try_emplace(parent, Node{true, false, now_, {}});
  }
  nodes_[key] = {false, false, now_, std::move(contents)};
}

void MemoryFileSystem::touch(const BString& path) {
  if (Node* node = find(path)) node->modified = now_;
}

std::string MemoryFileSystem::contents(const BString& path) const {
  const auto found = nodes_.find(keyOf(path));
  return found == nodes_.end() ? std::string() : found->second.contents;
}

std::optional<FileStatus> MemoryFileSystem::status(const BString& path) {
  ++statusCalls_;
  const Node* node = find(path);
  if (!node || path.empty()) return std::nullopt;
  return FileStatus{node->directory, node->readOnly, true, node->modified, node->contents.size()};
}

std::error_code MemoryFileSystem::createDirectory(const BString& path) {
  const std::string key = keyOf(path);
  if (const Node* node = find(path)) return node->directory ? std::error_code() : errorOf(EEXIST);
  const auto parent = nodes_.find(parentOf(key));
  if (parent == nodes_.end()) return errorOf(ENOENT);
  if (!parent->second.directory) return errorOf(ENOTDIR);
  nodes_[key] = {true, false, now_, {}};
  return {};
}

std::error_code MemoryFileSystem::deleteFile(const BString& path) {
  const Node* node = find(path);
  if (!node) return errorOf(ENOENT);
  if (node->directory) return errorOf(EISDIR);
  if (node->readOnly) return errorOf(EACCES);
  nodes_.erase(keyOf(path));
  deleted_.push_back(path);
  return {};
}

// Puts a file in place of what is there, if that may be overwritten.
std::error_code MemoryFileSystem::write(const BString& path, Node file) {
  const Node* node = find(path);
  if (node && node->directory) return errorOf(EISDIR);
  if (node && node->readOnly) return errorOf(EACCES);
  const std::string key = keyOf(path);
  const auto parent = nodes_.find(parentOf(key));
  if (parent == nodes_.end()) return errorOf(ENOENT);
  if (!parent->second.directory) return errorOf(ENOTDIR);
  nodes_[key] = std::move(file);
  created_.push_back(path);
  return {};
}

std::error_code MemoryFileSystem::copyFile(const BString& from, const BString& to) {
  const Node* source = find(from);
  if (!source) return errorOf(ENOENT);
  if (source->directory) return errorOf(EISDIR);
  return source == find(to) ? errorOf(EINVAL) : write(to, *source);
}

std::error_code MemoryFileSystem::createEmpty(const BString& path) {
  return write(path, {false, false, now_, {}});
}

std::error_code MemoryFileSystem::setReadOnly(const BString& path, bool readOnly) {
  Node* node = find(path);
  if (!node) return errorOf(ENOENT);
  node->readOnly = readOnly;
  return {};
}

std::error_code MemoryFileSystem::readWhole(const BString& path, std::size_t limit, std::string& contents) {
  const Node* node = find(path);
  if (!node) return errorOf(ENOENT);
  if (node->directory) return errorOf(EISDIR);
  if (node->contents.size() > limit) return errorOf(EFBIG);
  contents = node->contents;
  return {};
}

}  // namespace forgeyard
