#pragma once

#include <string_view>
#include <vector>

namespace forgeyard {

// The dependencies in the text of a dependency file, without its line end: a make rule whose target is the
// object and whose first prerequisite is the source; neither is among them. Lines may be continued with a
// backslash. There is no unescaping: names are separated by single blanks (character 32), two blanks in a row
// give an empty name, and a name that begins with a backslash is taken for a continuation. The names point
// into `text`. Any text will do.
std::vector<std::string_view> parseDependencyFile(std::string_view text);

}  // namespace forgeyard
