#include "adapters/compiler/compile.h"

#include <errno.h>
#include <unistd.h>

#include <optional>

#include "adapters/common/child.h"
#include "adapters/common/file_names.h"
#include "adapters/common/memory_file.h"
#include "adapters/common/whole_file.h"
#include "adapters/compiler/dependency_file_writer.h"

namespace forgeyard {
namespace {

// Where the component looks for it: the whole path of the source up to its last dot, then ".d". Nothing for a
// path without a dot, with which it doesn't look.
std::optional<std::string> dependencyFileOf(const std::string& source, HostSpelling& spelling) {
  const std::size_t dot = source.rfind('.');
  if (dot == source.npos) return std::nullopt;
  return spelling.outputPath(source.substr(0, dot) + ".d");
}

DependencyPlace placeOf(const CompilerCommand& command, HostSpelling& spelling) {
  const std::string& source = command.sources.front();
  DependencyPlace place;
  place.directory = spelledWorkingDirectory();
  place.target = baseName(command.output);
  place.source = baseName(source);
  if (place.target.empty()) place.target = place.source.substr(0, place.source.rfind('.')) + ".o";
  const auto directory = beginsWithDrive(source) ? spelling.paths().drive(source[0]) : std::nullopt;
  if (directory) {
    place.drive = source.substr(0, 2);
    place.driveDirectory = *directory;
  }
  return place;
}

// A directory that can't be written to gets no dependency file; that is no reason to fail, but to say so.
bool isReadOnly(int error) {
  return error == EACCES || error == EPERM || error == EROFS;
}

// What the driver wrote, in the component's form. Nothing is laid for an empty list file: the driver reads no
// headers for an assembler source.
int layDependencyFile(const std::string& list, const std::string& file, const DependencyPlace& place,
                      const Diagnostics& diagnostics) {
  const std::optional<std::string> text = readWholeFile(list);
  if (!text || text->empty()) return 0;
  const int error = replaceFile(file, dependencyFileText(readMakeRule(*text), place));
  if (!isReadOnly(error)) return error;
  diagnostics.error("warning: cannot write " + file + ": " + errorWords(error) + "; when a file that " +
                    place.source + " includes changes, nobody will know");
  return 0;
}

int report(const ChildResult& result, const Diagnostics& diagnostics) {
  if (!result.problem.empty()) diagnostics.error(result.problem);
  return result.exitCode;
}

int compileWithDependencies(CompilerCommand command, const std::string& file, HostSpelling& spelling,
                            const Diagnostics& diagnostics) {
  const StopSignals signals;
  // Whatever ends this process, nothing of it stays.
  const MemoryFile memory("dependencies");
  ::unlink(file.c_str());
  std::string list = command.dependencyOutput;
  if (list.empty()) {
    list = memory.path();
    command.arguments.insert(command.arguments.end(), {"-MF", list});
  }
  if (!command.namesTarget) command.arguments.insert(command.arguments.end(), {"-MT", "x"});

  const ChildResult result = runChild({command.arguments, {}, {}});
  if (StopSignals::received() != 0) return ADAPTER_SIGNAL_BASE + StopSignals::received();
  if (!result.succeeded()) return report(result, diagnostics);
  const int error = layDependencyFile(list, file, placeOf(command, spelling), diagnostics);
  if (error == 0) return 0;
  // With the object there the source would count as built, with dependencies that nobody knows.
  ::unlink(command.output.c_str());
  diagnostics.error("cannot write " + file + ": " + errorWords(error));
  return ADAPTER_FAILED;
}

// One of them may be a program in front of the driver that nobody knows.
std::string severalSources(const std::vector<std::string>& sources) {
  std::string text = "-MD is for one source, and these would be several:";
  for (std::size_t i = 0; i < sources.size() && i < 5; ++i) text += " \"" + sources[i] + '"';
  if (sources.size() > 5) text += " ...";
  return text + "; the dependencies would be lost. Compile them one by one, or leave -MD out";
}

}  // namespace

int compile(CompilerCommand command, HostSpelling& spelling, const Diagnostics& diagnostics) {
  std::optional<std::string> file;
  if (command.wantsDependencies && command.sources.size() > 1) {
    diagnostics.error(severalSources(command.sources));
    return ADAPTER_USAGE;
  }
  if (command.wantsDependencies && command.sources.size() == 1) {
    file = dependencyFileOf(command.sources.front(), spelling);
  }
  if (file) return compileWithDependencies(std::move(command), *file, spelling, diagnostics);
  return report(becomeProgram(command.arguments), diagnostics);
}

}  // namespace forgeyard
