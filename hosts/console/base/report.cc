#include "hosts/console/base/report.h"

#include <cstdio>
#include <string>

namespace forgeyard::console {

void complain(std::string_view message, LineEnd end) {
  while (message.ends_with('\n')) message.remove_suffix(1);
  std::string text = "forgeyard: ";
  for (const char c : message) {
    text += c;
    if (c == '\n') text += "  ";
  }
  if (end == LineEnd::Closed) text += '\n';
  // In one piece, so that messages of several processes don't mix.
  std::fwrite(text.data(), 1, text.size(), stderr);
}

}  // namespace forgeyard::console
