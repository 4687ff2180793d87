#include <algorithm>

#include "platform/text/bstring.h"
#include "workbench/diagram/colours.h"
#include "workbench/diagram/formats.h"

namespace forgeyard::workbench {

namespace {

// Lengths in pixels.
constexpr std::size_t kRoom = 10;
constexpr int kLetter = 8;  // the width of one, on the generous side
constexpr int kLine = 17;
constexpr int kPadding = 10;
constexpr int kRowGap = 24;
constexpr int kColumnGap = 70;
constexpr int kMargin = 20;
constexpr int kTitle = 30;
constexpr int kLeastWidth = 110;

std::string escaped(const std::string& text) {
  std::string result;
  for (const char letter : text) {
    switch (letter) {
      case '&':
        result += "&amp;";
        break;
      case '<':
        result += "&lt;";
        break;
      case '>':
        result += "&gt;";
        break;
      case '"':
        result += "&quot;";
        break;
      default:
        // Control characters have no place in XML.
        result += static_cast<unsigned char>(letter) < ' ' ? ' ' : letter;
    }
  }
  return result;
}

struct Box {
  std::vector<std::string> lines;
  int x = 0;
  int y = 0;
  int width = kLeastWidth;
  int height = 0;

  int middle() const { return y + height / 2; }
};

Box boxOf(const Diagram::Node& node) {
  Box box;
  box.lines = {node.name, node.kind + ", " + node.words};
  std::size_t left = 0;
  for (std::string& file : Diagram::shownFiles(node, kRoom, left)) box.lines.push_back(std::move(file));
  if (left != 0) box.lines.push_back("... " + std::to_string(left) + " more");
  for (const std::string& line : box.lines) {
    const auto letters = static_cast<int>(BString::fromNarrow(line).size());
    box.width = std::max(box.width, letters * kLetter + 2 * kPadding);
  }
  box.height = static_cast<int>(box.lines.size()) * kLine + 2 * kPadding;
  return box;
}

// Columns side by side, each as wide as its widest box; in a column one box below the other.
std::vector<Box> placed(const Diagram& diagram) {
  std::vector<Box> boxes;
  for (const Diagram::Node& node : diagram.nodes) boxes.push_back(boxOf(node));
  int x = kMargin;
  for (std::size_t column = 0; column < diagram.columns(); ++column) {
    std::vector<std::size_t> members;
    for (std::size_t i = 0; i < boxes.size(); ++i) {
      if (diagram.nodes[i].column == column) members.push_back(i);
    }
    std::sort(members.begin(), members.end(),
              [&](std::size_t a, std::size_t b) { return diagram.nodes[a].row < diagram.nodes[b].row; });
    int y = kMargin + kTitle;
    int width = 0;
    for (const std::size_t i : members) {
      boxes[i].x = x;
      boxes[i].y = y;
      y += boxes[i].height + kRowGap;
      width = std::max(width, boxes[i].width);
    }
    x += width + kColumnGap;
  }
  return boxes;
}

std::string number(int value) {
  return std::to_string(value);
}

std::string textAt(int x, int y, const std::string& classes, const std::string& text) {
  return "<text class=\"" + classes + "\" x=\"" + number(x) + "\" y=\"" + number(y) + "\">" + escaped(text) +
         "</text>\n";
}

std::string drawBox(const Box& box, Diagram::State state) {
  const Colours colours = coloursOf(state);
  std::string text = "<rect x=\"" + number(box.x) + "\" y=\"" + number(box.y) + "\" width=\"" +
                     number(box.width) + "\" height=\"" + number(box.height) + "\" rx=\"4\" fill=\"" +
                     colours.fill + "\" stroke=\"" + colours.line + "\"/>\n";
  int y = box.y + kPadding + kLine - 5;
  for (std::size_t i = 0; i < box.lines.size(); ++i, y += kLine)
    text += textAt(box.x + kPadding, y, i == 0 ? "name" : i == 1 ? "state" : "file", box.lines[i]);
  return text;
}

// From the right side of one box to the left side of the other.
std::string drawEdge(const Box& from, const Box& to) {
  const int start = from.x + from.width;
  const int bend = kColumnGap / 2;
  return "<path class=\"edge\" d=\"M" + number(start) + " " + number(from.middle()) + " C" +
         number(start + bend) + " " + number(from.middle()) + " " + number(to.x - bend) + " " +
         number(to.middle()) + " " + number(to.x - 2) + " " + number(to.middle()) +
         "\" marker-end=\"url(#arrow)\"/>\n";
}

}  // namespace

std::string asSvg(const Diagram& diagram) {
  const std::vector<Box> boxes = placed(diagram);
  int width = static_cast<int>(BString::fromNarrow(diagram.title).size()) * kLetter;
  int height = kTitle;
  for (const Box& box : boxes) {
    width = std::max(width, box.x + box.width);
    height = std::max(height, box.y + box.height);
  }
  const std::string size =
      "width=\"" + number(width + kMargin) + "\" height=\"" + number(height + kMargin) + "\"";
  std::string text =
      "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<svg xmlns=\"http://www.w3.org/2000/svg\" " + size +
      ">\n<style>text { font: 12px monospace; fill: #222 } .name { font-weight: bold } "
      ".file { fill: #555 } .title { font-size: 15px } "
      ".edge { fill: none; stroke: #666; stroke-width: 1.3 }</style>\n"
      "<defs><marker id=\"arrow\" viewBox=\"0 0 8 8\" refX=\"7\" refY=\"4\" markerWidth=\"8\" "
      "markerHeight=\"8\" orient=\"auto\"><path d=\"M0 0 L8 4 L0 8 z\" fill=\"#666\"/>"
      "</marker></defs>\n<rect " +
      size + " fill=\"white\"/>\n";
  text += textAt(kMargin, kMargin + 10, "title", diagram.title);
  for (const auto& [from, to] : diagram.edges) text += drawEdge(boxes[from], boxes[to]);
  for (std::size_t i = 0; i < boxes.size(); ++i) text += drawBox(boxes[i], diagram.nodes[i].state);
  return text + "</svg>\n";
}

}  // namespace forgeyard::workbench
