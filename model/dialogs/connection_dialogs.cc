#include "model/dialogs/connection_dialogs.h"

#include "engine/modal_scope.h"
#include "model/core/enumerate.h"

namespace forgeyard {

namespace {

BString nameOf(IComponent& component) {
  BString name;
  check(component.get_ComponentName(&name));
  return name;
}

BString describe(IConnection& connection) {
  Ref<IComponent> from;
  Ref<IComponent> to;
  check(connection.get_From(&from));
  check(connection.get_To(&to));
  return BString::concat(nameOf(*from), u" -> ", nameOf(*to));
}

}  // namespace

ManageConnectionsDialog::ManageConnectionsDialog(IProject* project, IServiceLookup* services)
    : DialogModel(u"Manage Connections", services), project_(project) {
  check(project->get_Connections(&connections_));
  list_ = add(ControlKind::List, u"&Connections:");
  add_ = add(ControlKind::Button, u"&Add...");
  remove_ = add(ControlKind::Button, u"&Remove");
  add(ControlKind::Button, u"Close");
  redraw();
}

void ManageConnectionsDialog::redraw() {
  std::vector<BString> lines;
  forEachObject<IConnection>(*connections_, [&](IConnection& entry) { lines.push_back(describe(entry)); });
  fill(control(list_), std::move(lines));
  control(remove_).enabled = !control(list_).items.empty();
}

bool ManageConnectionsDialog::pressed(std::size_t button) {
  if (button == add_) {
    addConnection();
  } else if (button == remove_) {
    remove();
  } else {
    return true;
  }
  return false;
}

void ManageConnectionsDialog::addConnection() {
  const auto dialog = make<AddConnectionDialog>(project_.get(), services());
  runDialog(services(), *dialog);
  if (!dialog->added()) return;
  redraw();
  check(project_->put_Dirty(1));
}

void ManageConnectionsDialog::remove() {
  std::int32_t left = control(list_).selected;
  Ref<IConnection> found;
  forEachObject<IConnection>(*connections_, [&](IConnection& entry) {
    if (left-- == 0) found = Ref<IConnection>(&entry);
  });
  if (!found) return;
  check(connections_->Delete(found.get()));
  redraw();
  check(project_->put_Dirty(1));
}

AddConnectionDialog::AddConnectionDialog(IProject* project, IServiceLookup* services)
    : DialogModel(u"Add Connection", services) {
  check(project->get_Connections(&connections_));
  Ref<IComponents> components;
  check(project->get_Components(&components));
  std::vector<BString> names;
  forEachObject<IComponent>(*components, [&](IComponent& component) {
    components_.emplace_back(&component);
    names.push_back(nameOf(component));
  });
  from_ = add(ControlKind::Combo, u"&From:");
  to_ = add(ControlKind::Combo, u"&To:");
  ok_ = add(ControlKind::Button, u"OK");
  add(ControlKind::Button, u"Cancel");
  fill(control(from_), names);
  fill(control(to_), names);
}

bool AddConnectionDialog::pressed(std::size_t button) {
  if (button != ok_) return true;
  added_ = create();
  return added_;
}

IComponent* AddConnectionDialog::selected(std::size_t combo) {
  const std::int32_t position = control(combo).selected;
  return position < 0 ? nullptr : components_[static_cast<std::size_t>(position)].get();
}

void AddConnectionDialog::refuse(const BString& text) const {
  const ModalScope scope(services());
  scope.show(text, title(), MessageButtons::Ok, MessageIcon::Exclamation);
}

bool AddConnectionDialog::create() {
  IComponent* from = selected(from_);
  IComponent* to = selected(to_);
  if (!from || !to) {
    refuse(u"Invalid selection");
    return false;
  }
  if (succeeded(connections_->New(from, to, nullptr))) return true;
  refuse(
      u"Error adding connection.... \n\nEither the connection would introduce a circular link, \n"
      u"the connection is already established \nor those components cannot be connected");
  return false;
}

}  // namespace forgeyard
