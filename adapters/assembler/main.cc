// gnu-as: lets the GNU assembler answer to the command line of the assembler component.

#include <stdlib.h>

#include <exception>
#include <string>
#include <string_view>
#include <vector>

#include "adapters/assembler/assembler_command.h"
#include "adapters/assembler/equates.h"
#include "adapters/common/diagnostics.h"
#include "adapters/common/temporary.h"
#include "adapters/common/tool_family.h"
#include "adapters/common/tool_steps.h"
#include "adapters/common/whole_file.h"

namespace {

constexpr std::string_view kHelp =
    "usage: gnu-as ASSEMBLER [OPTION...] [SWITCH...] SOURCE,OBJECT[,SYMBOLS[,LISTING]]\n"
    "\n"
    "Runs a GNU assembler (mipsel-linux-gnu-as, say). OPTIONs are the assembler's own and begin with a "
    "dash.\n"
    "\n"
    "  /c         lines of conditions that don't hold stay in the listing\n"
    "  /eN=V      symbol N has the value V (--defsym)\n"
    "  /g         symbols that aren't global stay in the object\n"
    "  /jDIR      look for included files in DIR (-I)\n"
    "  /m         the listing shows what macros became\n"
    "  /oX        option X of the assembler itself, with or without its dash\n"
    "  /q         no warnings (-W)\n"
    "  /w         equates that aren't global stay in the object, with /g\n"
    "  /z, /zd    debug information (-g)\n"
    "  /k /l /x   taken, without a counterpart here\n"
    "\n"
    "An empty field between commas is a file that isn't wanted. On failure no output stays.\n"
    "\n"
    "Exit code: the assembler's; 128 + n if signal n ended it; 2 wrong usage, 126 not executable, 127 not\n"
    "found.\n";

// What isn't to stay in the object: all local symbols, or the equates among them.
void dropLocals(const forgeyard::AssemblerCommand& command, forgeyard::ToolSteps& steps,
                const forgeyard::Diagnostics& diagnostics) {
  using namespace forgeyard;
  const std::string objcopy = relatedTool(command.program, "as", "objcopy");
  if (!command.keepLocals) {
    steps.run({objcopy, "--discard-all", command.object});
  } else if (!command.keepEquates) {
    const TemporaryDirectory temporary(diagnostics.program());
    const std::string list = temporary.file("symbols");
    steps.run({{relatedTool(command.program, "as", "nm"), "--format=posix", command.object}, list, {}});
    if (const int error = writeWholeFile(list, localEquates(readWholeFile(list).value_or(""))); error != 0) {
      steps.fail("cannot write " + list + ": " + errorWords(error), ADAPTER_FAILED);
    }
    steps.run({objcopy, "--strip-symbols=" + list, command.object});
  }
}

int assemble(const forgeyard::AssemblerCommand& command, const forgeyard::Diagnostics& diagnostics) {
  using namespace forgeyard;
  ToolSteps steps(diagnostics);
  for (const std::string& file : {command.object, command.symbols, command.listing}) steps.output(file);
  steps.run(assemblerArguments(command));
  if (steps.good()) dropLocals(command, steps, diagnostics);
  if (!command.symbols.empty()) {
    steps.run({{relatedTool(command.program, "as", "nm"), "-n", command.object}, command.symbols, {}});
  }
  return steps.exitCode();
}

int run(const forgeyard::Diagnostics& diagnostics, const std::vector<std::string>& words) {
  using namespace forgeyard;
  UserRegistry registry;
  HostSpelling spelling(registry);
  ::setenv("LC_ALL", "C", 1);
  const AssemblerCommand command = readAssemblerCommand(words, spelling);
  if (command.error.empty()) return assemble(command, diagnostics);
  diagnostics.error(command.error);
  return ADAPTER_USAGE;
}

}  // namespace

int main(int count, char** arguments) {
  const forgeyard::Diagnostics diagnostics("gnu-as");
  if (const int answered = forgeyard::answerHelp(diagnostics, count, arguments, kHelp); answered >= 0) {
    return answered;
  }
  if (count < 2) {
    diagnostics.error("no assembler named; usage: gnu-as ASSEMBLER [SWITCH...] FILES (--help tells more)");
    return forgeyard::ADAPTER_USAGE;
  }
  try {
    return run(diagnostics, {arguments + 1, arguments + count});
  } catch (const std::exception& failure) {
    diagnostics.error(failure.what());
    return forgeyard::ADAPTER_FAILED;
  }
}
