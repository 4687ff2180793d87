#pragma once

#include <utility>

#include "tools/assembler/asm_settings.h"
#include "tools/component/tool_component.h"

namespace forgeyard {

// The assembler component. Its command comes from the typed properties of its settings and from the target of
// the active configuration. Main thread only.
class CAsm final : public TargetToolComponent<IAsm, AsmSettings, CLSID_Asm> {
 protected:
  const char16_t* streamName() const override { return u"Asm"; }
  std::pair<BString, BString> newDialogTexts() const override;
  const TargetToolKind& kind() const override;
  BString render(IAsmSettings& settings, IConfiguration& configuration, const BString& program) override;
};

}  // namespace forgeyard
