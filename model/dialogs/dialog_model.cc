#include "model/dialogs/dialog_model.h"

#include "engine/modal_scope.h"

namespace forgeyard {

HRESULT DialogModel::get_Title(BString* value) {
  *value = title_;
  return S_OK;
}

HRESULT DialogModel::GetControls(std::span<const DialogControl>* out) {
  *out = controls_;
  return S_OK;
}

DialogControl* DialogModel::usable(std::size_t control) {
  return control < controls_.size() && controls_[control].enabled ? &controls_[control] : nullptr;
}

HRESULT DialogModel::SetText(std::size_t position, const BString& text) {
  DialogControl* found = usable(position);
  if (!found || found->kind != ControlKind::Edit) return E_INVALIDARG;
  found->text = text;
  return S_OK;
}

HRESULT DialogModel::Select(std::size_t position, std::int32_t item) {
  DialogControl* found = usable(position);
  if (!found || (found->kind != ControlKind::List && found->kind != ControlKind::Combo)) return E_INVALIDARG;
  if (item < -1 || item >= static_cast<std::int32_t>(found->items.size())) return E_INVALIDARG;
  found->selected = item;
  return S_OK;
}

HRESULT DialogModel::Press(std::size_t position, bool* ended) {
  *ended = false;
  const DialogControl* found = usable(position);
  if (!found || found->kind != ControlKind::Button) return E_INVALIDARG;
  return guard([&] { *ended = pressed(position); });
}

std::size_t DialogModel::add(ControlKind kind, const BString& label) {
  controls_.push_back({kind, label, {}, {}, -1, true});
  return controls_.size() - 1;
}

void DialogModel::fill(DialogControl& control, std::vector<BString> items) {
  control.items = std::move(items);
  control.selected = control.items.empty() ? -1 : 0;
}

BString DialogModel::selectedText(const DialogControl& control) {
  return control.selected < 0 ? BString() : control.items[static_cast<std::size_t>(control.selected)];
}

void runDialog(IServiceLookup* services, IDialogModel& dialog) {
  const ModalScope scope(services);
  const Ref<IDialogHost> host = lookUp<IDialogHost>(services, SID_MainFrame);
  if (!host) throw StatusError(E_FAIL);
  check(host->RunModal(&dialog));
}

}  // namespace forgeyard
