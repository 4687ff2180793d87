// merge: one project of two that have gone different ways, as git asks for it.

#include <sys/stat.h>

#include <nlohmann/json.hpp>
#include <set>

#include "hosts/console/base/report.h"
#include "hosts/console/commands/command.h"
#include "hosts/console/services/json_lines.h"
#include "hosts/console/session/session.h"
#include "workbench/base/failure.h"
#include "workbench/merge/merge_projects.h"
#include "workbench/merge/merge_values.h"
#include "workbench/text/project_records.h"

namespace forgeyard::console {

using namespace workbench;

namespace {

using Kind = Parameter::Kind;

bool isEmptyFile(const std::string& path) {
  struct stat status {};
  return ::stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) && status.st_size == 0;
}

void requireDistinctIds(const std::string& name, const RecordNode& project) {
  std::set<std::int64_t> ids;
  for (const RecordNode& component : itemsOf(project, "components")) {
    if (!ids.insert(numberOf(component, "Id")).second)
      throw Failure(name + ": two components have the number " + std::to_string(numberOf(component, "Id")) +
                    ", so nobody can tell which is which. Nothing was merged.");
  }
}

RecordNode readSide(const std::string& path) {
  const ProjectFile file = existingProjectFile(path, FileNames::Any);
  ProjectRecords records = readRecords(file);
  if (complainOfAll(damageIn(file.host, records)))
    throw Failure(file.host +
                  " is damaged. Nothing was merged: take one of the sides as it is, or mend the file.");
  requireDistinctIds(file.host, records.records);
  return std::move(records.records);
}

// Both sides have added the file: git's base is empty then.
RecordNode noProject() {
  return {RecordNode::Fields{{"configurations", {RecordNode::List{}}},
                             {"components", {RecordNode::List{}}},
                             {"connections", {RecordNode::List{}}}}};
}

void tell(Session& session, const MergeLog& log) {
  for (const std::string& note : log.notes) complain("Note: " + note + ".");
  for (const MergeConflict& conflict : log.conflicts) {
    if (session.options().json) {
      writeObject(session.output(), "conflict",
                  {{"where", conflict.where},
                   {"base", conflict.base},
                   {"ours", conflict.ours},
                   {"theirs", conflict.theirs}});
      continue;
    }
    complain("Conflict: " + conflict.where + "\nbase:   " + conflict.base + "\nours:   " + conflict.ours +
             " (kept)\ntheirs: " + conflict.theirs);
  }
}

// The merged records make a project that loads, or none is written.
void requireLoads(const RecordNode& merged) {
  const TemporaryProject trial;
  const ProjectFile file = projectFile(trial.path());
  writeRecords(file, merged, "the merged project", false);
  const ProjectRecords records = readRecords(file);
  if (records.load.leftOut.empty()) return;
  for (const LoadOmission& omission : records.load.leftOut)
    complain("The merged project would load without " + omission.what + ": " + omission.why + ".");
  throw Failure(
      "Nothing was merged: one of the sides doesn't load as a whole. forgeyard dump --load shows which.");
}

ExitCode merge(const Invocation& invocation) {
  Session session(invocation.options());
  const std::string& basePath = invocation.text("BASE");
  const std::string& oursPath = invocation.text("OURS");
  const RecordNode base = isEmptyFile(basePath) ? noProject() : readSide(basePath);
  const RecordNode ours = readSide(oursPath);
  const RecordNode theirs = readSide(invocation.text("THEIRS"));
  MergeLog log;
  const RecordNode merged = mergedProject(base, ours, theirs, log);
  requireLoads(merged);
  const ProjectFile target =
      projectFile(invocation.has("-o,--output") ? invocation.text("-o,--output") : oursPath, FileNames::Any);
  if (!(merged == ours) || invocation.has("-o,--output"))
    writeRecords(target, merged, "the merged project", true);
  tell(session, log);
  if (log.conflicts.empty()) return session.finish();
  const std::size_t count = log.conflicts.size();
  complain(count == 1 ? "1 conflict: the file has what ours has there."
                      : std::to_string(count) + " conflicts: the file has what ours has there.");
  return session.finish(ExitCode::BuildErrors);
}

constexpr std::array kCommands{
    Command{
        "merge",
        "Merge what two sides have made of a project, by component, file, configuration and property",
        {{{Kind::Text, "BASE", "", "the project that both come from; an empty file if there is none",
           Completes::ProjectFile},
          {Kind::Text, "OURS", "", "one side, which wins where both have changed the same; it is replaced",
           Completes::ProjectFile},
          {Kind::Text, "THEIRS", "", "the other side", Completes::ProjectFile},
          {Kind::Option, "-o,--output", "FILE", "write the result there and leave OURS as it is",
           Completes::ProjectFile}}},
        merge},
};

}  // namespace

std::span<const Command> mergeCommands() {
  return kCommands;
}

}  // namespace forgeyard::console
