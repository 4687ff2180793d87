#include "engine/run/run_progress.h"

#include "typelib/host.h"

namespace forgeyard {

void RunProgress::begin(IServiceLookup* services, const BString& component, std::size_t inputs) {
  run_ = {};
  run_.component = component;
  sink_ = lookUp<IBuildProgress>(services, SID_BuildProgress);
  std::int32_t count = 0;
  if (sink_) ignore(sink_->OnComponentStart(component, static_cast<std::int32_t>(inputs), &count));
  wantsCount_ = count != 0;
}

void RunProgress::end(e_btr result) {
  if (sink_) ignore(sink_->OnComponentEnd(run_.component, result));
  sink_ = nullptr;
}

void RunProgress::toolStarted(const BString& command) {
  run_.command = command;
  if (sink_) ignore(sink_->OnToolStart(run_));
}

void RunProgress::toolEnded(std::optional<std::int32_t> exitCode) {
  if (sink_) ignore(sink_->OnToolEnd(run_, exitCode));
}

}  // namespace forgeyard
