#include "workbench/diagram/colours.h"
#include "workbench/diagram/formats.h"

namespace forgeyard::workbench {

namespace {

constexpr std::size_t kRoom = 12;

// Inside of a quoted label; "\l" is a line end to the left.
std::string quoted(const std::string& text) {
  std::string result;
  for (const char letter : text) {
    if (letter == '"' || letter == '\\') result += '\\';
    result += letter == '\n' ? ' ' : letter;
  }
  return result;
}

std::string label(const Diagram::Node& node) {
  std::string text = quoted(node.name) + "\\n" + quoted(node.kind + ", " + node.words) + "\\n";
  std::size_t left = 0;
  for (const std::string& file : Diagram::shownFiles(node, kRoom, left)) text += quoted(file) + "\\l";
  if (left != 0) text += "... " + std::to_string(left) + " more\\l";
  return text;
}

}  // namespace

std::string asDot(const Diagram& diagram) {
  std::string text = "digraph \"" + quoted(diagram.title) +
                     "\" {\n  rankdir=LR;\n  node [shape=box, style=filled, fontname=\"sans-serif\"];\n";
  for (std::size_t i = 0; i < diagram.nodes.size(); ++i) {
    const Diagram::Node& node = diagram.nodes[i];
    const Colours colours = coloursOf(node.state);
    text += "  n" + std::to_string(i) + " [label=\"" + label(node) + "\", fillcolor=\"" + colours.fill +
            "\", color=\"" + colours.line + "\"];\n";
  }
  for (const auto& [from, to] : diagram.edges)
    text += "  n" + std::to_string(from) + " -> n" + std::to_string(to) + ";\n";
  return text + "}\n";
}

}  // namespace forgeyard::workbench
