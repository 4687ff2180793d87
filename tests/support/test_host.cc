#include "tests/support/test_host.h"

#include <array>

namespace forgeyard::test {

namespace {

// The services that the host itself is.
constexpr std::array kOwnServices{SID_ServiceLookup, SID_MainFrame, SID_OutputWindow, SID_SourceManager,
                                  SID_CommandHost};

}  // namespace

std::vector<std::string> TestHost::lines(const BString& tab) const {
  std::vector<std::string> result;
  for (const auto& [lineTab, text] : lines_) {
    if (lineTab == tab.narrow()) result.push_back(text);
  }
  return result;
}

void TestHost::provide(const Guid& service, IUnknown* object) {
  std::erase_if(services_, [&](const auto& entry) { return entry.first == service; });
  services_.emplace_back(service, object);
}

void TestHost::clear() {
  services_.clear();
  registered_.clear();
  dialogs_.clear();
  modalUsers_.clear();
  activeView_ = nullptr;
}

HRESULT TestHost::LookUp(const Guid& service, const Guid& iid, void** out) {
  *out = nullptr;
  for (const auto& [known, object] : services_) {
    if (known == service) return object ? object->QueryInterface(iid, out) : E_FAIL;
  }
  const bool own = std::find(kOwnServices.begin(), kOwnServices.end(), service) != kOwnServices.end();
  return own ? QueryInterface(iid, out) : E_FAIL;
}

HRESULT TestHost::EnableModeless(std::int32_t enable) {
  modalDepth_ += enable ? -1 : 1;
  return S_OK;
}

HRESULT TestHost::GetWindow(WindowHandle* out) {
  *out = window_;
  return S_OK;
}

HRESULT TestHost::GetActiveView(Ref<IUnknown>* out) {
  *out = activeView_;
  return S_OK;
}

HRESULT TestHost::ShowMessage(const BString& text, const BString& title, MessageButtons buttons,
                              MessageIcon icon, MessageAnswer* answer) {
  messages_.push_back({text.narrow(), title.narrow(), buttons, icon});
  *answer = buttons == MessageButtons::YesNo ? MessageAnswer::Yes : MessageAnswer::Ok;
  if (!answers_.empty()) {
    *answer = answers_.front();
    answers_.pop_front();
  }
  return S_OK;
}

HRESULT TestHost::RunDialog(const BString& title, std::span<DialogField> fields, bool* ok) {
  dialogTitles_.push_back(title.narrow());
  *ok = true;
  if (dialogs_.empty()) return S_OK;
  const Dialog fill = std::move(dialogs_.front());
  dialogs_.pop_front();
  *ok = fill(fields);
  return S_OK;
}

HRESULT TestHost::ChooseFile(const BString& title, const BString&, const BString&, BString* path, bool* ok) {
  dialogTitles_.push_back(title.narrow());
  *ok = !chosenFile_.isNull();
  *path = std::exchange(chosenFile_, BString());
  return S_OK;
}

HRESULT TestHost::RunModal(IDialogModel* dialog) {
  BString title;
  if (const HRESULT status = dialog->get_Title(&title); failed(status)) return status;
  dialogTitles_.push_back(title.narrow());
  if (modalUsers_.empty()) {
    std::span<const DialogControl> controls;
    bool ended = false;
    const HRESULT status = dialog->GetControls(&controls);
    return failed(status) ? status : dialog->Press(controls.size() - 1, &ended);
  }
  const ModalUser use = std::move(modalUsers_.front());
  modalUsers_.pop_front();
  use(*dialog);
  return S_OK;
}

HRESULT TestHost::ChooseFiles(const BString& title, std::span<const FileFilter>, Ref<IEnumString>* out) {
  dialogTitles_.push_back(title.narrow());
  *out = nullptr;
  if (!chosenFiles_.empty()) *out = make<ListEnumerator<IEnumString>>(std::exchange(chosenFiles_, {}));
  return S_OK;
}

HRESULT TestHost::OpenTab(const BString& tab, std::int32_t* value, std::int32_t) {
  openedTabs_.push_back(tab.narrow());
  *value = 1;
  return S_OK;
}

HRESULT TestHost::ShowTab(const BString&) {
  return S_OK;
}

HRESULT TestHost::AddLine(const BString& tab, const BString& text) {
  lines_.emplace_back(tab.narrow(), text.narrow());
  return S_OK;
}

HRESULT TestHost::ClearTab(const BString& tab) {
  std::erase_if(lines_, [name = tab.narrow()](const auto& line) { return line.first == name; });
  return S_OK;
}

HRESULT TestHost::SaveAll(Ref<IUnknown>* token) {
  ++saveAllCalls_;
  *token = Ref<IUnknown>(static_cast<IServiceLookup*>(this));
  return S_OK;
}

HRESULT TestHost::RegisterObject(const Guid& clsid, IUnknown* object) {
  registered_.emplace_back(clsid, object);
  return S_OK;
}

HRESULT TestHost::UnregisterObject(const Guid& clsid, IUnknown* object) {
  std::erase(registered_, std::pair(clsid, object));
  return S_OK;
}

HRESULT TestHost::RefreshMenu(std::uint32_t firstId, std::uint32_t lastId) {
  menus_.emplace_back(firstId, lastId);
  return S_OK;
}

}  // namespace forgeyard::test
