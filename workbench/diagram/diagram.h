#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "workbench/project/open_project.h"

namespace forgeyard::workbench {

// The diagram of a project: its folders and components with their files and their state, and what feeds what.
struct Diagram {
  enum class State : std::uint8_t { Folder, Disabled, UpToDate, OutOfDate, NoInputs, Fails, Waits, LeftOut };

  struct Node {
    std::string name;
    std::string kind;
    State state = State::Folder;
    std::string words;                 // the state in words: "2 out of date"
    std::vector<std::string> files{};  // of a folder its files, of a component what it makes
    // Among the nodes from left to right: each stands to the right of all that feed it.
    std::size_t column = 0;
    std::size_t row = 0;  // in its column, from the top
  };
  using Edge = std::pair<std::size_t, std::size_t>;  // positions of nodes: from, to

  std::string title;
  std::vector<Node> nodes;  // in the project's order
  std::vector<Edge> edges;

  // As many of the node's files as a picture has room for; `left` says how many those are short of all.
  static std::vector<std::string> shownFiles(const Node& node, std::size_t room, std::size_t& left);
  // For programs: "folder", "out-of-date".
  static const char* toText(State state);
  // How many columns there are.
  std::size_t columns() const;
};

// In the configuration that the options name. Runs nothing. Throws a Failure.
Diagram diagramOf(OpenProject& project);

}  // namespace forgeyard::workbench
