#include "workbench/session/session.h"

#include <thread>
#include <utility>

#include "platform/threads/thread.h"
#include "workbench/base/failure.h"
#include "workbench/session/first_start.h"

namespace forgeyard::workbench {

Registry openRegistry() {
  std::optional<RegistryError> error;
  Registry registry = Registry::load(Registry::defaultFile(), &error);
  if (error) throw Failure(error->message);
  return registry;
}

Session::Session(const Selection& selection, Host& host, std::unique_ptr<MessageLoop> loop)
    : selection_(selection), host_(host), registry_(openRegistry()) {
  apartment_.emplace(std::move(loop));
  module_.emplace(registry_);
  prepareRegistry(registry_, *module_);
  objects_.emplace(registry_, host_.site(), host_.commands());
  tool_ = objects_->find<IBuildTool>();
  if (!tool_) {
    objects_.reset();
    throw Failure("None of the objects that the registry " + Registry::defaultFile() +
                  " lists for a host's start is a build tool. \"forgeyard register\" enters those of " +
                  module_->path() + " anew.");
  }
  host_.setBuildTool(tool_.get());
}

// They may still hand lines to this thread.
void Session::waitForThreads() {
  if (Thread::running() == 0) return;
  std::thread watcher([this] {
    Thread::waitForAll();
    (*apartment_)->quit();
  });
  (*apartment_)->run();
  watcher.join();
}

Session::~Session() {
  waitForThreads();
  tool_ = nullptr;
  host_.setBuildTool(nullptr);
  objects_.reset();
  // What threads dropped is released here.
  static_cast<void>((*apartment_)->pumpPending());
#ifndef NDEBUG
  if (!module_->canUnload()) host_.tell("Objects of the module are alive behind the end of the session.");
#endif
}

}  // namespace forgeyard::workbench
