#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "typelib/settings.h"

namespace forgeyard {

enum class LinkFormat : std::uint32_t { Cpe = 0, Binary = 1, SRecord = 2 };  // all others are S-record too

// The names of what a link makes, relative to the output directory.
struct LinkerOutput {
  std::u16string main;
  std::u16string symbols;
  std::u16string map;
};

// A name without an extension gets that of the format, and the side files keep its directories. A name with
// one stays as it is, and the side files are named after its last component alone.
LinkerOutput linkerOutput(std::u16string_view outputName, LinkFormat format);
LinkerOutput linkerOutput(ILinkSettings& settings);

// Writes Output of a linker as it follows from its output name, format and flags. Without an output name
// there is none either, until a build takes the script's. Throws StatusError.
void updateLinkerOutput(ILinkSettings& settings);

// Returns the output name for a link that has none, taken from the script.
std::u16string_view outputNameFor(std::u16string_view script);

}  // namespace forgeyard
