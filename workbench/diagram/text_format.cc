#include <algorithm>
#include <numeric>

#include "workbench/diagram/formats.h"

namespace forgeyard::workbench {

namespace {

constexpr std::size_t kRoom = 8;

std::string sinksOf(const Diagram& diagram, std::size_t node) {
  std::string sinks;
  for (const auto& [from, to] : diagram.edges) {
    if (from == node) sinks += (sinks.empty() ? " -> " : ", ") + diagram.nodes[to].name;
  }
  return sinks;
}

}  // namespace

// Column by column, so that what feeds a component stands above it.
std::string asText(const Diagram& diagram, bool allFiles) {
  std::vector<std::size_t> order(diagram.nodes.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
    const Diagram::Node& left = diagram.nodes[a];
    const Diagram::Node& right = diagram.nodes[b];
    return std::pair(left.column, left.row) < std::pair(right.column, right.row);
  });
  std::string text = diagram.title + "\n";
  for (const std::size_t i : order) {
    const Diagram::Node& node = diagram.nodes[i];
    text += node.name + " (" + node.kind + ", " + node.words + ")" + sinksOf(diagram, i) + "\n";
    std::size_t left = 0;
    for (const std::string& file : Diagram::shownFiles(node, allFiles ? node.files.size() : kRoom, left))
      text += "  " + file + "\n";
    if (left != 0) text += "  ... " + std::to_string(left) + " more\n";
  }
  return text;
}

}  // namespace forgeyard::workbench
