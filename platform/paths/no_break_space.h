#pragma once

#include <algorithm>
#include <string>

#include "platform/text/bstring.h"

namespace forgeyard {

// How dependency files spell a path with blanks, since a blank ends a name there: the look-up on the disk
// takes it for the same.
inline BString withNoBreakSpaces(const BString& path) {
  if (path.view().find(u' ') == std::u16string_view::npos) return path;
  std::u16string spelled(path.view());
  std::replace(spelled.begin(), spelled.end(), u' ', u'\u00a0');
  return BString(spelled);
}

}  // namespace forgeyard
