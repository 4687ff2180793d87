#pragma once

#include <algorithm>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "platform/paths/command_line.h"
#include "tests/platform/support/scratch.h"

namespace forgeyard {

inline std::string withBackslashes(std::string text) {
  std::replace(text.begin(), text.end(), '/', '\\');
  return text;
}

// A directory for one test, with files in it, that commands name as the components do.
class ScratchTree {
 public:
  const std::string& path() const { return scratch_.path(); }
  std::string operator/(const std::string& name) const { return scratch_ / name; }
  // The model's spelling.
  std::string model(const std::string& name) const { return withBackslashes(scratch_ / name); }

  // Makes missing directories; gives the host path.
  std::string put(const std::string& name, const std::string& content = {}) const {
    std::string file = scratch_ / name;
    std::filesystem::create_directories(std::filesystem::path(file).parent_path());
    writeFile(file, content);
    return file;
  }
  void makeDirectory(const std::string& name) const { std::filesystem::create_directories(scratch_ / name); }
  bool has(const std::string& name) const { return std::filesystem::exists(scratch_ / name); }
  std::string content(const std::string& name) const { return readFile(scratch_ / name); }
  // What lies directly in a directory, sorted.
  std::vector<std::string> names(const std::string& directory) const {
    std::vector<std::string> result;
    for (const auto& entry : std::filesystem::directory_iterator(scratch_ / directory)) {
      result.push_back(entry.path().filename());
    }
    std::sort(result.begin(), result.end());
    return result;
  }

  // `text` with every "~" replaced by this directory in the model's spelling, "%" by the host's.
  std::string in(std::string_view text) const {
    std::string result;
    for (const char c : text) {
      if (c == '~') {
        result += withBackslashes(path());
      } else if (c == '%') {
        result += path();
      } else {
        result += c;
      }
    }
    return result;
  }
  // Cut into words by the rules of a command line.
  std::vector<std::string> words(std::string_view text) const { return CommandLineToArgvW(in(text)); }

 private:
  ScratchDirectory scratch_;
};

// Joined with single blanks, for comparison with one text.
inline std::string joined(const std::vector<std::string>& words) {
  std::string text;
  for (const std::string& word : words) text.append(text.empty() ? "" : " ").append(word);
  return text;
}

}  // namespace forgeyard
