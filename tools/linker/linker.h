#pragma once

#include <cstddef>
#include <utility>

#include "tools/component/tool_component.h"
#include "tools/linker/linker_settings.h"

namespace forgeyard {

// The linker component: one link of one script, whose objects the script itself names. What it makes follows
// from its settings and the script, so its outputs are worked out before they are gathered. Main thread only.
class CLinker final : public ToolComponent<ILinker, LinkerSettings, CLSID_Linker> {
 protected:
  const char16_t* streamName() const override { return u"Linker"; }
  std::pair<BString, BString> newDialogTexts() const override;
  bool gathersOnce() override { return true; }
  void StartTask() override;
  void DoBuild(e_btr* status) override;
  bool commandReady() override { return GenerateCommand() == 0; }

 private:
  // How many inputs are scripts; the last of them becomes ScriptFile.
  std::size_t CountScripts();
  // Output, and an output name where there is none, from the settings and the script.
  void UpdateLinkerOutput();
  // Puts the command into the settings of the active configuration. 0, or 1 after a message in the output
  // tab.
  int GenerateCommand();

  BString scriptFile_;
};

}  // namespace forgeyard
