#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace forgeyard {

// One line of the registry file.
struct RegistryLine {
  enum class Kind { Other, Section, Value };

  Kind kind = Kind::Other;
  std::string_view raw;   // the whole line with its end
  std::string_view name;  // the section's or value's name as written; empty for a damaged section
  std::string_view data;  // the value's text as written
};

// Reads a line; the views of the result point into `raw`.
RegistryLine readRegistryLine(std::string_view raw) noexcept;

// %09 %0A %0D %20 %25 %3B %3D %40 %5B %5D %00 stand for the character with that number. It is written so only
// where it would be taken for something else, and any other percent sign is itself.
std::string decodeRegistryText(std::string_view written);

// The lines for a section and a value, without a line end. An empty name is the unnamed value.
std::string registrySectionLine(std::string_view key);
std::string registryValueLine(std::string_view name, std::string_view text);

}  // namespace forgeyard
