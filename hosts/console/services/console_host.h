#pragma once

#include "hosts/console/base/options.h"
#include "hosts/console/services/command_host.h"
#include "hosts/console/services/line_writer.h"
#include "hosts/console/services/main_frame.h"
#include "hosts/console/services/output_window.h"
#include "hosts/console/services/source_manager.h"
#include "typelib/progress.h"

namespace forgeyard::console {

// The site that the module's objects get: the look-up of every service that a terminal can offer. Main thread
// only.
class ConsoleHost final : public ComObject<IServiceLookup> {
 public:
  // Borrows the writer.
  ConsoleHost(LineWriter& output, const Options& options);

  MainFrame& frame() const { return *frame_; }
  OutputWindow& outputWindow() const { return *output_; }
  CommandHost& commands() const { return *commands_; }
  // What the module's objects find as the build tool. Null, which lets go of it, before the end.
  void setBuildTool(IUnknown* tool) { tool_ = Ref<IUnknown>(tool); }
  // Hears of builds; null, as at first: nobody does.
  void setBuildProgress(IBuildProgress* progress) { progress_ = Ref<IBuildProgress>(progress); }

  HRESULT LookUp(const Guid& service, const Guid& iid, void** out) override;

 private:
  Ref<OutputWindow> output_;
  Ref<MainFrame> frame_;
  Ref<SourceManager> sources_;
  Ref<CommandHost> commands_;
  Ref<IUnknown> tool_;
  Ref<IBuildProgress> progress_;
};

}  // namespace forgeyard::console
