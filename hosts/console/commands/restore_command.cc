// restore: makes a project file of what dump has shown.

#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "hosts/console/base/report.h"
#include "hosts/console/commands/command.h"
#include "hosts/console/services/standard_input.h"
#include "hosts/console/session/session.h"
#include "workbench/base/failure.h"
#include "workbench/text/json_reader.h"
#include "workbench/text/project_records.h"

namespace forgeyard::console {

using namespace workbench;

namespace {

using Kind = Parameter::Kind;

bool isTaken(const std::string& path) {
  struct stat status {};
  return ::lstat(path.c_str(), &status) == 0;
}

// Whether it replaces a file.
bool mayReplace(Session& session, const ProjectFile& file) {
  if (!isTaken(file.host)) return false;
  if (std::error_code error; std::filesystem::is_directory(file.host, error))
    throw Failure(file.host + " is a directory. Name the file to make in it.");
  if (!session.host().agrees("Restore", file.host + " exists already. Replace it?"))
    throw Failure(file.host + " was left as it is.");
  return true;
}

ReadJson readSource(const std::string& path, const std::string& name) {
  try {
    return readJson(path == kStandardStream ? readStandardInput() : readWhole(path));
  } catch (const JsonFault& fault) {
    std::string what = fault.what();
    throw Failure(name + ", " + what + (what.ends_with('.') || what.ends_with('?') ? "" : "."));
  }
}

// What was restored may still be a project that doesn't load whole.
void tellOfLoad(const ProjectFile& file, const std::string& name) {
  for (const LoadOmission& omission : readRecords(file).load.leftOut)
    complain(name + ": a load leaves out " + omission.what + ": " + omission.why + ".");
}

ExitCode restoreToOutput(Session& session, const ReadJson& read, const std::string& source) {
  if (session.options().json) throw Failure("A project file is no JSON line. Name a file in place of -.");
  if (::isatty(STDOUT_FILENO) == 1)
    throw Failure("A project file is no text for a terminal. Send it to a file, or name one in place of -.");
  const TemporaryProject made;
  const ProjectFile file = projectFile(made.path());
  writeRecords(file, read.records, source, false);
  tellOfLoad(file, "standard output");
  session.output().raw(readWhole(made.path()));
  return session.finish();
}

ExitCode restore(const Invocation& invocation) {
  const std::string& from = invocation.text("JSON");
  const std::string& to = invocation.text("FILE");
  const std::string source = from == kStandardStream ? "standard input" : from;
  const ReadJson read = readSource(from, source);
  Session session(invocation.options());
  for (const LoadOmission& omission : read.leftOut)
    complain(source + ": " + omission.what + " was left out when it was made: " + omission.why + ".");
  if (to == kStandardStream) return restoreToOutput(session, read, source);
  const ProjectFile file = projectFile(to, FileNames::Any);
  const bool replace = mayReplace(session, file);
  const std::filesystem::path directory = std::filesystem::path(file.host).parent_path();
  if (std::error_code error; !std::filesystem::is_directory(directory, error))
    throw Failure("There is no directory " + directory.string() + " for the file.");
  writeRecords(file, read.records, source, replace);
  tellOfLoad(file, file.host);
  return session.finish();
}

constexpr std::array kCommands{
    Command{"restore",
            "Make a project file of what dump has shown, byte for byte in every stream",
            {{{Kind::Text, "JSON", "", "the output of dump, also a changed one; - for standard input",
               Completes::File},
              {Kind::Text, "FILE", "", "the file to make, - for standard output; replaced only with -y",
               Completes::ProjectFile}}},
            restore},
};

}  // namespace

std::span<const Command> restoreCommands() {
  return kCommands;
}

}  // namespace forgeyard::console
