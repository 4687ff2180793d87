#pragma once

#include <utility>

#include "platform/com/connection_point.h"
#include "typelib/project.h"

namespace forgeyard {

// Sends what happens to a project to its listeners: property changes to hosts, changes of configurations to
// components. Main thread only.
class ProjectNotifications {
 public:
  using HostSinks = Ref<ConnectionPoint<IPropertyNotifySink>>;
  using ComponentSinks = Ref<ConnectionPoint<IProjectE>>;

  ProjectNotifications(IProject& project, HostSinks hosts, ComponentSinks components)
      : project_(project), hosts_(std::move(hosts)), components_(std::move(components)) {}

  void send(std::int32_t id) const {
    hosts_->fire([id](IPropertyNotifySink& sink) { ignore(sink.OnChanged(id)); });
  }
  // Sends a notification and marks the project dirty.
  void contentsChanged(std::int32_t id) const {
    send(id);
    ignore(project_.put_Dirty(1));
  }
  // Calls body(IProjectE&) for every component that listens.
  template <class Body>
  void sendToComponents(Body&& body) const {
    components_->fire(std::forward<Body>(body));
  }

 private:
  IProject& project_;
  HostSinks hosts_;
  ComponentSinks components_;
};

}  // namespace forgeyard
