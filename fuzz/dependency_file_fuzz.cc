// The dependency files of compilers, on any bytes: names are parts of the text, in order and without blanks.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "tools/compiler/dependency_file_reader.h"

namespace {

void require(bool holds) {
  if (!holds) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const char* next = text.data();
  for (const std::string_view name : forgeyard::parseDependencyFile(text)) {
    // A blank stands before each, so no two names share a byte.
    require(name.data() > next && name.data() + name.size() <= text.data() + text.size());
    require(name.data()[-1] == ' ');
    require(name.find(' ') == std::string_view::npos && !name.starts_with('\\'));
    next = name.data() + name.size();
  }
  return 0;
}
