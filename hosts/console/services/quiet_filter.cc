#include "hosts/console/services/quiet_filter.h"

namespace forgeyard::console {

namespace {

constexpr std::u16string_view kExitCode = u"Exit Code: ";
constexpr std::u16string_view kComponent = u"Component \"";

bool isExitCode(std::u16string_view line) {
  return line.starts_with(kExitCode) && line.ends_with(u").");
}
bool isResult(std::u16string_view line) {
  return line.starts_with(kComponent) && line.find(u"\" result: ") != line.npos;
}
bool isRoutine(std::u16string_view line) {
  return line == u"-----" || line == u"All outputs up to date." || line == u"No inputs to build." ||
         line == u"Final result: OK" || line.starts_with(u"Project: ") || line.starts_with(u"Deleting ") ||
         (line.starts_with(kComponent) && line.ends_with(u'"'));
}

}  // namespace

QuietFilter::Verdict QuietFilter::judge(std::u16string_view line) {
  if (place_ == Place::Command) {
    place_ = Place::Tool;
    return Verdict::Hold;
  }
  // Behind a command all lines are the tool's, until its end or, after a stop, the component's is told.
  if (place_ == Place::Tool && !isExitCode(line) && !isResult(line)) return Verdict::Show;
  place_ = Place::Between;
  return judgeOwnLine(line);
}

QuietFilter::Verdict QuietFilter::judgeOwnLine(std::u16string_view line) {
  if (line.empty()) {
    place_ = Place::Command;
    return Verdict::Forget;
  }
  if (line == u"Exit Code: 0 (0x0)." || (isResult(line) && line.ends_with(u"\" result: OK")))
    return Verdict::Forget;
  return isRoutine(line) ? Verdict::Drop : Verdict::Show;
}

}  // namespace forgeyard::console
