// The path functions, the command line and the two kinds of text, on any bytes: what they give must agree
// with what they promise.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/paths/command_line.h"
#include "platform/paths/host_path.h"
#include "platform/paths/shell_path.h"
#include "platform/text/narrow.h"

namespace {

using namespace forgeyard;

void require(bool holds) {
  if (!holds) std::abort();
}

void checkText(std::string_view text) {
  const std::u16string wide = wideFromNarrow(text);
  require(wide.size() == wideLength(text));
  require(narrowFromWide(wide) == text);
}

void checkPath(std::string_view text) {
  const std::optional<std::string> canonical = PathCanonicalizeA(text, kNoPathLimit);
  require(canonical.has_value() && !canonical->empty() && canonical->size() <= text.size() + 1);
  require(text.ends_with(PathFindFileNameA(text)) && text.ends_with(PathFindExtensionA(text)));
  std::string path(text);
  require(PathRemoveFileSpecA(path) == (path != text) && text.starts_with(path));
  (void)PathRelativePathToA(text, PathKind::File, *canonical, PathKind::Directory);
}

void checkHost(std::string_view text) {
  const HostPaths paths;
  std::string error;
  const std::optional<std::string> model = paths.toModel(text, &error);
  require(model.has_value() == error.empty());
  if (!model) return;
  const std::optional<std::string> host = paths.toHost(*model);
  require(host.has_value() && paths.toModel(*host) == model);
}

void checkMatch(std::string_view file, std::string_view spec) {
  const bool narrow = PathMatchSpecA(file, spec);
  const bool wide = PathMatchSpecA(wideFromNarrow(file), wideFromNarrow(spec));
  // Halves of surrogate pairs, which begin with this byte, may be one character in one form and three in the
  // other.
  const bool halves = file.find('\xED') != file.npos || spec.find('\xED') != spec.npos;
  require(narrow == wide || halves);
  require(PathMatchSpecA(file, "*"));
}

void checkCommandLine(std::string_view text) {
  const std::vector<std::string> arguments = splitArguments(text);
  std::string again;
  for (const std::string& argument : arguments) again += quoteArgument(argument) + " ";
  require(splitArguments(again) == arguments);
  require(CommandLineToArgvW(text).empty() == text.empty());
  (void)splitToolCommand(text);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  checkText(text);
  checkPath(text);
  checkHost(text);
  checkCommandLine(text);
  const std::size_t half = text.find('\n');
  if (half != text.npos) checkMatch(text.substr(0, half), text.substr(half + 1));
  return 0;
}
