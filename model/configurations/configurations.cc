#include "model/configurations/configurations.h"

#include <algorithm>

#include "engine/modal_scope.h"
#include "model/configurations/configuration.h"
#include "model/core/enumerate.h"

namespace forgeyard {

HRESULT CConfigurations::get_Item(const BString& name, Ref<IConfiguration>* out) {
  return guard([&] {
    *out = nullptr;
    for (const Ref<IConfiguration>& configuration : project_->contents().configurations) {
      BString found;
      check(configuration->get_Name(&found));
      if (found != name) continue;
      *out = configuration;
      return S_OK;
    }
    return E_FAIL;
  });
}

HRESULT CConfigurations::get_Count(std::int32_t* value) {
  *value = static_cast<std::int32_t>(project_->contents().configurations.size());
  return S_OK;
}

HRESULT CConfigurations::get__NewEnum(Ref<IUnknown>* out) {
  return guard([&] { *out = enumerateObjects(project_->contents().configurations); });
}

HRESULT CConfigurations::New(const BString& name, IConfiguration* basedOn, Ref<IConfiguration>* out) {
  return guard([&] {
    const Ref<IConfiguration> created = make(name, basedOn);
    if (out) *out = created;
    add(*created, basedOn);
  });
}

Ref<IConfiguration> CConfigurations::make(const BString& name, IConfiguration* basedOn) const {
  const auto created = forgeyard::make<CConfiguration>();
  check(created->put_Project(&project_->project()));
  check(created->put_Name(name));
  BString output(u"");
  BString intermediate(u"");
  BString target(u"");
  if (basedOn) {
    check(basedOn->get_OutputDirectory(&output));
    check(basedOn->get_IntermediateDirectory(&intermediate));
  }
  check(created->put_OutputDirectory(output));
  check(created->put_IntermediateDirectory(intermediate));
  const Ref<IKVSupportCookies> cookies = query<IKVSupportCookies>(basedOn);
  const bool copied = !basedOn || (cookies && cookies->get_Cookie(kTargetCookie, &target) == S_OK);
  if (copied) check(created->put_Cookie(kTargetCookie, target.isNull() ? BString(u"") : target));
  return created;
}

void CConfigurations::add(IConfiguration& configuration, IConfiguration* basedOn) {
  project_->notifications().sendToComponents(
      [&](IProjectE& component) { ignore(component.OnNewConfiguration(&configuration, basedOn)); });
  auto& list = project_->contents().configurations;
  list.emplace_back(&configuration);
  project_->notifications().send(kProjectConfigurations);
  if (list.size() == 1) check(project_->project().put_ActiveConfiguration(&configuration));
  project_->services().refreshConfigurationMenu();
  check(project_->project().put_Dirty(1));
}

void CConfigurations::refuseWhileBuilding() const {
  const ModalScope scope(project_->services().get());
  scope.show(u"A project's active configuration may not be deleted during a build", u"Project",
             MessageButtons::Ok, MessageIcon::Exclamation);
}

HRESULT CConfigurations::Delete(IConfiguration* configuration) {
  return guard([&] {
    auto& list = project_->contents().configurations;
    if (list.size() <= 1) return;
    const auto found = std::find_if(list.begin(), list.end(), [&](const Ref<IConfiguration>& entry) {
      return sameObject(entry.get(), configuration);
    });
    if (found == list.end()) return;
    const Ref<IConfiguration> gone = *found;
    const bool active = sameObject(project_->contents().active.get(), gone.get());
    if (active && project_->building()) return refuseWhileBuilding();
    project_->notifications().sendToComponents(
        [&](IProjectE& component) { ignore(component.OnDeletedConfiguration(gone.get())); });
    std::erase(list, gone);
    project_->notifications().contentsChanged(kProjectConfigurations);
    project_->services().refreshConfigurationMenu();
    if (active) check(project_->project().put_ActiveConfiguration(list.front().get()));
  });
}

}  // namespace forgeyard
