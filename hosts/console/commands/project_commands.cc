// new: makes a project file.

#include <sys/stat.h>

#include <filesystem>

#include "hosts/console/commands/command.h"
#include "hosts/console/session/session.h"
#include "workbench/base/failure.h"
#include "workbench/project/open_project.h"

namespace forgeyard::console {

using namespace workbench;

namespace {

using Kind = Parameter::Kind;

// Also a link that leads nowhere stands in the way.
bool isTaken(const std::string& path) {
  struct stat status {};
  return ::lstat(path.c_str(), &status) == 0;
}

ExitCode makeProject(const Invocation& invocation) {
  const ProjectFile file = projectFile(invocation.text("FILE"));
  const std::string stem = std::filesystem::path(file.host).stem().string();
  if (isTaken(file.host)) throw Failure(file.host + " exists already; it is not touched.");
  Session session(invocation.options());
  OpenProject project =
      OpenProject::create(session, file, invocation.has("--name") ? invocation.text("--name") : stem);
  project.save();
  return ExitCode::Success;
}

constexpr std::array kCommands{
    Command{"new",
            "Make a project file with one configuration, \"Default\"",
            {{{Kind::Text, "FILE", "",
               "the file to make; its name ends in .nqp, missing directories are made", Completes::File},
              {Kind::Option, "--name", "NAME", "the project's name; left out: that of the file"}}},
            makeProject},
};

}  // namespace

std::span<const Command> projectCommands() {
  return kCommands;
}

}  // namespace forgeyard::console
