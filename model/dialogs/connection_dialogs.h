#pragma once

#include <vector>

#include "model/dialogs/dialog_model.h"
#include "typelib/component.h"
#include "typelib/connection.h"
#include "typelib/project.h"

namespace forgeyard {

// "Manage Connections": who feeds whom in a project, to add and remove.
class ManageConnectionsDialog final : public DialogModel {
 public:
  ManageConnectionsDialog(IProject* project, IServiceLookup* services);

 private:
  bool pressed(std::size_t control) override;
  void redraw();
  void addConnection();
  void remove();

  Ref<IProject> project_;
  Ref<IConnections> connections_;
  std::size_t list_ = 0;
  std::size_t add_ = 0;
  std::size_t remove_ = 0;
};

// "Add Connection": from which component to which.
class AddConnectionDialog final : public DialogModel {
 public:
  AddConnectionDialog(IProject* project, IServiceLookup* services);

  // Whether it ended with a new connection.
  bool added() const { return added_; }

 private:
  bool pressed(std::size_t control) override;
  bool create();
  void refuse(const BString& text) const;
  IComponent* selected(std::size_t combo);

  Ref<IConnections> connections_;
  std::vector<Ref<IComponent>> components_;
  std::size_t from_ = 0;
  std::size_t to_ = 0;
  std::size_t ok_ = 0;
  bool added_ = false;
};

}  // namespace forgeyard
