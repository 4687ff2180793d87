#include "workbench/diagram/diagram.h"

#include <algorithm>
#include <numeric>

#include "workbench/base/words.h"
#include "workbench/plan/build_plan.h"
#include "workbench/project/configurations.h"
#include "workbench/project/connections.h"
#include "workbench/project/source_files.h"
#include "workbench/project/workspace.h"

namespace forgeyard::workbench {

namespace {

using Node = Diagram::Node;
using State = Diagram::State;

State stateIn(const ComponentPlan& entry) {
  switch (stateOf(entry)) {
    case ComponentState::UpToDate:
      return State::UpToDate;
    case ComponentState::OutOfDate:
      return State::OutOfDate;
    case ComponentState::NoInputs:
      return State::NoInputs;
    case ComponentState::Fails:
      return State::Fails;
    case ComponentState::Waits:
      return State::Waits;
    case ComponentState::LeftOut:
      return State::LeftOut;
  }
  return State::Waits;
}

Node folderNode(const FolderContents& folder, const ProjectPaths& paths) {
  const bool enabled = isEnabled(folder);
  Node node{folder.folder.name, folder.folder.kindName(), enabled ? State::Folder : State::Disabled,
            counted(folder.files.size(), "file") + (enabled ? "" : ", disabled")};
  for (const ProjectSource& file : folder.files) node.files.push_back(paths.toUser(file.name));
  return node;
}

Node toolNode(const ComponentPlan& entry, const ProjectPaths& paths) {
  Node node{entry.component.name, entry.component.kindName(), stateIn(entry), stateWords(entry)};
  for (const BString& output : entry.plan.outputs) node.files.push_back(paths.toUser(output));
  return node;
}

std::vector<Diagram::Edge> edgesBetween(const std::vector<Component>& components, IProject& project) {
  const auto position = [&](const Ref<IComponent>& end) {
    return static_cast<std::size_t>(
        std::find_if(components.begin(), components.end(),
                     [&](const Component& one) { return sameObject(one.object.get(), end.get()); }) -
        components.begin());
  };
  std::vector<Diagram::Edge> edges;
  for (const Ref<IConnection>& connection : connectionsOf(project)) {
    Ref<IComponent> from;
    Ref<IComponent> to;
    check(connection->get_From(&from));
    check(connection->get_To(&to));
    const Diagram::Edge edge{position(from), position(to)};
    if (edge.first < components.size() && edge.second < components.size()) edges.push_back(edge);
  }
  return edges;
}

// Each node one column behind the last of those that feed it. A circle, which only a damaged file can have,
// ends when every node has been moved once.
void chooseColumns(Diagram& diagram) {
  bool moved = true;
  for (std::size_t pass = 0; moved && pass < diagram.nodes.size(); ++pass) {
    moved = false;
    for (const auto& [from, to] : diagram.edges) {
      const std::size_t least = diagram.nodes[from].column + 1;
      if (diagram.nodes[to].column >= least || least >= diagram.nodes.size()) continue;
      diagram.nodes[to].column = least;
      moved = true;
    }
  }
}

// Where the sources of a node stand on average; its own place in the project decides between equals.
double wantedRow(const Diagram& diagram, std::size_t node) {
  double sum = 0;
  std::size_t sources = 0;
  for (const auto& [from, to] : diagram.edges) {
    if (to != node) continue;
    sum += static_cast<double>(diagram.nodes[from].row);
    ++sources;
  }
  return sources == 0 ? static_cast<double>(node) : sum / static_cast<double>(sources);
}

void chooseRows(Diagram& diagram) {
  for (std::size_t column = 0; column < diagram.columns(); ++column) {
    std::vector<std::pair<double, std::size_t>> order;
    for (std::size_t i = 0; i < diagram.nodes.size(); ++i) {
      if (diagram.nodes[i].column == column) order.emplace_back(wantedRow(diagram, i), i);
    }
    std::sort(order.begin(), order.end());
    for (std::size_t row = 0; row < order.size(); ++row) diagram.nodes[order[row].second].row = row;
  }
}

}  // namespace

const char* Diagram::toText(State state) {
  static constexpr const char* kNames[] = {"folder",    "disabled", "up-to-date", "out-of-date",
                                           "no-inputs", "fails",    "waits",      "left-out"};
  return kNames[static_cast<std::size_t>(state)];
}

std::vector<std::string> Diagram::shownFiles(const Node& node, std::size_t room, std::size_t& left) {
  const std::size_t shown = std::min(room, node.files.size());
  left = node.files.size() - shown;
  return {node.files.begin(), node.files.begin() + static_cast<std::ptrdiff_t>(shown)};
}

std::size_t Diagram::columns() const {
  std::size_t last = 0;
  for (const Node& node : nodes) last = std::max(last, node.column);
  return nodes.empty() ? 0 : last + 1;
}

Diagram diagramOf(OpenProject& project) {
  const Ref<IConfiguration> configuration = project.configuration();
  const ActiveFor active(project.project(), configuration);
  const ProjectPlan plan = planOf(project, E_TASK_BUILD);
  const std::vector<FolderContents> folders = foldersOf(project.project());
  const std::vector<Component> components = componentsOf(project.project());
  const ProjectPaths paths(project.project());
  Diagram diagram;
  diagram.title = nameOf(project.project()) + " - " + nameOf(*configuration);
  for (const Component& component : components) {
    const auto same = [&](const Component& other) {
      return sameObject(other.object.get(), component.object.get());
    };
    const auto folder = std::find_if(folders.begin(), folders.end(),
                                     [&](const FolderContents& one) { return same(one.folder); });
    const auto tool = std::find_if(plan.components.begin(), plan.components.end(),
                                   [&](const ComponentPlan& one) { return same(one.component); });
    if (folder != folders.end()) {
      diagram.nodes.push_back(folderNode(*folder, paths));
    } else if (tool != plan.components.end()) {
      diagram.nodes.push_back(toolNode(*tool, paths));
    }
  }
  diagram.edges = edgesBetween(components, project.project());
  chooseColumns(diagram);
  chooseRows(diagram);
  return diagram;
}

}  // namespace forgeyard::workbench
