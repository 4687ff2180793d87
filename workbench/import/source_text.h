#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace forgeyard::workbench {

struct Include {
  std::string name;     // as it stands between the quotes or brackets
  bool quoted = false;  // the directory of the file itself is looked in first
};

enum class MainFunction : std::uint8_t {
  None,
  Conditional,  // inside of #if or #ifdef: a test of the file's own, most often
  Present,
};

// What the text of a source says about how it is built.
struct SourceFacts {
  std::vector<Include> includes;
  MainFunction main = MainFunction::None;
};

// Of C, C++ and assembler sources. Takes what stands there as it is, without knowing which conditions hold.
SourceFacts readSourceText(std::string_view text);

}  // namespace forgeyard::workbench
