#include "workbench/plan/reasons.h"

#include <array>
#include <cstdio>
#include <ctime>

namespace forgeyard::workbench {

namespace {

constexpr FileTime kSecond = 1'000'000'000;
constexpr FileTime kMillisecond = 1'000'000;

std::string withDigits(FileTime time, int digits, FileTime unit) {
  FileTime fraction = time % kSecond;
  if (fraction < 0) fraction += kSecond;
  const std::time_t seconds = static_cast<std::time_t>((time - fraction) / kSecond);
  std::tm parts{};
  ::localtime_r(&seconds, &parts);
  std::array<char, 32> day{};
  std::strftime(day.data(), day.size(), "%Y-%m-%d %H:%M:%S", &parts);
  std::array<char, 16> rest{};
  std::snprintf(rest.data(), rest.size(), ".%0*lld", digits, static_cast<long long>(fraction / unit));
  return std::string(day.data()) + rest.data();
}

// Both with as many digits as tell them apart.
std::string newer(const std::string& cause, FileTime causeTime, const std::string& output,
                  FileTime outputTime) {
  const bool close = causeTime / kMillisecond == outputTime / kMillisecond;
  const auto text = [&](FileTime time) { return close ? withDigits(time, 9, 1) : timeText(time); };
  return cause + " (" + text(causeTime) + ") is newer than " + output + " (" + text(outputTime) + ")";
}

std::string missingDependency(const PlannedRun& run, const ProjectPaths& paths) {
  const std::string cause = paths.toUser(run.staleness.cause);
  if (run.file.isNull()) return cause + ", which goes into it, can't be read";
  if (run.staleness.cause == run.file) return cause + " is missing or can't be read";
  return cause + ", which " + paths.toUser(run.file) + " depends on, is missing or can't be read";
}

std::string newerDependency(const PlannedRun& run, const ProjectPaths& paths) {
  const Staleness& stale = run.staleness;
  const std::string output = (stale.marker ? "the marker " : "") + paths.toUser(stale.output);
  if (stale.causeTime < kTimeToCome)
    return newer(paths.toUser(stale.cause), stale.causeTime, output, stale.outputTime);
  return paths.toUser(stale.cause) + " will be newer than " + output + ": the same build makes it";
}

}  // namespace

std::string timeText(FileTime time) {
  return withDigits(time, 3, kMillisecond);
}

std::string reasonFor(const PlannedRun& run, const ProjectPaths& paths) {
  const Staleness& stale = run.staleness;
  switch (stale.why) {
    case Staleness::Why::UpToDate:
      return "up to date";
    case Staleness::Why::TaskRunsAll:
      return "this task runs everything";
    case Staleness::Why::SettingsChanged:
      return "the settings have changed since the component was last built without errors";
    case Staleness::Why::NoOutputs:
      return "the component names no output to compare with, so it runs in every build";
    case Staleness::Why::OutputMissing:
      return paths.toUser(stale.output) + " is missing";
    case Staleness::Why::OutputUnreadable:
      return stale.marker ? "the marker " + paths.toUser(stale.output) +
                                " is missing, which keeps the time of a file that is rewritten in place"
                          : paths.toUser(stale.output) + " can't be read";
    case Staleness::Why::DependencyMissing:
      return missingDependency(run, paths);
    case Staleness::Why::DependencyNewer:
      return newerDependency(run, paths);
    case Staleness::Why::DependenciesUnknown:
      return "its name counts as a pattern, so what it includes can't be kept and it runs in every build";
  }
  return "";
}

const char* reasonName(Staleness::Why why) {
  switch (why) {
    case Staleness::Why::UpToDate:
      return "up-to-date";
    case Staleness::Why::TaskRunsAll:
      return "task-runs-all";
    case Staleness::Why::SettingsChanged:
      return "settings-changed";
    case Staleness::Why::NoOutputs:
      return "no-outputs";
    case Staleness::Why::OutputMissing:
      return "output-missing";
    case Staleness::Why::OutputUnreadable:
      return "output-unreadable";
    case Staleness::Why::DependencyMissing:
      return "dependency-missing";
    case Staleness::Why::DependencyNewer:
      return "dependency-newer";
    case Staleness::Why::DependenciesUnknown:
      return "dependencies-unknown";
  }
  return "";
}

}  // namespace forgeyard::workbench
