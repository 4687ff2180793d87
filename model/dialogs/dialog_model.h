#pragma once

#include <utility>
#include <vector>

#include "platform/com/object.h"
#include "typelib/dialog.h"
#include "typelib/host.h"

namespace forgeyard {

// Base of the model's dialogs: keeps title and controls and checks what the user does. A derived class makes
// its controls and says what its buttons do. Main thread only.
class DialogModel : public ComObject<IDialogModel> {
 public:
  // IDialogModel
  HRESULT get_Title(BString* value) override;
  HRESULT GetControls(std::span<const DialogControl>* out) override;
  HRESULT SetText(std::size_t control, const BString& text) override;
  HRESULT Select(std::size_t control, std::int32_t item) override;
  HRESULT Press(std::size_t control, bool* ended) override;

 protected:
  DialogModel(BString title, IServiceLookup* services) : title_(std::move(title)), services_(services) {}

  // A button was pressed: whether the dialog is over. Throws StatusError.
  virtual bool pressed(std::size_t control) = 0;

  const BString& title() const { return title_; }
  IServiceLookup* services() const { return services_.get(); }
  DialogControl& control(std::size_t position) { return controls_[position]; }
  // Returns the control's position.
  std::size_t add(ControlKind kind, const BString& label);
  // New items with the first selected, or none if there are none.
  static void fill(DialogControl& control, std::vector<BString> items);
  // The text of the selected item; null when none is.
  static BString selectedText(const DialogControl& control);

 private:
  DialogControl* usable(std::size_t control);

  BString title_;
  Ref<IServiceLookup> services_;
  std::vector<DialogControl> controls_;
};

// Runs a dialog under the main frame. Throws StatusError(E_FAIL) when there is no frame or it can't show one.
void runDialog(IServiceLookup* services, IDialogModel& dialog);

}  // namespace forgeyard
