#pragma once

#include "model/dialogs/dialog_model.h"
#include "typelib/configuration.h"

namespace forgeyard {

// "Manage Configurations": the configurations of a project, to add and remove.
class ManageConfigurationsDialog final : public DialogModel {
 public:
  ManageConfigurationsDialog(IConfigurations* configurations, IServiceLookup* services);

 private:
  bool pressed(std::size_t control) override;
  void redraw();
  void remove();

  Ref<IConfigurations> configurations_;
  std::size_t list_ = 0;
  std::size_t add_ = 0;
  std::size_t remove_ = 0;
};

// "Add Configuration": a name that is still free, and the configuration to start from.
class AddConfigurationDialog final : public DialogModel {
 public:
  AddConfigurationDialog(IConfigurations* configurations, IServiceLookup* services);

 private:
  bool pressed(std::size_t control) override;
  bool create();

  Ref<IConfigurations> configurations_;
  std::size_t name_ = 0;
  std::size_t base_ = 0;
  std::size_t ok_ = 0;
};

}  // namespace forgeyard
