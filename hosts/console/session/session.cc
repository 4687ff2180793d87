#include "hosts/console/session/session.h"

#include <memory>
#include <thread>
#include <utility>

#include "hosts/console/base/failure.h"
#include "hosts/console/base/report.h"
#include "hosts/console/session/first_start.h"
#include "platform/threads/thread.h"

namespace forgeyard::console {

Registry openRegistry() {
  std::optional<RegistryError> error;
  Registry registry = Registry::load(Registry::defaultFile(), &error);
  if (error) throw Failure(error->message);
  return registry;
}

Session::Session(const Options& options) : options_(options), registry_(openRegistry()) {
  auto loop = std::make_unique<ConsoleLoop>(output());
  loop_ = loop.get();
  apartment_.emplace(std::move(loop));
  module_.emplace(registry_);
  prepareRegistry(registry_, *module_);
  host_ = make<ConsoleHost>(output(), options_);
  objects_.emplace(registry_, host_.get(), host_->commands());
  tool_ = objects_->find<IBuildTool>();
  if (!tool_) {
    objects_.reset();
    throw Failure("None of the objects that the registry " + Registry::defaultFile() +
                  " lists for a host's start is a build tool. \"forgeyard register\" enters those of " +
                  module_->path() + " anew.");
  }
  host_->setBuildTool(tool_.get());
  if (options.verbose) complain("Module " + module_->path() + ", registry " + Registry::defaultFile() + ".");
}

const Waitable* Session::setInterrupt(const Waitable* interrupt) {
  output().setInterrupt(interrupt);
  return std::exchange(interrupt_, interrupt);
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
  unload();
}

void Session::unload() {
  waitForThreads();
  tool_ = nullptr;
  host_->setBuildTool(nullptr);
  objects_.reset();
  host_->frame().setActiveView(nullptr);
  // What threads dropped is released here.
  static_cast<void>((*apartment_)->pumpPending());
#ifndef NDEBUG
  if (!module_->canUnload()) complain("Objects of the module are alive behind the end of the session.");
#endif
  module_.reset();
  host_ = nullptr;
  apartment_.reset();
  output().flush();
}

}  // namespace forgeyard::console
