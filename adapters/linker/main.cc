// TRAMLINK: lets the GNU linker and its companions answer to the command line of the linker component.

#include <stdlib.h>

#include <exception>
#include <string>
#include <string_view>
#include <vector>

#include "adapters/common/diagnostics.h"
#include "adapters/common/host_spelling.h"
#include "adapters/linker/link.h"
#include "adapters/linker/link_command.h"
#include "adapters/linker/linker_tools.h"

namespace {

constexpr std::string_view kHelp =
    "usage: TRAMLINK [SWITCH...] [-OPTION...] @SCRIPT,OUTPUT[,SYMBOLS[,MAP]]\n"
    "\n"
    "Links what SCRIPT names, in the language of the GNU linker (ENTRY, INPUT, GROUP, SECTIONS, INCLUDE...) "
    "with\n"
    "backslashes and drives in paths as you like. Without SECTIONS the linker's own layout holds. The output "
    "is\n"
    "an ELF executable. OPTIONs go to the linker as they are.\n"
    "\n"
    "  /eN=V      symbol N has the value V\n"
    "  /gpV       the global pointer is V\n"
    "  /lDIR      look for inputs in DIR; then come the script's directory and those of the C compiler\n"
    "  /m         cross references in the map\n"
    "  /p         the output is a pure binary\n"
    "  /ps        the output is S-records\n"
    "  /rmips=F   relocations go into file F as a report\n"
    "  /wm        warn of variables that are defined in common by several files\n"
    "  /z         bss sections are written out as zeros\n"
    "  /c /s /v /wl  taken, without a counterpart here\n"
    "\n"
    "The tools: environment FORGEYARD_LINKER, else the value \"Linker\" of the registry key\n"
    "\"Software\\Korvel\\Build Tool\" (forgeyard target detect enters it, target add NAME --linker TEXT "
    "changes\n"
    "it), else mipsel-linux-gnu-; a prefix or the linker's path.\n"
    "An empty field between commas is a file that isn't wanted. On failure no output stays.\n"
    "\n"
    "Exit code: that of the tool that failed; 128 + n if signal n ended it; 1 a fault in the script, 2 "
    "wrong\n"
    "usage, 126 not executable, 127 not found.\n";

int run(const forgeyard::Diagnostics& diagnostics, const std::vector<std::string>& words) {
  using namespace forgeyard;
  UserRegistry registry;
  HostSpelling spelling(registry);
  ::setenv("LC_ALL", "C", 1);
  const LinkCommand command = readLinkCommand(words, spelling);
  if (command.error.empty()) {
    return link(command, LinkerTools::configured(registry, spelling), spelling, diagnostics);
  }
  diagnostics.error(command.error);
  return ADAPTER_USAGE;
}

}  // namespace

int main(int count, char** arguments) {
  const forgeyard::Diagnostics diagnostics("TRAMLINK");
  if (const int answered = forgeyard::answerHelp(diagnostics, count, arguments, kHelp); answered >= 0) {
    return answered;
  }
  try {
    return run(diagnostics, {arguments + 1, arguments + count});
  } catch (const std::exception& failure) {
    diagnostics.error(failure.what());
    return forgeyard::ADAPTER_FAILED;
  }
}
