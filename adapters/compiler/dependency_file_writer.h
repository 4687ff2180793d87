#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "adapters/compiler/make_rule.h"

namespace forgeyard {

// The dependency file in the form that the compiler component reads: one line,
//
//   TARGET: SOURCE NAME NAME<CR><LF>
//
// parted by single blanks, names absolute and with slashes, and no notation in it. The component skips the
// first two words and keeps the others as they are.
struct DependencyPlace {
  std::string directory;  // absolute host path: where relative names start, spelled as the product spells it
  std::string target;     // base name of the object
  std::string source;     // base name of the source
  // The drive by which the product names this project's files, "C:", and its host directory; names below that
  // get the same spelling. Empty if it names them without one.
  std::string drive;
  std::string driveDirectory;
};

// Names of the rule that can't be carried, and a rule that is not complete, become a name for which there can
// never be a file, so that the component builds the source again and again rather than once too few.
std::string dependencyFileText(const MakeRule& rule, const DependencyPlace& place);

// The name as one word of the file. A blank becomes a no-break space, which the product's look-up takes for a
// blank. Nothing for a name that can't be carried: one with a line end or a backslash in it, or one that is
// too long for the component's buffer.
std::optional<std::string> dependencyWord(std::string_view absoluteName, const DependencyPlace& place);

// The absolute form of a name, with `.` and `..` resolved. That is done by text, so that the result begins as
// `directory` does; a `..` behind a symbolic link, for which that would be another file, stays.
std::string absoluteName(std::string_view name, std::string_view directory);

// This process's working directory as the environment's PWD spells it if that is right: the product names the
// project's files by that spelling, which may lead over symbolic links.
std::string spelledWorkingDirectory();

}  // namespace forgeyard
