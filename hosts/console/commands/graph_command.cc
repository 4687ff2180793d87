// graph: the diagram of the project.

#include <algorithm>
#include <nlohmann/json.hpp>

#include "hosts/console/commands/command.h"
#include "hosts/console/services/json_lines.h"
#include "hosts/console/session/session.h"
#include "workbench/base/failure.h"
#include "workbench/base/nearest.h"
#include "workbench/diagram/formats.h"

namespace forgeyard::console {

using namespace workbench;

namespace {

using Kind = Parameter::Kind;

enum class Format { Text, Dot, Svg };

Format formatNamed(const std::string& name) {
  static const std::vector<std::string> kNames{"text", "dot", "svg"};
  if (name.empty()) return Format::Text;
  const auto found = std::find(kNames.begin(), kNames.end(), name);
  if (found == kNames.end())
    throw Failure("There is no format " + name + "." + suggestion(name, kNames, "formats"));
  return static_cast<Format>(found - kNames.begin());
}

void writeObjects(LineWriter& out, const Diagram& diagram) {
  for (const Diagram::Node& node : diagram.nodes) {
    writeObject(out, "node",
                {{"name", node.name},
                 {"kind", node.kind},
                 {"state", Diagram::toText(node.state)},
                 {"text", node.words},
                 {"files", node.files}});
  }
  for (const auto& [from, to] : diagram.edges)
    writeObject(out, "connection", {{"from", diagram.nodes[from].name}, {"to", diagram.nodes[to].name}});
}

ExitCode graph(const Invocation& invocation) {
  const Options& options = invocation.options();
  const Format format = formatNamed(invocation.text("--format"));
  Session session(options);
  OpenProject project(session);
  const Diagram diagram = diagramOf(project);
  LineWriter& out = session.output();
  if (options.json) {
    writeObjects(out, diagram);
  } else {
    out.raw(format == Format::Dot   ? asDot(diagram)
            : format == Format::Svg ? asSvg(diagram)
                                    : asText(diagram, options.verbose));
  }
  return session.finish();
}

constexpr std::array kCommands{
    Command{"graph",
            "Show what feeds what, with files and state of each component",
            {{{Kind::Option, "--format", "text|dot|svg",
               "text (what is meant if it is left out; with -v all files), dot or svg"}}},
            graph},
};

}  // namespace

std::span<const Command> graphCommands() {
  return kCommands;
}

}  // namespace forgeyard::console
