#pragma once

#include "platform/com/type_info.h"
#include "typelib/host.h"
#include "typelib/output.h"

namespace forgeyard {

// The output tab of a build participant: lines go to the host's output window, which is looked up for each
// line, since the host may take it away. Stands in ComObject's list.
class OutputTab : public Dual<IOutputTab> {
 public:
  using Base = IOutputTab;
  static constexpr Guid iid = IOutputTab::iid;

  HRESULT get_OutputTab(BString* value) override {
    *value = tab_;
    return S_OK;
  }
  HRESULT put_OutputTab(const BString& value) override {
    tab_ = value;
    return S_OK;
  }
  HRESULT MsgOut(const BString& text) override {
    return guard([&] {
      if (text.isNull()) return S_FALSE;
      const Ref<IOutputWindow> window = lookUp<IOutputWindow>(outputServices(), SID_OutputWindow);
      const Ref<IOutputLines> lines = window.as<IOutputLines>();
      return lines && succeeded(lines->AddLine(tab_, text)) ? S_OK : S_FALSE;
    });
  }

 protected:
  // Where the owner looks services up; null is allowed.
  virtual IServiceLookup* outputServices() const = 0;
  // A line that may be lost without harm.
  void say(const BString& text) { ignore(MsgOut(text)); }

 private:
  BString tab_ = u"Build";
};

}  // namespace forgeyard
