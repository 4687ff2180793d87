#pragma once

#include <string>

#include "workbench/diagram/diagram.h"

namespace forgeyard::workbench {

// The diagram in a text for people, all lines with a line feed; `allFiles` names every file.
std::string asText(const Diagram& diagram, bool allFiles);
// In the language of dot, for Graphviz.
std::string asDot(const Diagram& diagram);
// As a picture that browsers and editors show.
std::string asSvg(const Diagram& diagram);

}  // namespace forgeyard::workbench
