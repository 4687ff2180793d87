// export: files with which others build the project, or understand its sources.

#include <filesystem>

#include "hosts/console/base/report.h"
#include "hosts/console/commands/command.h"
#include "hosts/console/services/standard_input.h"
#include "hosts/console/session/session.h"
#include "platform/files/host_location.h"
#include "workbench/base/failure.h"
#include "workbench/base/nearest.h"
#include "workbench/export/exported_file.h"
#include "workbench/export/formats.h"

namespace forgeyard::console {

using namespace workbench;

namespace {

using Kind = Parameter::Kind;
constexpr const char* kOutput = "-o,--output";

std::string outputFile(const Invocation& invocation, const std::string& directory, const char* name) {
  const std::string& wanted = invocation.text(kOutput);
  if (wanted == kStandardStream) return wanted;
  if (wanted.empty()) return directory + "/" + name;
  const ModelPath model = toModel(wanted);
  if (!model) throw Failure(model.error);
  return spelledHost(model.path).value_or(wanted);
}

void put(Session& session, const std::string& file, const std::string& text,
         bool (*isExported)(std::string_view)) {
  if (file == kStandardStream) return session.output().lines(text);
  writeExported(session.host(), file, text, isExported);
}

ExitCode exportCompileCommands(const Invocation& invocation) {
  Session session(invocation.options());
  OpenProject project(session);
  const std::string directory = directoryOf(project.project());
  const std::string file = outputFile(invocation, directory, "compile_commands.json");
  put(session, file, compileCommandsText(directory, compilationsOf(project)), isExportedDatabase);
  return session.finish();
}

ExitCode exportNinja(const Invocation& invocation) {
  Session session(invocation.options());
  OpenProject project(session);
  const std::string file = outputFile(invocation, directoryOf(project.project()), "build.ninja");
  const ExportPlan plan = exportPlanOf(project);
  put(session, file, ninjaText(plan), isExportedRules);
  const std::vector<std::string> unreadable = unreadableForNinja(plan);
  if (!unreadable.empty())
    complain("ninja can't read these names in lists of headers, so they are compiled each time: " +
             enumeration(unreadable));
  return session.finish();
}

ExitCode exportMake(const Invocation& invocation) {
  Session session(invocation.options());
  OpenProject project(session);
  const std::string directory = directoryOf(project.project());
  const std::string file = outputFile(invocation, directory, "Makefile");
  const std::string name =
      file == kStandardStream ? "Makefile" : std::filesystem::path(file).lexically_relative(directory);
  put(session, file, makeText(exportPlanOf(project), name), isExportedRules);
  return session.finish();
}

constexpr std::array kCommands{
    Command{"export compile-commands",
            "Write how each source is compiled, for clangd, clang-tidy and their like",
            {{{Kind::Option, kOutput, "FILE",
               "the file to write, \"-\" for standard output; left out: compile_commands.json beside the "
               "project"}}},
            exportCompileCommands},
    Command{"export ninja",
            "Write a file with which ninja builds the project without Forgeyard",
            {{{Kind::Option, kOutput, "FILE",
               "the file to write, \"-\" for standard output; left out: build.ninja beside the project"}}},
            exportNinja},
    Command{"export make",
            "Write a file with which GNU make builds the project without Forgeyard",
            {{{Kind::Option, kOutput, "FILE",
               "the file to write, \"-\" for standard output; left out: Makefile beside the project"}}},
            exportMake},
};

}  // namespace

std::span<const Command> exportCommands() {
  return kCommands;
}

}  // namespace forgeyard::console
