// Linker scripts and tool arguments are user's text: cutting them loses nothing, and an argument in which no
// path is known stays as it is.
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>

#include "adapters/common/host_spelling.h"
#include "adapters/linker/script_scanner.h"

namespace {

void require(bool holds) {
  if (!holds) std::abort();
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

  const auto unknown = [](std::string_view path) -> std::optional<std::string> {
    require(!path.empty());
    return std::nullopt;
  };
  require(spellPathsInArgument(text, unknown) == text);
  const auto itself = [](std::string_view path) { return std::optional<std::string>(path); };
  require(spellPathsInArgument(text, itself) == text);
  return 0;
}
