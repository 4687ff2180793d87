#pragma once

#include <algorithm>
#include <deque>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "platform/com/connection_point.h"
#include "platform/com/object.h"
#include "platform/com/type_info.h"
#include "typelib/builder.h"
#include "typelib/dialog.h"
#include "typelib/host.h"

namespace forgeyard::test {

// A message box as it was shown.
struct ShownMessage {
  std::string text;
  std::string title;
  MessageButtons buttons = MessageButtons::Ok;
  MessageIcon icon = MessageIcon::None;

  friend bool operator==(const ShownMessage&, const ShownMessage&) = default;
};

// The host of a test: one object that is the service look-up and every service. Questions are answered from a
// script, in order; without one the answer is the agreeing one (OK or Yes). All that it is told is recorded.
// Owned by reference like any object: `const auto host = make<TestHost>();`. Break cycles (OnClose, clear())
// before the end of the test.
class TestHost final : public ComObject<IServiceLookup, IMainFrame, IUserInterface, IOutputWindow,
                                        IOutputLines, ISourceManager, ICommandHost, IDialogHost> {
 public:
  using Dialog = std::function<bool(std::span<DialogField>)>;
  using ModalUser = std::function<void(IDialogModel&)>;

  // Script and record

  // The next message boxes are answered with these.
  void answer(MessageAnswer next) { answers_.push_back(next); }
  // The next dialog is filled in by the function, which says whether OK was pressed.
  void fillDialog(Dialog next) { dialogs_.push_back(std::move(next)); }
  // The next modal dialog is used by the function; without one it is left with its last button.
  void useDialog(ModalUser next) { modalUsers_.push_back(std::move(next)); }
  const std::vector<ShownMessage>& messages() const { return messages_; }
  // The file that the next file dialog gives; without one it is cancelled.
  void chooseFile(const BString& path) { chosenFile_ = path; }
  // What the next chooser of several files gives; without it that is cancelled.
  void chooseFiles(std::vector<BString> paths) { chosenFiles_ = std::move(paths); }
  // Titles of the dialogs that were run.
  const std::vector<std::string>& dialogTitles() const { return dialogTitles_; }
  // Lines of one output tab, oldest first; empty for a tab that has none.
  std::vector<std::string> lines(const BString& tab = u"Build") const;
  const std::vector<std::string>& openedTabs() const { return openedTabs_; }
  int saveAllCalls() const { return saveAllCalls_; }
  // Objects registered for commands and not yet taken out again.
  const std::vector<std::pair<Guid, IUnknown*>>& registered() const { return registered_; }
  const std::vector<std::pair<std::uint32_t, std::uint32_t>>& refreshedMenus() const { return menus_; }
  // Calls of EnableModeless(0) without their EnableModeless(1): 0 whenever no box is up.
  int modalDepth() const { return modalDepth_; }

  // Services

  // Serves an object under an identifier of its own, or in place of the host itself; null takes it away.
  void provide(const Guid& service, IUnknown* object);
  // Takes a service of the host itself away.
  void withdraw(const Guid& service) { provide(service, nullptr); }
  void setActiveView(IUnknown* view) { activeView_ = Ref<IUnknown>(view); }
  void setWindow(WindowHandle window) { window_ = window; }
  // Lets go of every object it was given.
  void clear();

  HRESULT LookUp(const Guid& service, const Guid& iid, void** out) override;

  HRESULT EnableModeless(std::int32_t enable) override;
  HRESULT GetWindow(WindowHandle* out) override;
  HRESULT Reserved() override { return S_OK; }
  HRESULT GetActiveView(Ref<IUnknown>* out) override;

  HRESULT ShowMessage(const BString& text, const BString& title, MessageButtons buttons, MessageIcon icon,
                      MessageAnswer* answer) override;
  HRESULT RunDialog(const BString& title, std::span<DialogField> fields, bool* ok) override;
  HRESULT ChooseFile(const BString& title, const BString& filter, const BString& extension, BString* path,
                     bool* ok) override;

  HRESULT RunModal(IDialogModel* dialog) override;
  HRESULT ChooseFiles(const BString& title, std::span<const FileFilter> filters,
                      Ref<IEnumString>* out) override;

  HRESULT OpenTab(const BString& tab, std::int32_t* value, std::int32_t create) override;
  HRESULT ShowTab(const BString& tab) override;
  HRESULT AddLine(const BString& tab, const BString& text) override;
  HRESULT ClearTab(const BString& tab) override;

  HRESULT SaveAll(Ref<IUnknown>* token) override;

  HRESULT RegisterObject(const Guid& clsid, IUnknown* object) override;
  HRESULT UnregisterObject(const Guid& clsid, IUnknown* object) override;
  HRESULT RefreshMenu(std::uint32_t firstId, std::uint32_t lastId) override;

 private:
  std::deque<MessageAnswer> answers_;
  std::deque<Dialog> dialogs_;
  std::deque<ModalUser> modalUsers_;
  std::vector<ShownMessage> messages_;
  std::vector<std::string> dialogTitles_;
  BString chosenFile_;
  std::vector<BString> chosenFiles_;
  std::vector<std::pair<std::string, std::string>> lines_;  // tab and text
  std::vector<std::string> openedTabs_;
  std::vector<std::pair<Guid, Ref<IUnknown>>> services_;
  std::vector<std::pair<Guid, IUnknown*>> registered_;
  std::vector<std::pair<std::uint32_t, std::uint32_t>> menus_;
  Ref<IUnknown> activeView_;
  WindowHandle window_ = 1;
  int modalDepth_ = 0;
  int saveAllCalls_ = 0;
};

// Stands for the build tool where only the task is asked for: host->provide(SID_BuildTool, task.get()).
class FakeBuilderTask final : public ComObject<Dual<IBuilderTask>> {
 public:
  e_task task = E_TASK_BUILD;
  std::vector<e_task> puts;        // every put_CurrentTask, in order
  std::vector<BString> selection;  // what PreBuildSelection gives

  HRESULT get_CurrentTask(e_task* value) override {
    *value = task;
    return S_OK;
  }
  HRESULT put_CurrentTask(e_task value) override {
    task = value;
    puts.push_back(value);
    return S_OK;
  }
  HRESULT PreBuildSelection(Ref<IEnumString>* out) override {
    *out = make<ListEnumerator<IEnumString>>(selection);
    return S_OK;
  }
};

// Records the identifiers of property-change notifications.
class NotifySink final : public ComObject<IPropertyNotifySink> {
 public:
  std::vector<std::int32_t> ids;
  std::function<void(std::int32_t)> also;  // called behind the recording

  HRESULT OnChanged(std::int32_t id) override {
    ids.push_back(id);
    if (also) also(id);
    return S_OK;
  }
  HRESULT OnRequestEdit(std::int32_t) override { return S_OK; }

  std::ptrdiff_t count(std::int32_t id) const { return std::count(ids.begin(), ids.end(), id); }
};

}  // namespace forgeyard::test
