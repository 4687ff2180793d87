#pragma once

#include "workbench/diagram/diagram.h"

namespace forgeyard::workbench {

// How a node of a picture looks, by its state.
struct Colours {
  const char* fill;
  const char* line;
};

inline Colours coloursOf(Diagram::State state) {
  static constexpr Colours kColours[] = {
      {"#e8f0fb", "#4a76b8"},  // a folder
      {"#f2f2f2", "#9a9a9a"},  // disabled
      {"#e6f5e8", "#3c8c4a"},  // up to date
      {"#fdf1d8", "#b97f10"},  // out of date
      {"#f2f2f2", "#9a9a9a"},  // no inputs
      {"#fbe3e1", "#b83a30"},  // fails
      {"#f7ece4", "#a0714f"},  // waits
      {"#f2f2f2", "#b83a30"},  // left out
  };
  return kColours[static_cast<std::size_t>(state)];
}

}  // namespace forgeyard::workbench
