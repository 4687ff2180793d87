#include "hosts/console/session/session.h"

#include <memory>
#include <utility>

namespace forgeyard::console {

std::unique_ptr<MessageLoop> TerminalPart::makeLoop() {
  auto loop = std::make_unique<ConsoleLoop>(standardOutput());
  loop_ = loop.get();
  return loop;
}

Session::Session(const Options& options)
    : TerminalPart(options), workbench::Session(options, *console_, makeLoop()), options_(options) {
  if (options.verbose) complain("Module " + module().path() + ", registry " + Registry::defaultFile() + ".");
}

const Waitable* Session::setInterrupt(const Waitable* interrupt) {
  output().setInterrupt(interrupt);
  return std::exchange(interrupt_, interrupt);
}

Session::~Session() {
  waitForThreads();
  // What is selected may be the module's.
  console_->frame().setActiveView(nullptr);
}

}  // namespace forgeyard::console
