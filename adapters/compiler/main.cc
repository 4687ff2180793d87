// gnu-cc: lets a GNU compiler driver answer to the command line of the compiler component.

#include <stdlib.h>

#include <exception>
#include <string>
#include <string_view>
#include <vector>

#include "adapters/common/diagnostics.h"
#include "adapters/common/host_spelling.h"
#include "adapters/compiler/compile.h"
#include "adapters/compiler/compiler_command.h"

namespace {

constexpr std::string_view kHelp =
    "usage: gnu-cc DRIVER ARGUMENT...\n"
    "\n"
    "Runs a GNU compiler driver (mipsel-linux-gnu-gcc, say) with arguments whose paths are spelled with\n"
    "backslashes and drives. Paths of input files and of -o -I -L -B -T -isystem -iquote -idirafter "
    "-include\n"
    "-imacros -isysroot -iprefix --sysroot= -specs= -MF, and those inside -Wp, -Wa, -Wl, are spelled for "
    "this\n"
    "system; all else is handed on word for word.\n"
    "\n"
    "With -MD the dependencies of the one source go into a file beside it, SOURCE without its extension "
    "plus\n"
    "\".d\", in the form that the compiler component reads.\n"
    "\n"
    "Exit code: the driver's; 128 + n if signal n ended it; 2 wrong usage, 126 not executable, 127 not "
    "found.\n";

int run(const forgeyard::Diagnostics& diagnostics, const std::vector<std::string>& words) {
  using namespace forgeyard;
  UserRegistry registry;
  HostSpelling spelling(registry);
  // Plain quotes and English, as whoever reads the lines for errors expects.
  ::setenv("LC_ALL", "C", 1);
  return compile(readCompilerCommand(words, spelling), spelling, diagnostics);
}

}  // namespace

int main(int count, char** arguments) {
  const forgeyard::Diagnostics diagnostics("gnu-cc");
  if (const int answered = forgeyard::answerHelp(diagnostics, count, arguments, kHelp); answered >= 0) {
    return answered;
  }
  if (count < 2) {
    diagnostics.error("no compiler driver named; usage: gnu-cc DRIVER ARGUMENT... (--help tells more)");
    return forgeyard::ADAPTER_USAGE;
  }
  try {
    return run(diagnostics, {arguments + 1, arguments + count});
  } catch (const std::exception& failure) {
    diagnostics.error(failure.what());
    return forgeyard::ADAPTER_FAILED;
  }
}
