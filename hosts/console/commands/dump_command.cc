// dump: what stands in a project file.

#include <filesystem>
#include <nlohmann/json.hpp>

#include "hosts/console/base/report.h"
#include "hosts/console/commands/command.h"
#include "hosts/console/project/components.h"
#include "hosts/console/project/records_json.h"
#include "hosts/console/project/workspace.h"
#include "hosts/console/services/json_lines.h"
#include "platform/com/class_table.h"
#include "typelib/classes.h"

namespace forgeyard::console {

namespace {

using Kind = Parameter::Kind;

ProjectRecords recordsOf(const ProjectFile& file) {
  const Ref<IProjectRecords> reader = createInstance<IProjectRecords>(CLSID_Project);
  if (!reader) throw Failure("This module can't look into project files.");
  ProjectRecords records;
  const HRESULT status = reader->ReadRecords(file.path(), &records);
  if (failed(status)) throw Failure(openFailure(file, status));
  return records;
}

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

ExitCode showRecords(Session& session, const ProjectFile& file, const ProjectRecords& records) {
  const std::string json = recordsAsJson(std::filesystem::path(file.host).filename().string(), records);
  if (session.options().json) {
    writeObject(session.output(), "dump", {{"records", nlohmann::ordered_json::parse(json)}});
  } else {
    session.output().line(json);
  }
  if (!records.leftOut.empty() || !records.elementsLeftOut.empty()) {
    complain(file.host + " is damaged; \"left_out\" says what is missing and why.");
  } else if (!records.load.leftOut.empty()) {
    complain(file.host + ": a load leaves a part of it out; \"load\" says what and why.");
  } else {
    return session.finish();
  }
  return session.finish(ExitCode::BuildErrors);
}

ExitCode dump(const Invocation& invocation) {
  const std::string& named = invocation.text("FILE");
  if (!named.empty() && !invocation.options().project.empty())
    throw Failure("FILE and -p both name a file; give one of them.");
  Session session(invocation.options());
  const ProjectFile file =
      named.empty() ? chosenProjectFile(session, FileNames::Any) : existingProjectFile(named, FileNames::Any);
  const ProjectRecords records = recordsOf(file);
  return invocation.has("--tree") ? showTree(session, file, records) : showRecords(session, file, records);
}

constexpr std::array kCommands{
    Command{"dump",
            "Show all records of a project file as JSON, also of a damaged one; nothing is changed",
            {{{Kind::OptionalText, "FILE", "", "the file, of any name; left out: that of -p"},
              {Kind::Flag, "--tree", "", "show the file's streams and storages instead, with their sizes"}}},
            dump},
};

}  // namespace

std::span<const Command> dumpCommands() {
  return kCommands;
}

}  // namespace forgeyard::console
