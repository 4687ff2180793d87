#pragma once

#include <utility>

#include "tools/compiler/cc_settings.h"
#include "tools/component/tool_component.h"

namespace forgeyard {

// The compiler component. Its command comes from the typed properties of its settings and from the target of
// the active configuration. After each file that really compiled it reads back the names of the files that
// the compiler looked at, so that a change in one of them compiles the source again. Main thread only.
class CCc final : public TargetToolComponent<ICc, CcSettings, CLSID_Cc> {
 protected:
  const char16_t* streamName() const override { return u"Cc"; }
  std::pair<BString, BString> newDialogTexts() const override;
  const TargetToolKind& kind() const override;
  BString render(ICcSettings& settings, IConfiguration& configuration, const BString& program) override;
  bool commandReady() override;
  void fileBuilt(const BString& file) override { ReadDependencyFile(file); }
  bool dependenciesUnknown(const BString& file) override;

 private:
  using Tool = TargetToolComponent<ICc, CcSettings, CLSID_Cc>;

  // Gives the source file the dependencies that the compiler has written beside it, and deletes that list.
  // Where there is none to be read the source file keeps what it has; nothing is said of it.
  void ReadDependencyFile(const BString& file);

  bool someAreMatchSpecs_ = false;  // of the inputs, in a task that keeps dependencies
};

}  // namespace forgeyard
