#include "hosts/console/services/console_host.h"

namespace forgeyard::console {

ConsoleHost::ConsoleHost(LineWriter& output, const Options& options)
    : output_(make<OutputWindow>(output, options.quiet,
                                 options.json ? OutputWindow::Form::Json : OutputWindow::Form::Text)),
      frame_(make<MainFrame>(options)),
      sources_(make<SourceManager>()),
      commands_(make<CommandHost>()) {}

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
