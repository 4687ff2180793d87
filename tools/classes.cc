#include "tools/classes.h"

#include <array>

#include "tools/assembler/asm.h"
#include "tools/command_line/cmd_line.h"
#include "tools/compiler/cc.h"
#include "tools/linker/linker.h"

namespace forgeyard {

std::span<const ClassEntry> toolClasses() {
  static constexpr std::array classes{
      ClassEntry{CLSID_CmdLine, "CmdLine", createObject<CCmdLine>},
      ClassEntry{CLSID_CmdLineSettings, "CmdLineSettings", createObject<CmdLineSettings>},
      ClassEntry{CLSID_Cc, "Cc", createObject<CCc>},
      ClassEntry{CLSID_CcSettings, "CcSettings", createObject<CcSettings>},
      ClassEntry{CLSID_Asm, "Asm", createObject<CAsm>},
      ClassEntry{CLSID_AsmSettings, "AsmSettings", createObject<AsmSettings>},
      ClassEntry{CLSID_Linker, "Linker", createObject<CLinker>},
      ClassEntry{CLSID_LinkerSettings, "LinkerSettings", createObject<LinkerSettings>},
  };
  return classes;
}

}  // namespace forgeyard
