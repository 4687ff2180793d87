#pragma once

#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "hosts/console/base/options.h"
#include "platform/com/object.h"
#include "typelib/host.h"

namespace forgeyard::console {

// The main frame of a terminal. Messages go to standard error. A question is asked on the terminal; -y
// answers it with yes or OK, and without a terminal it is answered with no or Cancel, which a line says.
// Modal dialogs and file choosers get what the command laid down before; without that they are cancelled.
// Main thread only.
class MainFrame final : public ComObject<IMainFrame, IUserInterface> {
 public:
  explicit MainFrame(const Options& options) : yes_(options.yes), quiet_(options.quiet) {}

  // The next dialog's edit boxes, in order; those beyond the list keep what they hold.
  void fillNextDialog(std::vector<BString> texts) { dialog_ = std::move(texts); }
  void chooseNextFile(const BString& path) { file_ = path; }
  // What the view with the focus answers to; null for none.
  void setActiveView(IUnknown* view) { activeView_ = Ref<IUnknown>(view); }
  // Gets every message and question too, until the next call; null ends that.
  void setListener(std::function<void(const BString& title, const BString& text)> listener) {
    listener_ = std::move(listener);
  }
  // Whether a question has been answered with no or Cancel because nobody could be asked.
  bool refusedForWantOfTerminal() const { return refused_; }

  HRESULT EnableModeless(std::int32_t) override { return S_OK; }
  HRESULT GetWindow(WindowHandle* out) override;
  HRESULT Reserved() override { return S_OK; }
  HRESULT GetActiveView(Ref<IUnknown>* out) override;

  HRESULT ShowMessage(const BString& text, const BString& title, MessageButtons buttons, MessageIcon icon,
                      MessageAnswer* answer) override;
  HRESULT RunDialog(const BString& title, std::span<DialogField> fields, bool* ok) override;
  HRESULT ChooseFile(const BString& title, const BString& filter, const BString& extension, BString* path,
                     bool* ok) override;

 private:
  bool agrees(const std::string& question, const std::string& title);

  bool yes_;
  bool quiet_;
  bool refused_ = false;
  std::function<void(const BString& title, const BString& text)> listener_;
  std::optional<std::vector<BString>> dialog_;
  std::optional<BString> file_;
  Ref<IUnknown> activeView_;
};

}  // namespace forgeyard::console
