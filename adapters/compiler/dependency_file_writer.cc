#include "adapters/compiler/dependency_file_writer.h"

#include <stdlib.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>

#include "adapters/common/file_names.h"

namespace forgeyard {
namespace {

constexpr std::size_t kLongestName = 259;  // bytes: the component has a buffer of 260
constexpr std::string_view kNoBreakSpace = "\xC2\xA0";
// A file below a device can't exist.
constexpr std::string_view kNever = "/dev/null/";

std::string withoutBlanks(std::string_view text) {
  std::string result;
  for (const char c : text) {
    if (c == ' ') {
      result += kNoBreakSpace;
    } else {
      result += c;
    }
  }
  return result;
}

// One word with as much of the text as fits, for a reader; it names nothing.
std::string harmless(std::string_view text, std::size_t longest) {
  std::string word;
  for (const char c : text) word += static_cast<unsigned char>(c) < ' ' || c == '\\' ? '?' : c;
  word = withoutBlanks(word);
  if (word.size() <= longest) return word;
  std::size_t size = longest;
  while (size > 0 && (static_cast<unsigned char>(word[size]) & 0xC0) == 0x80) --size;  // whole characters
  word.resize(size);
  return word;
}

std::string neverExisting(std::string_view why, std::string_view name) {
  std::string word = std::string(kNever) + std::string(why) + "/";
  return word + harmless(name.substr(name.rfind('/') + 1), kLongestName - word.size());
}

std::string collapsed(std::string_view path) {
  std::vector<std::string_view> parts;
  for (std::size_t at = 0; at < path.size();) {
    const std::size_t end = std::min(path.find('/', at), path.size());
    const std::string_view part = path.substr(at, end - at);
    at = end + 1;
    if (part == ".." && !parts.empty()) parts.pop_back();
    if (!part.empty() && part != "." && part != "..") parts.push_back(part);
  }
  std::string result;
  for (const std::string_view part : parts) result.append("/").append(part);
  return result.empty() ? "/" : result;
}

std::string withDrive(std::string_view path, const DependencyPlace& place) {
  std::string_view directory = place.driveDirectory;
  while (directory.ends_with('/')) directory.remove_suffix(1);
  if (place.drive.empty() || !path.starts_with(directory)) return std::string(path);
  const std::string_view rest = path.substr(directory.size());
  return rest.starts_with('/') ? place.drive + std::string(rest) : std::string(path);
}

// One of the two words that the component skips: there must be one.
std::string skippedWord(std::string_view name) {
  return name.empty() ? "-" : harmless(name, kLongestName);
}

}  // namespace

std::string absoluteName(std::string_view name, std::string_view directory) {
  const std::string whole =
      name.starts_with('/') ? std::string(name) : std::string(directory) + "/" + std::string(name);
  const std::string result = collapsed(whole);
  const bool otherFile = whole.find("/..") != whole.npos && kindOf(whole) != 0 && !sameFile(whole, result);
  return otherFile ? whole : result;
}

std::optional<std::string> dependencyWord(std::string_view absoluteName, const DependencyPlace& place) {
  if (absoluteName.find_first_of(std::string_view("\\\n\r\0", 4)) != absoluteName.npos) return std::nullopt;
  const std::string word = withoutBlanks(withDrive(absoluteName, place));
  if (word.size() > kLongestName) return std::nullopt;
  return word;
}

std::string dependencyFileText(const MakeRule& rule, const DependencyPlace& place) {
  std::string text = skippedWord(place.target) + ": " + skippedWord(place.source);
  for (std::size_t i = 1; i < rule.prerequisites.size(); ++i) {
    const std::string& name = rule.prerequisites[i];
    const auto word = dependencyWord(absoluteName(name, place.directory), place);
    text += ' ' + word.value_or(neverExisting("name-not-carried", name));
  }
  if (!rule.complete) text += ' ' + neverExisting("list-not-understood", place.source);
  return text + "\r\n";
}

std::string spelledWorkingDirectory() {
  const char* const spelled = ::getenv("PWD");
  if (spelled && *spelled == '/' && sameFile(spelled, ".")) return spelled;
  char* const real = ::getcwd(nullptr, 0);
  std::string result = real ? real : "/";
  ::free(real);
  return result;
}

}  // namespace forgeyard
