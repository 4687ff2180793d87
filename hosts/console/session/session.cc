#include "hosts/console/session/session.h"

#include <unistd.h>

#include <memory>
#include <thread>

#include "hosts/console/base/failure.h"
#include "hosts/console/base/report.h"
#include "hosts/console/session/first_start.h"
#include "platform/threads/thread.h"
#include "typelib/classes.h"

namespace forgeyard::console {

Registry openRegistry() {
  std::optional<RegistryError> error;
  Registry registry = Registry::load(Registry::defaultFile(), &error);
  if (error) throw Failure(error->message);
  return registry;
}

Session::Session(const Options& options)
    : options_(options), registry_(openRegistry()), output_(STDOUT_FILENO) {
  auto loop = std::make_unique<ConsoleLoop>(output_);
  loop_ = loop.get();
  apartment_.emplace(std::move(loop));
  module_.emplace(registry_);
  prepareRegistry(registry_, *module_);
  host_ = make<ConsoleHost>(output_, options_);
  tool_ = createInstance<IBuildTool>(CLSID_BuildTool);
  const Ref<ILoadedObject> loaded = tool_.as<ILoadedObject>();
  if (!loaded) throw Failure(module_->path() + " does not serve the class BuildTool.");
  require(loaded->OnLoad(host_.get()), module_->path() + " does not start");
  if (options.verbose) complain("Module " + module_->path() + ", registry " + Registry::defaultFile() + ".");
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
  if (const Ref<ILoadedObject> loaded = tool_.as<ILoadedObject>()) ignore(loaded->OnUnload());
  host_->frame().setActiveView(nullptr);
  tool_ = nullptr;
  // What threads dropped is released here.
  static_cast<void>((*apartment_)->pumpPending());
#ifndef NDEBUG
  if (!module_->canUnload()) complain("Objects of the module are alive behind the end of the session.");
#endif
  module_.reset();
  host_ = nullptr;
  apartment_.reset();
  output_.flush();
}

}  // namespace forgeyard::console
