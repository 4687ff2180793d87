#include "workbench/import/include_paths.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <filesystem>

#include "workbench/base/nearest.h"

namespace forgeyard::workbench {

namespace {

namespace fs = std::filesystem;

// Headers that lie with the compiler, not below /usr/include.
constexpr std::array<std::string_view, 14> kCompilerHeaders{
    "float.h",  "iso646.h", "limits.h", "stdalign.h",    "stdarg.h",  "stdatomic.h", "stdbool.h",
    "stddef.h", "stdint.h", "tgmath.h", "stdnoreturn.h", "varargs.h", "omp.h",       "unwind.h"};

// What the compiler finds by itself. Names without an extension are those of the C++ library.
bool isSystemHeader(const Include& include) {
  if (include.quoted) return false;
  if (include.name.find_first_of("./") == include.name.npos) return true;
  if (std::find(kCompilerHeaders.begin(), kCompilerHeaders.end(), include.name) != kCompilerHeaders.end())
    return true;
  return ::access(("/usr/include/" + include.name).c_str(), F_OK) == 0;
}

std::string normal(const std::string& path) {
  return fs::path(path).lexically_normal().string();
}

std::string beside(const std::string& file, const std::string& name) {
  const std::string_view directory = directoryName(file);
  return normal(directory.empty() ? name : std::string(directory) + "/" + name);
}

// The directory in which `name` leads to the path.
std::string rootOf(const std::string& path, const std::string& name) {
  return path.size() == name.size() ? "." : path.substr(0, path.size() - name.size() - 1);
}

std::size_t commonLength(std::string_view a, std::string_view b) {
  return static_cast<std::size_t>(std::mismatch(a.begin(), a.end(), b.begin(), b.end()).first - a.begin());
}

}  // namespace

IncludePaths::IncludePaths(const SourceTree& tree) : root_(tree.root) {
  for (const TreeFile& file : tree.files) {
    files_.insert(file.path);
    byName_[std::string(fileName(file.path))].push_back(file.path);
  }
}

std::vector<std::string> IncludePaths::candidatesFor(const std::string& name) const {
  std::vector<std::string> found;
  const auto same = byName_.find(std::string(fileName(name)));
  if (same == byName_.end()) return found;
  for (const std::string& path : same->second) {
    if (path == name || path.ends_with("/" + name)) found.push_back(path);
  }
  return found;
}

// Of a tree that is a part of a larger one, whose root the name counts from.
std::optional<std::string> IncludePaths::aboveRoot(const std::string& name) const {
  constexpr int highest = 3;
  std::string directory = root_;
  std::string relative;
  for (int up = 0; up < highest && directoryName(directory).size() > 1; ++up) {
    directory = directoryName(directory);
    relative += relative.empty() ? ".." : "/..";
    if (::access((fs::path(directory) / name).c_str(), F_OK) == 0) return relative;
  }
  return std::nullopt;
}

void IncludePaths::take(const std::string& path) {
  if (kindOfFile(path) == FileKind::Compiled) includedSources_.insert(path);
}

void IncludePaths::add(const std::string& file, const std::vector<Include>& includes) {
  for (const Include& include : includes) {
    if (include.quoted) {
      const std::string near = beside(file, include.name);
      if (files_.contains(near)) {
        take(near);
        continue;
      }
    }
    if (settled_.contains(include.name) || open_.contains(include.name)) continue;
    if (isSystemHeader(include)) {
      system_.insert(include.name);
      continue;
    }
    const std::string name = normal(include.name);
    Question question{file, candidatesFor(name)};
    if (!question.candidates.empty()) {
      open_.emplace(include.name, std::move(question));
      openOrder_.push_back(include.name);
      continue;
    }
    settled_.insert(include.name);
    if (const auto above = aboveRoot(name)) {
      above_.insert(*above);
      continue;
    }
    if (include.quoted && ::access(("/usr/include/" + include.name).c_str(), F_OK) != 0)
      missing_.emplace_back(include.name, file);
  }
}

std::vector<std::string> IncludePaths::directories(Notes& notes) {
  std::set<std::string> chosen;
  for (const std::string& name : openOrder_) {
    const Question& question = open_.at(name);
    if (question.candidates.size() != 1) continue;
    chosen.insert(rootOf(question.candidates.front(), normal(name)));
    take(question.candidates.front());
  }
  for (const std::string& name : openOrder_) {
    const Question& question = open_.at(name);
    if (question.candidates.size() == 1) continue;
    const auto isChosen = [&](const std::string& path) {
      return chosen.contains(rootOf(path, normal(name)));
    };
    auto found = std::find_if(question.candidates.begin(), question.candidates.end(), isChosen);
    if (found == question.candidates.end()) {
      found = std::max_element(question.candidates.begin(), question.candidates.end(),
                               [&](const std::string& a, const std::string& b) {
                                 return commonLength(a, question.file) < commonLength(b, question.file);
                               });
      chosen.insert(rootOf(*found, normal(name)));
    }
    notes.add("Found at several places, of which the first in IncludePath counts",
              name + " (" + enumeration(question.candidates) + ")");
  }
  for (const auto& [name, file] : missing_)
    notes.add("Included, and nowhere in the tree", std::string(name).append(" (by ").append(file) + ")");
  chosen.insert(above_.begin(), above_.end());
  return {chosen.begin(), chosen.end()};
}

}  // namespace forgeyard::workbench
