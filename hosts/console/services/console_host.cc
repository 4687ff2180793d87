#include "hosts/console/services/console_host.h"

#include "hosts/console/base/report.h"
#include "hosts/console/services/progress_counter.h"

namespace forgeyard::console {

using namespace workbench;

ConsoleHost::ConsoleHost(LineWriter& output, const Options& options)
    : output_(make<OutputWindow>(output, options.quiet,
                                 options.json ? OutputWindow::Form::Json : OutputWindow::Form::Text)),
      frame_(make<MainFrame>(options)),
      sources_(make<SourceManager>()),
      commands_(make<workbench::CommandHost>()),
      quiet_(options.quiet) {}

void ConsoleHost::tell(const std::string& message) {
  complain(message);
}

void ConsoleHost::note(const std::string& message) {
  if (!quiet_) complain(message);
}

bool ConsoleHost::agrees(const std::string& title, const std::string& question) {
  MessageAnswer answer = MessageAnswer::No;
  check(frame_->ShowMessage(BString::fromNarrow(question), BString::fromNarrow(title), MessageButtons::YesNo,
                            MessageIcon::Exclamation, &answer));
  return answer == MessageAnswer::Yes;
}

std::unique_ptr<workbench::Progress> ConsoleHost::begin(const std::string& counted) {
  return std::make_unique<ProgressCounter>(counted, quiet_);
}

HRESULT ConsoleHost::LookUp(const Guid& service, const Guid& iid, void** out) {
  // First what is asked for with every line.
  if (service == SID_OutputWindow) return output_->QueryInterface(iid, out);
  if (service == SID_MainFrame) return frame_->QueryInterface(iid, out);
  if (service == SID_SourceManager) return sources_->QueryInterface(iid, out);
  if (service == SID_CommandHost) return commands_->QueryInterface(iid, out);
  if (service == SID_BuildTool && tool_) return tool_->QueryInterface(iid, out);
  if (service == SID_BuildProgress && progress_) return progress_->QueryInterface(iid, out);
  if (service == SID_ServiceLookup) return QueryInterface(iid, out);
  *out = nullptr;
  return E_FAIL;
}

}  // namespace forgeyard::console
