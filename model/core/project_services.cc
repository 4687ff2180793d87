#include "model/core/project_services.h"

#include "typelib/classes.h"

namespace forgeyard {

namespace {

// The dynamic commands of the configuration menu.
constexpr std::uint32_t kFirstConfigurationCommand = 136;
constexpr std::uint32_t kLastConfigurationCommand = 155;

}  // namespace

void ProjectServices::set(IServiceLookup* services) {
  services_ = Ref<IServiceLookup>(services);
  commandHost_ = lookUp<ICommandHost>(services_.get(), SID_CommandHost);
}

void ProjectServices::clear() {
  services_ = nullptr;
  commandHost_ = nullptr;
}

void ProjectServices::refreshConfigurationMenu() const {
  if (commandHost_) ignore(commandHost_->RefreshMenu(kFirstConfigurationCommand, kLastConfigurationCommand));
}

void ProjectServices::registerActive(IUnknown* project) const {
  if (commandHost_) ignore(commandHost_->RegisterObject(CLSID_Project, project));
}

void ProjectServices::unregisterActive(IUnknown* project) const {
  if (commandHost_) ignore(commandHost_->UnregisterObject(CLSID_Project, project));
}

}  // namespace forgeyard
