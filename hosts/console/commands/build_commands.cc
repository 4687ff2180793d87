// build, rebuild, clean, compile and stop.

#include "hosts/console/build/build_run.h"
#include "hosts/console/commands/command.h"
#include "hosts/console/plan/dry_run.h"
#include "hosts/console/services/standard_output.h"
#include "hosts/console/session/session.h"
#include "platform/threads/named_event.h"
#include "workbench/project/open_project.h"
#include "workbench/project/source_files.h"

namespace forgeyard::console {

using namespace workbench;

namespace {

using Kind = Parameter::Kind;

constexpr Parameter kDryRun{Kind::Flag, "--dry-run", "", "only list the commands that would run"};

ExitCode run(Session& session, OpenProject& project, const Invocation& invocation,
             std::u16string_view command, e_task task) {
  return invocation.has("--dry-run") ? dryRun(session, project, task) : runBuild(session, project, command);
}

ExitCode run(const Invocation& invocation, std::u16string_view command, e_task task) {
  Session session(invocation.options());
  OpenProject project(session);
  return run(session, project, invocation, command, task);
}

ExitCode build(const Invocation& invocation) {
  return run(invocation, u"ProjectBuild", E_TASK_BUILD);
}
ExitCode rebuild(const Invocation& invocation) {
  return run(invocation, u"ProjectRebuild", E_TASK_REBUILD);
}
ExitCode clean(const Invocation& invocation) {
  return run(invocation, u"ProjectClean", E_TASK_CLEAN);
}

// The files of a command line in the place of those that are selected in a window.
class FileSelection final : public ComObject<ISelection> {
 public:
  explicit FileSelection(std::vector<Ref<IUnknown>> files) : files_(std::move(files)) {}

  HRESULT GetSelection(Ref<IEnumUnknown>* out) override {
    return guard([&] { *out = make<ListEnumerator<IEnumUnknown>>(files_); });
  }

 private:
  std::vector<Ref<IUnknown>> files_;
};

std::vector<Ref<IUnknown>> filesNamed(IProject& project, const std::vector<std::string>& given) {
  const ProjectPaths paths(project);
  const std::vector<FolderContents> folders = foldersOf(project);
  const SourceNames names(folders);
  std::vector<Ref<IUnknown>> files;
  for (const std::string& path : given) {
    const ProjectSource* file = names.find(paths.toProject(path));
    if (!file) throw unknownFile(path, folders, paths);
    files.emplace_back(file->object);
  }
  return files;
}

ExitCode compile(const Invocation& invocation) {
  Session session(invocation.options());
  OpenProject project(session);
  const auto selection = make<FileSelection>(filesNamed(project.project(), invocation.texts("PATH")));
  session.host().frame().setActiveView(selection.get());
  return run(session, project, invocation, u"ProjectCompile", E_TASK_COMPILE);
}

ExitCode stop(const Invocation& invocation) {
  LineWriter& out = standardOutput();
  if (const auto event = NamedEvent::open(kStopEvent)) {
    event->set();
  } else if (!invocation.options().quiet) {
    out.line(std::string_view("No build of yours is running."));
  }
  return finishOutput(out, ExitCode::Success);
}

constexpr std::array kCommands{
    Command{"build", "Run what is out of date", {{kDryRun}}, build},
    Command{"rebuild", "Run everything", {{kDryRun}}, rebuild},
    Command{"clean",
            "Delete what the tools have made",
            {{{Kind::Flag, "--dry-run", "", "only list the files that would be deleted"}}},
            clean},
    Command{"compile",
            "Run the components for these source files alone, out of date or not",
            {{{Kind::Texts, "PATH", "", "source files of the project", Completes::SourceFile}, kDryRun}},
            compile},
    Command{"stop", "Stop every build of yours, whatever started it", {}, stop},
};

}  // namespace

std::span<const Command> buildCommands() {
  return kCommands;
}

}  // namespace forgeyard::console
