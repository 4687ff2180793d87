#pragma once

#include "platform/com/ref.h"
#include "typelib/host.h"

namespace forgeyard {

// Holds the host's modeless windows while a message or modal dialog is up, and reaches the user through its
// main frame. Construction throws StatusError(E_FAIL) when there is no main frame or it has no window.
class ModalScope {
 public:
  explicit ModalScope(IServiceLookup* services) : frame_(lookUp<IMainFrame>(services, SID_MainFrame)) {
    if (!frame_) throw StatusError(E_FAIL);
    check(frame_->EnableModeless(0));
    WindowHandle window = 0;
    if (failed(frame_->GetWindow(&window)) || window == 0) {
      ignore(frame_->EnableModeless(1));
      throw StatusError(E_FAIL);
    }
  }
  ModalScope(const ModalScope&) = delete;
  ModalScope& operator=(const ModalScope&) = delete;
  ~ModalScope() { ignore(frame_->EnableModeless(1)); }

  // Throws StatusError(E_FAIL) when the frame can't ask the user anything.
  IUserInterface& userInterface() const {
    if (!userInterface_) userInterface_ = frame_.as<IUserInterface>();
    if (!userInterface_) throw StatusError(E_FAIL);
    return *userInterface_;
  }
  MessageAnswer show(const BString& text, const BString& title, MessageButtons buttons,
                     MessageIcon icon) const {
    MessageAnswer answer = MessageAnswer::Cancel;
    check(userInterface().ShowMessage(text, title, buttons, icon, &answer));
    return answer;
  }

 private:
  Ref<IMainFrame> frame_;
  mutable Ref<IUserInterface> userInterface_;
};

}  // namespace forgeyard
