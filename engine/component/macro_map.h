#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

#include "platform/text/bstring.h"

namespace forgeyard {

// The eleven macros of a command, in the order in which they are expanded.
enum class Macro : std::size_t {
  CIntDir,
  COutDir,
  File,
  FileExt,
  FileFullPath,
  FileFullPathList,
  FileName,
  InDir,
  OutDir,
  OutFileFullPathList,
  WorkDir,
};
inline constexpr std::size_t kMacroCount = 11;

// The separator line of the output tab.
inline constexpr const char16_t* kSeparatorLine = u"-----";

// A macro's name with its dollar sign and parentheses.
std::u16string_view macroName(Macro macro);

// What the macros of one component stand for. A macro without a value is no key of the map: it stays in the
// text as it stands.
class MacroMap {
 public:
  void clear() { values_.fill(std::nullopt); }
  void set(Macro macro, std::u16string_view value) { values_[static_cast<std::size_t>(macro)] = value; }
  // Empty text for a macro without a value.
  std::u16string_view value(Macro macro) const;
  // The key of that name, case counting; nothing if the map has none.
  std::optional<Macro> find(std::u16string_view name) const;

  // The text with its macros replaced: key after key in sorted order, each over the whole text as the keys
  // before it left it, without a second pass.
  BString expand(std::u16string_view text) const;

  // The macros that belong to one input file.
  void setFile(std::u16string_view fullPath);

 private:
  std::array<std::optional<std::u16string>, kMacroCount> values_;
};

// The directory that a configuration or a component names, as a macro holds it: absolute against the working
// directory, canonical, with a backslash at its end. Made on the disk if it isn't there; failures are
// ignored.
std::u16string absoluteDirectory(std::u16string_view text, std::u16string_view workingDirectory);

}  // namespace forgeyard
