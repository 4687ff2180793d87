#include "adapters/common/host_spelling.h"

#include <sys/stat.h>

namespace forgeyard {
namespace {

constexpr std::string_view kPieceEnds = "=,;@";

bool isOptionCharacter(char c) noexcept {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' || c == '_' ||
         c == '+';
}

bool beginsPath(std::string_view text) noexcept {
  return text.starts_with('\\') || (beginsWithDrive(text) && text[2] == '\\');
}

// Where in `text`, which begins an argument or stands behind a separator, a path may begin: at once or behind
// an option's letters, of which a drive takes the last. Its size if nowhere.
std::size_t pathStart(std::string_view text) noexcept {
  if (text.empty() || beginsPath(text)) return 0;
  if (text.front() != '-' && text.front() != '/') return text.size();
  std::size_t at = 1;
  while (at < text.size() && isOptionCharacter(text[at])) ++at;
  if (at > 1 && beginsPath(text.substr(at - 1))) return at - 1;
  return beginsPath(text.substr(at)) ? at : text.size();
}

// Where the path that begins at `start` ends. It runs on over a separator, which may be a part of a name,
// unless another path, an option, a further separator or nothing stands behind that.
std::size_t pathEnd(std::string_view text, std::size_t start) noexcept {
  for (std::size_t at = text.find_first_of(kPieceEnds, start); at < text.size();
       at = text.find_first_of(kPieceEnds, at + 1)) {
    const std::string_view rest = text.substr(at + 1);
    if (rest.empty() || rest.front() == '-' || kPieceEnds.find(rest.front()) != kPieceEnds.npos) return at;
    if (pathStart(rest) < rest.size()) return at;
  }
  return text.size();
}

// The first component of a path that begins with one backslash.
std::string_view firstComponent(std::string_view path) noexcept {
  path.remove_prefix(1);
  return path.substr(0, path.find_first_of("\\/"));
}

}  // namespace

void HostSpelling::readDrivesFor(std::string_view text) {
  if (drivesRead_ || !beginsWithDrive(text)) return;
  drivesRead_ = true;
  lookup_.setPaths(registry_.drives());
}

const HostPaths& HostSpelling::paths() {
  if (!drivesRead_) lookup_.setPaths(registry_.drives());
  drivesRead_ = true;
  return lookup_.paths();
}

std::string HostSpelling::path(std::string_view text) {
  readDrivesFor(text);
  return lookup_.resolve(text).value_or(std::string(text));
}

std::string HostSpelling::outputPath(std::string_view text) {
  readDrivesFor(text);
  const std::optional<std::string> direct = lookup_.paths().toHost(text);
  if (!direct) return std::string(text);
  if (kindOf(directoryOf(*direct)) == S_IFDIR) return *direct;
  return lookup_.resolve(text).value_or(*direct);
}

std::optional<std::string> HostSpelling::existing(std::string_view text) {
  readDrivesFor(text);
  return lookup_.existing(text);
}

bool HostSpelling::isFile(std::string_view text) {
  const auto found = existing(text);
  return found && kindOf(*found) == S_IFREG;
}

bool HostSpelling::isDirectory(std::string_view text) {
  const auto found = existing(text);
  return found && kindOf(*found) == S_IFDIR;
}

std::optional<std::string> HostSpelling::absolute(std::string_view text) {
  readDrivesFor(text);
  if (!beginsWithDrive(text)) {
    const std::string_view first = firstComponent(text);
    if (first.empty() || first == "." || first == "..") return std::nullopt;
    const auto directory = lookup_.existing(text.substr(0, first.size() + 1));
    if (!directory || kindOf(*directory) != S_IFDIR) return std::nullopt;
  }
  const auto direct = lookup_.paths().toHost(text);
  return !direct || kindOf(*direct) != 0 ? direct : lookup_.resolve(text);
}

std::string HostSpelling::argument(std::string_view text) {
  if (text.find('\\') == text.npos) return std::string(text);
  return spellPathsInArgument(text, [this](std::string_view path) { return absolute(path); });
}

std::string spellPathsInArgument(
    std::string_view argument, const std::function<std::optional<std::string>(std::string_view)>& hostPath) {
  std::string result;
  while (!argument.empty()) {
    const std::size_t start = pathStart(argument);
    const std::size_t end = pathEnd(argument, start);
    const auto spelled = start < end ? hostPath(argument.substr(start, end - start)) : std::nullopt;
    std::size_t done = end;
    if (spelled) {
      result.append(argument.substr(0, start)).append(*spelled);
    } else {
      const std::size_t separator = argument.find_first_of(kPieceEnds);
      done = separator == argument.npos ? argument.size() : separator + 1;
      result.append(argument.substr(0, done));
    }
    argument.remove_prefix(done);
  }
  return result;
}

}  // namespace forgeyard
