#pragma once

#include <memory>
#include <optional>

#include "platform/registry/registry.h"
#include "platform/threads/apartment.h"
#include "typelib/buildtool.h"
#include "workbench/session/host.h"
#include "workbench/session/loaded_objects.h"
#include "workbench/session/module.h"
#include "workbench/session/selection.h"

namespace forgeyard::workbench {

// The user's registry. Throws a Failure when it can't be read.
Registry openRegistry();

// The module at work: its library loaded, the host's services offered to it, and the objects of its start
// created and sited, the build tool among them. The end goes the same way back. The thread that makes it is
// the main thread of everything.
class Session {
 public:
  // Runs the main thread's apartment on the loop. Borrows the host and the selection. Throws a Failure that
  // says what is missing.
  Session(const Selection& selection, Host& host, std::unique_ptr<MessageLoop> loop);
  ~Session();
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  const Selection& selection() const { return selection_; }
  Host& host() const { return host_; }
  const Registry& registry() const { return registry_; }
  const Module& module() const { return *module_; }
  Apartment& apartment() const { return **apartment_; }
  IBuildTool& tool() const { return *tool_; }
  const LoadedObjects& objects() const { return *objects_; }

  // Serves the module's threads until all of them have ended.
  void waitForThreads();

 private:
  const Selection& selection_;
  Host& host_;
  Registry registry_;
  std::optional<ApartmentScope> apartment_;
  std::optional<Module> module_;
  std::optional<LoadedObjects> objects_;
  Ref<IBuildTool> tool_;
};

}  // namespace forgeyard::workbench
