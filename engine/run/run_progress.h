#pragma once

#include <cstddef>

#include "engine/run/tool_runner.h"
#include "typelib/progress.h"

namespace forgeyard {

struct IServiceLookup;

// Tells the host's progress service, if there is one, what a component is at. Main thread only.
class RunProgress final : public ToolRunner::Listener {
 public:
  // The component's turn begins, and ends.
  void begin(IServiceLookup* services, const BString& component, std::size_t inputs);
  void end(e_btr result);

  // The next tool is for this file, or, null, for all inputs. `countRest` says how many of the files behind
  // it need a tool as well; it is called only for the first of a turn, and where somebody wants to know.
  template <class CountRest>
  void nextTool(const BString& file, CountRest&& countRest) {
    if (wantsCount_ && run_.number == 0) run_.count = 1 + static_cast<std::int32_t>(countRest());
    run_.file = file;
    ++run_.number;
  }

  void toolStarted(const BString& command) override;
  void toolEnded(std::optional<std::int32_t> exitCode) override;

 private:
  Ref<IBuildProgress> sink_;
  bool wantsCount_ = false;
  ToolRun run_;
};

}  // namespace forgeyard
