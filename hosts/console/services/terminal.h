#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace forgeyard::console {

// What can be done with standard output.
struct Terminal {
  bool redraws = false;  // a terminal on which a line can be written over
  bool colours = false;  // the same, and the user wants colours (NO_COLOR)

  static Terminal ofStandardOutput();
};

// Columns of the terminal that standard output is; 80 if it doesn't tell.
std::size_t terminalWidth();
// False while another job of the same terminal has the word.
bool isForeground();

// How many columns the UTF-8 text takes; control characters and bytes that are no UTF-8 count as one.
std::size_t columnsOf(std::string_view text);
// The end of the text that fits, behind a "…" if something is left out; nothing where not even that fits.
std::string lastColumns(std::string_view text, std::size_t columns);
// Control characters and bytes that are no UTF-8 as "?".
std::string printable(std::string_view text);

}  // namespace forgeyard::console
