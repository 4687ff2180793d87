// dump: what stands in a project file.

#include <nlohmann/json.hpp>
#include <optional>

#include "hosts/console/base/report.h"
#include "hosts/console/commands/command.h"
#include "hosts/console/services/json_lines.h"
#include "hosts/console/services/standard_input.h"
#include "hosts/console/session/session.h"
#include "workbench/base/failure.h"
#include "workbench/project/components.h"
#include "workbench/project/workspace.h"
#include "workbench/text/json_writer.h"
#include "workbench/text/project_records.h"

namespace forgeyard::console {

using namespace workbench;

namespace {

using Kind = Parameter::Kind;

void showElements(LineWriter& out, const std::vector<StoredElement>& elements, const std::string& indent) {
  constexpr std::size_t kNameWidth = 32;
  for (const StoredElement& element : elements) {
    std::string line = indent + element.name.narrow();
    line.resize(std::max(line.size() + 1, kNameWidth), ' ');
    if (element.type == StgType::Stream) {
      out.line(line + "stream   " + std::to_string(element.size) + " bytes");
      continue;
    }
    const ComponentKind* kind = kindOf(element.clsid);
    out.line(line + "storage  {" + formatGuid(element.clsid) + "}" + (kind ? " " : "") +
             (kind ? kind->name : ""));
    showElements(out, element.elements, indent + "  ");
  }
}

// Of any compound file: what a project has to have is not asked for.
ExitCode showTree(Session& session, const ProjectFile& file, const ProjectRecords& records) {
  showElements(session.output(), records.elements, "");
  for (const LoadOmission& omission : records.elementsLeftOut)
    complain(file.host + ": " + omission.what + " was left out: " + omission.why + ".");
  return session.finish(records.elementsLeftOut.empty() ? ExitCode::Success : ExitCode::BuildErrors);
}

// JSON as it stands, or as part of an object where every line is one.
void showJson(Session& session, const char* name, const std::string& json) {
  if (session.options().json) {
    writeObject(session.output(), "dump", {{name, nlohmann::ordered_json::parse(json)}});
  } else {
    session.output().line(json);
  }
}

ExitCode showRecords(Session& session, const std::string& name, const ProjectRecords& records) {
  showJson(session, "records", recordsAsJson(records, Detail::All));
  const bool damaged = complainOfAll(damageIn(name, records));
  if (!records.load.leftOut.empty())
    complain(name + ": a load leaves a part of it out; forgeyard dump --load says what and why.");
  return session.finish(damaged || !records.load.leftOut.empty() ? ExitCode::BuildErrors : ExitCode::Success);
}

// What the program that compares asks for has to come, whatever state the file is in.
ExitCode showForDiff(Session& session, const std::string& name, const ProjectRecords& records) {
  showJson(session, "records", recordsAsJson(records, Detail::Entered));
  complainOfAll(damageIn(name, records));
  return session.finish();
}

ExitCode showLoad(Session& session, const ProjectRecords& records) {
  showJson(session, "load", loadAsJson(records.load));
  return session.finish(records.load.leftOut.empty() ? ExitCode::Success : ExitCode::BuildErrors);
}

ProjectFile chosenFile(Session& session, const std::string& named) {
  return named.empty() ? chosenProjectFile(session, FileNames::Any)
                       : existingProjectFile(named, FileNames::Any);
}

ExitCode dump(const Invocation& invocation) {
  const std::string& named = invocation.text("FILE");
  if (!named.empty() && !invocation.options().project.empty())
    throw Failure("FILE and -p both name a file; give one of them.");
  if (invocation.has("--tree") + invocation.has("--load") + invocation.has("--diff") > 1)
    throw Failure("--diff, --load and --tree each show something else; give one of them.");
  Session session(invocation.options());
  std::optional<TemporaryProject> input;
  if (named == kStandardStream) {
    const std::string bytes = readStandardInput();
    input.emplace().fill(bytes);
  }
  ProjectFile file = chosenFile(session, input ? input->path() : named);
  const std::string name = input ? "standard input" : file.host;
  if (input) file.host = name;
  const ProjectRecords records = readRecords(file);
  if (invocation.has("--tree")) return showTree(session, file, records);
  if (invocation.has("--load")) return showLoad(session, records);
  return invocation.has("--diff") ? showForDiff(session, name, records) : showRecords(session, name, records);
}

constexpr std::array kCommands{
    Command{
        "dump",
        "Show all records of a project file as JSON, also of a damaged one; nothing is changed",
        {{{Kind::OptionalText, "FILE", "",
           "the file, of any name, - for standard input; left out: that of -p", Completes::ProjectFile},
          {Kind::Flag, "--diff", "", "leave out what builds learn, and let no damage be an error: for git"},
          {Kind::Flag, "--load", "", "show what a load of the file brings up instead"},
          {Kind::Flag, "--tree", "", "show the file's streams and storages instead, with their sizes"}}},
        dump},
};

}  // namespace

std::span<const Command> dumpCommands() {
  return kCommands;
}

}  // namespace forgeyard::console
