#include "workbench/export/native_run.h"

#include <algorithm>
#include <filesystem>

#include "adapters/assembler/assembler_command.h"
#include "adapters/common/temporary.h"
#include "adapters/common/tool_family.h"
#include "adapters/common/whole_file.h"
#include "adapters/compiler/compiler_command.h"
#include "adapters/linker/link_arguments.h"
#include "adapters/linker/link_script.h"
#include "platform/files/host_location.h"
#include "platform/paths/command_line.h"
#include "platform/registry/registry_keys.h"
#include "workbench/base/failure.h"
#include "workbench/base/program_paths.h"
#include "workbench/import/compiler_names.h"
#include "workbench/import/source_names.h"

namespace forgeyard::workbench {

namespace {

std::string hostPath(const BString& path) {
  return toHost(path).value_or(path.narrow());
}

std::vector<std::string> hostPaths(const std::vector<BString>& paths) {
  std::vector<std::string> result;
  result.reserve(paths.size());
  for (const BString& path : paths) result.push_back(hostPath(path));
  return result;
}

// The compiler component doesn't quote the files of its command. Which words an object's name is made of, the
// adapter tells by directories that exist; before a first build they don't.
std::string withQuotedOutputs(std::string command, const PlannedRun& run) {
  for (const BString& output : run.outputs) {
    const std::string path = output.narrow();
    if (path.find(' ') == path.npos) continue;
    const std::size_t at = command.find(path);
    if (at == command.npos || (at > 0 && command[at - 1] == '"')) continue;
    command.insert(at + path.size(), 1, '"');
    command.insert(at, 1, '"');
  }
  return command;
}

}  // namespace

class NativeRuns::Reader {
 public:
  Reader() : spelling_(registry_) {}

  NativeRun read(const PlannedComponent& component, const PlannedRun& planned) {
    NativeRun run;
    run.outputs = hostPaths(planned.outputs);
    if (planned.file.isNull()) {
      run.inputs = hostPaths(component.inputs);
    } else {
      run.source = hostPath(planned.file);
      run.inputs = {run.source};
    }
    ToolCommand command = splitToolCommand(planned.command.narrow());
    const std::string adapter = adapterOf(command.program);
    if (adapter == "gnu-cc") {
      command = splitToolCommand(withQuotedOutputs(planned.command.narrow(), planned));
      readCompiler(command.arguments, run);
    } else if (adapter == "gnu-as") {
      readAssembler(command.arguments, run);
    } else if (adapter == "TRAMLINK") {
      readLinker(command.arguments, run);
    } else {
      readOther(command, adapter, run);
    }
    return run;
  }

 private:
  // The name of a program that the spawner takes from its own directory; empty for any other.
  std::string adapterOf(const std::string& program) {
    const std::string own = programDirectory();
    if (program.find_first_of("/\\") != program.npos) {
      const std::string file = spelling_.path(program);
      return directoryOf(file) == own ? std::string(fileName(file)) : "";
    }
    return !program.empty() && isExecutable(own + "/" + program) ? program : "";
  }

  void readCompiler(const std::vector<std::string>& words, NativeRun& run) {
    if (words.empty()) throw Failure("gnu-cc gets no compiler to run");
    CompilerCommand command = readCompilerCommand(words, spelling_);
    std::erase(command.arguments, "-MD");
    run.steps.push_back({std::move(command.arguments), "", ""});
    run.compiles = command.sources.size() == 1 && !command.output.empty();
    run.object = command.output;
  }

  void readAssembler(const std::vector<std::string>& words, NativeRun& run) {
    if (words.empty()) throw Failure("gnu-as gets no assembler to run");
    const AssemblerCommand command = readAssemblerCommand(words, spelling_);
    if (!command.error.empty()) throw Failure("gnu-as: " + command.error);
    const std::string objcopy = relatedTool(command.program, "as", "objcopy");
    const std::string nm = relatedTool(command.program, "as", "nm");
    run.steps.push_back({assemblerArguments(command), "", ""});
    if (!command.keepLocals) {
      run.steps.push_back({{objcopy, "--discard-all", command.object}, "", ""});
    } else if (!command.keepEquates) {
      const std::string symbols = command.object + ".symbols";
      const std::string equates = command.object + ".equates";
      run.steps.push_back({{nm, "--format=posix", command.object}, symbols, ""});
      // Names of symbols of the kind "a".
      run.steps.push_back({{"sed", "-n", R"(s/^\(.*\) a .*$/\1/p)", symbols}, equates, ""});
      run.steps.push_back({{objcopy, "--strip-symbols=" + equates, command.object}, "", ""});
      run.steps.push_back({{"rm", "-f", symbols, equates}, "", ""});
    }
    if (!command.symbols.empty()) run.steps.push_back({{nm, "-n", command.object}, command.symbols, ""});
  }

  void readLinker(const std::vector<std::string>& words, NativeRun& run) {
    const LinkCommand command = readLinkCommand(words, spelling_);
    if (!command.error.empty()) throw Failure("TRAMLINK: " + command.error);
    const LinkerTools tools = LinkerTools::configured(registry_, spelling_);
    const TemporaryDirectory temporary("forgeyard");
    LinkerInputs inputs;
    inputs.searched = command.directories;
    inputs.searched.push_back(directoryOf(command.script));
    for (const std::string& directory : runtimeDirectories(tools, temporary.file("directory.txt")))
      inputs.searched.push_back(directory);
    LinkScript script(spelling_, inputs.searched, temporary.path());
    // Objects that it misses will be there when it is used.
    static_cast<void>(script.read(command.script));
    const std::string text = readWholeFile(command.script).value_or("");
    if (text.find('\\') != text.npos)
      throw Failure(command.script + " spells paths with backslashes, which the GNU linker doesn't take");
    inputs.scriptHasSections = script.hasSections();
    if (!command.globalPointer.empty() && !inputs.scriptHasSections)
      throw Failure("a global pointer with the linker's own layout needs a layout that TRAMLINK makes");
    inputs.script = command.script;
    inputs.linked = isConverted(command) ? command.output + ".elf" : command.output;
    run.steps.push_back({linkerArguments(command, tools, inputs), "", ""});
    if (isConverted(command)) {
      // S-records are headed by the name as objcopy gets it.
      run.steps.push_back({conversionArguments(command, tools, std::string(fileName(inputs.linked)),
                                               std::string(fileName(command.output))),
                           "", directoryOf(command.output)});
    }
    if (!command.symbolFile.empty())
      run.steps.push_back({{tools.nm, "-n", inputs.linked}, command.symbolFile, ""});
    if (!command.relocations.empty())
      run.steps.push_back({{tools.readelf, "-rW", inputs.linked}, command.relocations, ""});
    if (isConverted(command)) run.steps.push_back({{"rm", "-f", inputs.linked}, "", ""});
  }

  void readOther(const ToolCommand& command, const std::string& own, NativeRun& run) {
    if (command.program.empty()) throw Failure("its command names no program");
    const bool withDirectory = command.program.find_first_of("/\\") != std::string::npos;
    NativeStep step;
    step.arguments.push_back(withDirectory ? spelling_.path(command.program)
                             : own.empty() ? command.program
                                           : programDirectory() + "/" + own);
    const bool asTheyStand =
        !own.empty() || registry_.get()
                            .value(registry_keys::kNativePaths, std::string(fileName(step.arguments[0])))
                            .has_value();
    for (const std::string& argument : command.arguments)
      step.arguments.push_back(asTheyStand ? argument : spelling_.argument(argument));
    const auto& words = step.arguments;
    run.compiles = !run.source.empty() && run.outputs.size() == 1 && isCompilerDriver(words[0]) &&
                   kindOfFile(run.source) == FileKind::Compiled &&
                   std::find(words.begin(), words.end(), "-c") != words.end();
    if (run.compiles) run.object = run.outputs.front();
    run.steps.push_back(std::move(step));
  }

  UserRegistry registry_;
  HostSpelling spelling_;
};

NativeRuns::NativeRuns() : reader_(std::make_unique<Reader>()) {}
NativeRuns::~NativeRuns() = default;

NativeRun NativeRuns::of(const PlannedComponent& component, const PlannedRun& run) {
  return reader_->read(component, run);
}

}  // namespace forgeyard::workbench
