#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "platform/com/enumerators.h"
#include "platform/com/unknown.h"
#include "platform/text/bstring.h"

namespace forgeyard {

// Modal dialogs with lists and buttons, as models without a toolkit: a host draws the controls one below the
// other and hands back what the user does; a test does the same without drawing.

enum class ControlKind : std::uint8_t { Edit, List, Combo, Button };

struct DialogControl {
  ControlKind kind = ControlKind::Button;
  BString label;               // with its accelerator mark
  BString text;                // of an edit
  std::vector<BString> items;  // of a list or combo
  std::int32_t selected = -1;  // position in items; -1 for none
  bool enabled = true;
};

struct IDialogModel : IUnknown {
  using Base = IUnknown;
  static constexpr Guid iid = guid("5B2D7035-93C4-4E6F-A8D1-2F60C1B49E01");

  virtual HRESULT get_Title(BString* value) = 0;
  // In the order of the tab key; the last button is the one that Esc presses. Valid until the next event.
  virtual HRESULT GetControls(std::span<const DialogControl>* out) = 0;

  // What the user does. E_INVALIDARG for a control that isn't there, is disabled or of another kind.
  virtual HRESULT SetText(std::size_t control, const BString& text) = 0;
  virtual HRESULT Select(std::size_t control, std::int32_t item) = 0;
  // *ended says that the dialog is over. Boxes and further dialogs may come up meanwhile.
  virtual HRESULT Press(std::size_t control, bool* ended) = 0;
};

// One choice of a file chooser: "C files (*.c)" and "*.c".
struct FileFilter {
  BString description;
  BString pattern;
};

// Runs dialogs, with the main frame's window as owner: an interface of the main frame beside IUserInterface.
struct IDialogHost : IUnknown {
  using Base = IUnknown;
  static constexpr Guid iid = guid("5B2D7034-93C4-4E6F-A8D1-2F60C1B49E01");

  // Returns when the dialog is over.
  virtual HRESULT RunModal(IDialogModel* dialog) = 0;
  // Existing files, any number of them, as full paths in the model's spelling; null when the user cancels.
  virtual HRESULT ChooseFiles(const BString& title, std::span<const FileFilter> filters,
                              Ref<IEnumString>* out) = 0;
};

}  // namespace forgeyard
