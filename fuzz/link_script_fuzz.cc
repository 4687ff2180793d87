// Linker scripts and tool arguments are user's text: cutting them loses nothing, reading one ends with a copy
// of as many lines or with problems that name a place, and an argument in which no path is known stays as it
// is.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>

#include "adapters/common/host_spelling.h"
#include "adapters/common/temporary.h"
#include "adapters/common/whole_file.h"
#include "adapters/linker/link_script.h"
#include "adapters/linker/script_scanner.h"

namespace {

void require(bool holds) {
  if (!holds) std::abort();
}

void readAsScript(std::string_view text) {
  using namespace forgeyard;
  static const TemporaryDirectory directory("link-script-fuzz");
  static const std::vector<std::string> searched{directory.path()};
  static UserRegistry registry{Registry()};
  static HostSpelling spelling(registry);
  const std::string file = directory.file("fuzzed.lk");
  require(writeWholeFile(file, text) == 0);
  LinkScript script(spelling, searched, directory.path());
  const bool good = script.read(file);
  require(good == script.problems().empty());
  for (const std::string& problem : script.problems()) require(problem.find(".lk:") != problem.npos);
  require(!script.copy().empty());
  const auto lines = [](std::string_view in) { return std::count(in.begin(), in.end(), '\n'); };
  if (good) require(lines(readWholeFile(script.copy()).value_or("")) == lines(text));
  require(!script.explain("ld:" + script.copy() + ":0: syntax error").empty());
  script.explain("ld: region `" + std::string(text) + "' overflowed by 1 bytes");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace forgeyard;
  const std::string_view text(reinterpret_cast<const char*>(data), size);

  std::string together;
  std::size_t line = 1;
  ScriptScanner scanner(text);
  for (ScriptToken token = scanner.next(); token.kind != ScriptToken::Kind::End; token = scanner.next()) {
    require(!token.text.empty() && token.line >= line);
    line = token.line;
    together += token.text;
  }
  require(together == text);

  readAsScript(text);

  const auto unknown = [](std::string_view path) -> std::optional<std::string> {
    require(!path.empty());
    return std::nullopt;
  };
  require(spellPathsInArgument(text, unknown) == text);
  const auto itself = [](std::string_view path) { return std::optional<std::string>(path); };
  require(spellPathsInArgument(text, itself) == text);
  return 0;
}
