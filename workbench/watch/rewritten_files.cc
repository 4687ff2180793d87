#include "workbench/watch/rewritten_files.h"

#include <fstream>
#include <functional>
#include <iterator>
#include <string_view>

namespace forgeyard::workbench {

namespace {

// A file that can't be read counts as empty.
std::size_t contentOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  const std::string content(std::istreambuf_iterator<char>(file), {});
  return std::hash<std::string_view>()(content);
}

}  // namespace

void RewrittenFiles::look() {
  for (auto& [path, content] : contents_) content = contentOf(path);
}

void RewrittenFiles::takeFrom(FileStates::Paths& changed) {
  std::erase_if(changed, [&](const std::string& path) {
    if (overlooked_.contains(path)) return true;
    const auto known = contents_.find(path);
    return known != contents_.end() && known->second == contentOf(path);
  });
  for (const std::string& path : changed) contents_.emplace(path, 0);
}

void RewrittenFiles::overlook(const FileStates::Paths& paths) {
  overlooked_.insert(paths.begin(), paths.end());
}

}  // namespace forgeyard::workbench
