// import: makes a project of sources that are there.

#include <sys/stat.h>

#include <filesystem>

#include "hosts/console/base/report.h"
#include "hosts/console/commands/command.h"
#include "hosts/console/services/terminal.h"
#include "hosts/console/session/session.h"
#include "platform/files/host_location.h"
#include "workbench/base/failure.h"
#include "workbench/base/nearest.h"
#include "workbench/base/words.h"
#include "workbench/import/database_import.h"
#include "workbench/import/project_maker.h"
#include "workbench/import/tree_import.h"

namespace forgeyard::console {

using namespace workbench;

namespace {

using Kind = Parameter::Kind;
namespace fs = std::filesystem;

// Absolute, and spelled as the project will have it.
std::string absolutePath(const std::string& path) {
  const ModelPath model = toModel(path);
  if (!model) throw Failure(model.error);
  return spelledHost(model.path).value_or(path);
}

std::string projectName(const std::string& directory) {
  const std::string name = fs::path(directory).filename().string();
  return name.empty() ? "project" : name;
}

FolderMode folderMode(const std::string& text) {
  if (text.empty() || text == "directory") return FolderMode::ByDirectory;
  if (text == "kind") return FolderMode::ByKind;
  const std::vector<std::string> modes{"directory", "kind"};
  throw Failure("Folders can't be made by " + text + "." + suggestion(text, modes, "ways"));
}

ImportRequest requestOf(const Invocation& invocation) {
  ImportRequest request;
  const std::string& directory = invocation.text("DIR");
  if (directory.empty() && !invocation.has("--compile-commands"))
    throw Failure("Which directory is to be imported? forgeyard import . takes the current one.");
  request.directory = absolutePath(directory.empty() ? "." : directory);
  const std::string& named = invocation.options().project;
  request.project =
      projectFile(named.empty() ? request.directory + "/" + projectName(request.directory) + ".nqp" : named);
  if (invocation.has("--compile-commands"))
    request.database = absolutePath(invocation.text("--compile-commands"));
  if (invocation.has("--main")) request.main = absolutePath(invocation.text("--main"));
  if (invocation.has("--linker-script")) {
    request.script = absolutePath(invocation.text("--linker-script"));
    std::error_code error;
    if (!fs::is_regular_file(request.script, error)) throw Failure(request.script + " is no file.");
  }
  request.folders = folderMode(invocation.text("--folders"));
  request.target = invocation.text("--target");
  return request;
}

// Also a link that leads nowhere stands in the way.
bool isTaken(const std::string& path) {
  struct stat status {};
  return ::lstat(path.c_str(), &status) == 0;
}

void requireFreeFile(Session& session, const ProjectFile& file) {
  if (!isTaken(file.host)) return;
  if (!session.host().agrees("Import",
                             file.host + " exists already. Replace it, with all that is set in it?"))
    throw Failure(file.host + " was left as it is.");
}

ImportPlan planOf(Session& session, ImportRequest request, Notes& notes) {
  const Registry& registry = session.registry();
  std::string target = chosenTarget(registry, request.target);
  ProjectParts parts = request.database.empty() ? partsOfTree(request, session.host(), notes)
                                                : partsOfDatabase(request, registry, session.host(), notes);
  target = chosenTarget(registry, request.target);
  parts.name = fs::path(request.project.host).stem().string();
  const std::string options = parts.link.options;
  parts.link = linkToolsOf(registry, target);
  parts.link.options = options;
  parts.link.script = request.script;
  ImportPlan plan = layOut(parts, notes);
  plan.configuration = {{"Target", target},
                        {"OutputDirectory", "out"},
                        {"IntermediateDirectory", "obj"},
                        {"UpdateFileDependencies", "yes"}};
  return plan;
}

void showPlan(LineWriter& out, const ImportPlan& plan, const ProjectFile& file, bool verbose) {
  const auto line = [&](const std::string& text) { out.line(printable(text)); };
  const auto settings = [&](const std::vector<Assignment>& list) {
    for (const Assignment& setting : list) line("  " + setting.property + "=" + setting.value);
  };
  line(file.host);
  settings(plan.configuration);
  for (const PlannedFolder& folder : plan.folders) {
    line("folder " + folder.name + " (" + folder.filter + "), files: " + std::to_string(folder.files.size()));
    if (!verbose) continue;
    for (const std::string& path : folder.files) line("  " + path);
  }
  for (const PlannedTool& tool : plan.tools) {
    line(tool.kind + " " + tool.name + ", fed by " + enumeration(tool.inputs));
    settings(tool.settings);
  }
}

void showMade(LineWriter& out, const ImportPlan& plan, const ProjectFile& file) {
  std::size_t files = 0;
  for (const PlannedFolder& folder : plan.folders) files += folder.files.size();
  out.line(file.host + ": " + counted(files, "file") + " in " + counted(plan.folders.size(), "folder") +
           ", " + counted(plan.tools.size(), "tool") + ".");
}

ExitCode import(const Invocation& invocation) {
  const ImportRequest request = requestOf(invocation);
  Session session(invocation.options());
  const bool dry = invocation.has("--dry-run");
  if (!dry) requireFreeFile(session, request.project);
  Notes notes;
  const ImportPlan plan = planOf(session, request, notes);
  if (dry) {
    showPlan(session.output(), plan, request.project, invocation.options().verbose);
  } else {
    OpenProject project = OpenProject::create(session, request.project, plan.name);
    makePlanned(project, plan);
    project.save();
    if (!invocation.options().quiet) showMade(session.output(), plan, request.project);
  }
  if (!invocation.options().quiet) {
    for (const std::string& line : notes.lines()) complain(printable(line));
  }
  return session.finish();
}

constexpr std::array kCommands{
    Command{"import",
            "Make a project of sources that are there: folders, tools and what joins them; builds on this "
            "machine",
            {{{Kind::OptionalText, "DIR", "",
               "the directory of the sources; the project becomes DIR/NAME.nqp unless -p names another file",
               Completes::Directory},
              {Kind::Option, "--compile-commands", "FILE",
               "take the sources and their options from this compilation database; DIR is then \".\" if left "
               "out",
               Completes::File},
              {Kind::Option, "--folders", "directory|kind",
               "a folder for each \"directory\" (so if left out) or \"kind\" of file"},
              {Kind::Option, "--target", "NAME", "what it is built for; left out: native", Completes::Target},
              {Kind::Option, "--main", "FILE", "the source whose main counts, where several have one",
               Completes::File},
              {Kind::Option, "--linker-script", "FILE", "link with a linker component and this script",
               Completes::File},
              {Kind::Flag, "--dry-run", "", "show what would be made, and make nothing; all files with -v"}}},
            import},
};

}  // namespace

std::span<const Command> importCommands() {
  return kCommands;
}

}  // namespace forgeyard::console
