#include "tools/assembler/asm.h"

#include "platform/registry/registry_keys.h"
#include "tools/assembler/asm_command.h"

namespace forgeyard {

namespace {

constexpr TargetToolKind kAssembler{registry_keys::kAssemblers, u"assembler"};

}  // namespace

std::pair<BString, BString> CAsm::newDialogTexts() const {
  return {u"New assembler", u"&Name of the new assembler component:"};
}

const TargetToolKind& CAsm::kind() const {
  return kAssembler;
}

BString CAsm::render(IAsmSettings& settings, IConfiguration&, const BString& program) {
  return assemblerCommand(settings, program);
}

}  // namespace forgeyard
