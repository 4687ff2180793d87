#pragma once

#include <utility>

#include "engine/self_documentation/self_documenting.h"
#include "tools/command_line/cmd_line_settings.h"
#include "tools/component/tool_component.h"

namespace forgeyard {

// The component whose command the user types. It runs for each input file or, with 'Execute Once', once for
// all of them. Main thread only.
class CCmdLine final : public ToolComponent<ICmdLine, CmdLineSettings, CLSID_CmdLine, SelfDocumenting> {
 protected:
  const char16_t* streamName() const override { return u"CmdLineSettings"; }
  std::pair<BString, BString> newDialogTexts() const override;
  bool gathersOnce() override;
  void DoBuild(e_btr* status) override;
  bool commandReady() override { return ValidateCommand(); }
  BString BuildOnceCommand() override;

 private:
  const History& history() const override;
  // False after a message in the output tab.
  bool ValidateCommand();
};

}  // namespace forgeyard
