#include "model/dialogs/configuration_dialogs.h"

#include "engine/modal_scope.h"
#include "model/core/enumerate.h"

namespace forgeyard {

namespace {

std::vector<BString> namesOf(IConfigurations& configurations) {
  std::vector<BString> names;
  forEachObject<IConfiguration>(configurations, [&](IConfiguration& configuration) {
    check(configuration.get_Name(&names.emplace_back()));
  });
  return names;
}

}  // namespace

ManageConfigurationsDialog::ManageConfigurationsDialog(IConfigurations* configurations,
                                                       IServiceLookup* services)
    : DialogModel(u"Manage Configurations", services), configurations_(configurations) {
  list_ = add(ControlKind::List, u"&Configurations:");
  add_ = add(ControlKind::Button, u"&Add...");
  remove_ = add(ControlKind::Button, u"&Remove");
  add(ControlKind::Button, u"Close");
  redraw();
}

void ManageConfigurationsDialog::redraw() {
  fill(control(list_), namesOf(*configurations_));
  control(remove_).enabled = control(list_).items.size() > 1;
}

bool ManageConfigurationsDialog::pressed(std::size_t button) {
  if (button == add_) {
    runDialog(services(), *make<AddConfigurationDialog>(configurations_.get(), services()));
    redraw();
    return false;
  }
  if (button != remove_) return true;
  remove();
  return false;
}

void ManageConfigurationsDialog::remove() {
  const BString name = selectedText(control(list_));
  if (name.isNull()) return;
  {
    const ModalScope scope(services());
    if (scope.show(u"Are you sure you wish to remove this configuration?", title(), MessageButtons::YesNo,
                   MessageIcon::Question) != MessageAnswer::Yes) {
      return;
    }
  }
  Ref<IConfiguration> found;
  check(configurations_->get_Item(name, &found));
  check(configurations_->Delete(found.get()));
  redraw();
}

AddConfigurationDialog::AddConfigurationDialog(IConfigurations* configurations, IServiceLookup* services)
    : DialogModel(u"Add Configuration", services), configurations_(configurations) {
  name_ = add(ControlKind::Edit, u"&Configuration:");
  base_ = add(ControlKind::Combo, u"Copy &settings from:");
  ok_ = add(ControlKind::Button, u"OK");
  add(ControlKind::Button, u"Cancel");
  control(name_).text = u"New Configuration";
  fill(control(base_), namesOf(*configurations_));
}

bool AddConfigurationDialog::pressed(std::size_t button) {
  return button != ok_ || create();
}

bool AddConfigurationDialog::create() {
  const BString& name = control(name_).text;
  Ref<IConfiguration> taken;
  if (succeeded(configurations_->get_Item(name, &taken))) {
    const ModalScope scope(services());
    scope.show(u"A configuration already exists with that name", title(), MessageButtons::Ok,
               MessageIcon::Exclamation);
    return false;
  }
  Ref<IConfiguration> base;
  if (const BString chosen = selectedText(control(base_)); !chosen.isNull()) {
    check(configurations_->get_Item(chosen, &base));
  }
  if (failed(configurations_->New(name, base.get(), nullptr))) {
    const ModalScope scope(services());
    scope.show(u"Error creating configuration", title(), MessageButtons::Ok, MessageIcon::Exclamation);
  }
  return true;
}

}  // namespace forgeyard
