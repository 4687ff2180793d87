// Sources of any bytes: each include that is read stands in the text, in order, and line ends of other
// systems change nothing.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "workbench/import/source_text.h"

namespace {

void require(bool holds) {
  if (!holds) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace forgeyard::workbench;
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  std::size_t at = 0;
  for (const Include& include : readSourceText(text).includes) {
    const std::string whole = (include.quoted ? "\"" : "<") + include.name + (include.quoted ? "\"" : ">");
    at = text.find(whole, at);
    require(at != text.npos);
    at += whole.size();
    require(include.name.find('\n') == include.name.npos);
  }
  return 0;
}
