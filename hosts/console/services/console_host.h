#pragma once

#include "hosts/console/base/options.h"
#include "hosts/console/services/line_writer.h"
#include "hosts/console/services/main_frame.h"
#include "hosts/console/services/output_window.h"
#include "hosts/console/services/source_manager.h"
#include "typelib/progress.h"
#include "workbench/session/host.h"

namespace forgeyard::console {

// The site that the module's objects get: the look-up of every service that a terminal can offer. What the
// workbench has to tell goes to standard error. Main thread only.
class ConsoleHost final : public ComObject<IServiceLookup>, public workbench::Host {
 public:
  // Borrows the writer.
  ConsoleHost(LineWriter& output, const Options& options);

  MainFrame& frame() const { return *frame_; }
  OutputWindow& outputWindow() const { return *output_; }
  workbench::CommandHost& commands() const override { return *commands_; }
  void setBuildTool(IUnknown* tool) override { tool_ = Ref<IUnknown>(tool); }
  // Hears of builds; null, as at first: nobody does.
  void setBuildProgress(IBuildProgress* progress) { progress_ = Ref<IBuildProgress>(progress); }

  void tell(const std::string& message) override;
  void note(const std::string& message) override;
  bool agrees(const std::string& title, const std::string& question) override;
  std::unique_ptr<workbench::Progress> begin(const std::string& counted) override;
  void fillNextDialog(std::vector<BString> texts) override { frame_->fillNextDialog(std::move(texts)); }
  IUnknown* site() override { return static_cast<IServiceLookup*>(this); }

  HRESULT LookUp(const Guid& service, const Guid& iid, void** out) override;

 private:
  Ref<OutputWindow> output_;
  Ref<MainFrame> frame_;
  Ref<SourceManager> sources_;
  Ref<workbench::CommandHost> commands_;
  Ref<IUnknown> tool_;
  Ref<IBuildProgress> progress_;
  bool quiet_;
};

}  // namespace forgeyard::console
