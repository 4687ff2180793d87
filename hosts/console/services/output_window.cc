#include "hosts/console/services/output_window.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "hosts/console/services/json_lines.h"

namespace forgeyard::console {

bool OutputWindow::hasTab(const BString& tab) const {
  return std::find(tabs_.begin(), tabs_.end(), tab) != tabs_.end();
}

HRESULT OutputWindow::OpenTab(const BString& tab, std::int32_t* value, std::int32_t create) {
  return guard([&] {
    if (!hasTab(tab) && create) tabs_.push_back(tab);
    *value = hasTab(tab) ? 1 : 0;
    return *value ? S_OK : E_FAIL;
  });
}

HRESULT OutputWindow::ShowTab(const BString& tab) {
  return hasTab(tab) ? S_OK : E_FAIL;
}

HRESULT OutputWindow::AddLine(const BString& tab, const BString& text) {
  return guard([&] {
    if (listener_) {
      listener_(tab, text);
    } else if (quiet_) {
      addQuietly(tab, text);
    } else {
      write(tab, text);
    }
  });
}

void OutputWindow::write(const BString& tab, const BString& text, LineOrigin origin) {
  if (sink_) return sink_->write(tab, text, origin);
  if (form_ == Form::Json)
    return writeObject(*writer_, "line", {{"tab", tab.narrow()}, {"text", text.narrow()}});
  writer_->line(text.view());
}

HRESULT OutputWindow::ClearTab(const BString&) {
  held_ = {};
  return S_OK;
}

void OutputWindow::addQuietly(const BString& tab, const BString& text) {
  switch (filter_.judge(text)) {
    case QuietFilter::Verdict::Show:
      if (!held_.isNull()) write(tab, held_, LineOrigin::Module);
      held_ = {};
      write(tab, text);
      break;
    case QuietFilter::Verdict::Hold:
      held_ = text;
      break;
    case QuietFilter::Verdict::Forget:
      held_ = {};
      break;
    case QuietFilter::Verdict::Drop:
      break;
  }
}

}  // namespace forgeyard::console
