#include "adapters/common/response_file.h"

#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <deque>
#include <optional>
#include <stdexcept>

#include "adapters/common/file_names.h"
#include "adapters/common/whole_file.h"

namespace forgeyard {
namespace {

constexpr std::string_view kSpaces = " \t\n\v\f\r";
constexpr std::size_t kMostFiles = 2000;

constexpr auto kTools = std::to_array<std::string_view>(
    {"addr2line", "ar",      "as",      "c++",    "c++filt", "cc",     "clang",      "clang++",
     "cpp",       "elfedit", "g++",     "gcc",    "gcc-ar",  "gcc-nm", "gcc-ranlib", "gfortran",
     "gnu-cc",    "gold",    "ld",      "ld.bfd", "ld.gold", "ld.lld", "nm",         "objcopy",
     "objdump",   "ranlib",  "readelf", "size",   "strings", "strip"});

bool isDigitOrDot(char c) {
  return (c >= '0' && c <= '9') || c == '.';
}

// Without "-12" or "-4.9" at the end.
std::string_view withoutVersion(std::string_view name) {
  std::size_t end = name.size();
  while (end > 0 && isDigitOrDot(name[end - 1])) --end;
  return end < name.size() && end > 0 && name[end - 1] == '-' ? name.substr(0, end - 1) : name;
}

class WordReader {
 public:
  explicit WordReader(std::string_view text) : text_(text) {}

  bool next(std::string& word) {
    at_ = std::min(text_.find_first_not_of(kSpaces, at_), text_.size());
    if (at_ == text_.size()) return false;
    word.clear();
    for (char quote = '\0'; at_ < text_.size(); ++at_) {
      const char c = text_[at_];
      if (c == '\\') {
        if (++at_ < text_.size()) word += text_[at_];
      } else if (quote != '\0') {
        if (c == quote) {
          quote = '\0';
        } else {
          word += c;
        }
      } else if (c == '\'' || c == '"') {
        quote = c;
      } else if (kSpaces.find(c) != kSpaces.npos) {
        break;
      } else {
        word += c;
      }
    }
    return true;
  }

 private:
  std::string_view text_;
  std::size_t at_ = 0;
};

std::optional<std::string> responseFile(const std::string& word) {
  if (!word.starts_with('@') || kindOf(word.substr(1)) == S_IFDIR) return std::nullopt;
  return readWholeFile(word.substr(1));
}

}  // namespace

std::string responseFileText(const std::vector<std::string>& words) {
  std::string text;
  for (const std::string& word : words) {
    if (word.empty()) text += "''";
    for (const char c : word) {
      if (c == '\\' || c == '\'' || c == '"' || kSpaces.find(c) != kSpaces.npos) text += '\\';
      text += c;
    }
    text += '\n';
  }
  return text;
}

std::vector<std::string> responseFileWords(std::string_view text) {
  std::vector<std::string> words;
  WordReader reader(text);
  for (std::string word; reader.next(word);) words.push_back(word);
  return words;
}

bool readsResponseFiles(std::string_view program) {
  const std::string_view name = withoutVersion(baseName(program));
  return std::any_of(kTools.begin(), kTools.end(), [&](std::string_view tool) {
    return name == tool ||
           (name.size() > tool.size() && name.ends_with(tool) && name[name.size() - tool.size() - 1] == '-');
  });
}

std::vector<std::string> withResponseFiles(const std::vector<std::string>& words) {
  std::vector<std::string> result;
  std::deque<std::string> left(words.begin(), words.end());
  for (std::size_t files = 0; !left.empty();) {
    const std::string word = std::move(left.front());
    left.pop_front();
    const std::optional<std::string> text = responseFile(word);
    if (!text) {
      result.push_back(word);
      continue;
    }
    if (++files > kMostFiles) throw std::runtime_error(word + ": response files name each other without end");
    const std::vector<std::string> more = responseFileWords(*text);
    left.insert(left.begin(), more.begin(), more.end());
  }
  return result;
}

}  // namespace forgeyard
