#include "engine/run/tool_runner.h"

#include <unistd.h>

#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <utility>
#include <vector>

#include "engine/run/exclude_multi_build.h"
#include "platform/files/host_files.h"
#include "platform/registry/registry.h"
#include "platform/registry/registry_keys.h"
#include "platform/threads/apartment.h"
#include "platform/threads/named_event.h"
#include "platform/threads/timer.h"

namespace forgeyard {

namespace {

constexpr std::chrono::milliseconds kReaderGrace{2000};
// The registry value is read into a buffer of this size; a longer one counts as missing.
constexpr std::size_t kHomeLimit = 260;
// The system takes no argument of so many bytes, its final null included. The spawner reads a longer command
// from standard input.
constexpr std::size_t kArgumentLimit = std::size_t{128} * 1024;

BString readSpawnPrefix() {
  const Registry registry = Registry::load(Registry::defaultFile());
  std::string home = registry.value(registry_keys::kKorvel, registry_keys::kHome).value_or("");
  if (home.size() >= kHomeLimit) home.clear();
  return BString::fromNarrow("\"" + home + "\\bin\\TideSpawn.exe\" ");
}

// This process's environment with the directory as the model spells it: tools that report absolute names
// begin them with this text, not with what links resolve to.
std::vector<std::string> environmentIn(const std::string& directory) {
  std::vector<std::string> result;
  for (char** entry = environ; *entry; ++entry) {
    if (!std::string_view(*entry).starts_with("PWD=")) result.emplace_back(*entry);
  }
  result.push_back("PWD=" + directory);
  return result;
}

}  // namespace

std::string exitCodeLine(std::int32_t code) {
  std::array<char, 48> text{};
  std::snprintf(text.data(), text.size(), "Exit Code: %i (0x%x).", code, static_cast<std::uint32_t>(code));
  return text.data();
}

ToolRunner::ToolRunner() : spawnPrefix_(readSpawnPrefix()) {}

bool ToolRunner::OpenOutputReader(IOutputTab* tab) {
  try {
    reader_ = std::make_unique<OutputReader>(tab);
    return true;
  } catch (...) {
    reader_.reset();
    return false;
  }
}

std::unique_ptr<Process> ToolRunner::start(const BString& command, const BString& workingDirectory) const {
  const std::u16string_view prefix = spawnPrefix_.view();
  const std::u16string_view path = prefix.substr(1, prefix.size() - 3);
  ProcessOptions options;
  options.program = toHost(BString(path)).value_or("");
  std::string text = command.narrow();
  if (text.size() < kArgumentLimit) {
    options.arguments = {options.program, std::move(text)};
  } else {
    options.arguments = {options.program, "--stdin"};
    options.input = std::move(text);
  }
  options.standardOutput = options.standardError = reader_->writeEnd();
  // A Ctrl-C at the terminal is the host's to answer: it stops the build in order.
  options.ownGroup = true;
  if (!workingDirectory.empty()) {
    options.workingDirectory = toHost(workingDirectory).value_or(workingDirectory.narrow());
    options.environment = environmentIn(options.workingDirectory);
  }
  ProcessStartError error;
  return Process::start(options, error);
}

e_btr ToolRunner::ExecuteCommand(IOutputTab* tab, const BString& command, const BString& workingDirectory,
                                 Listener& listener) {
  const std::unique_ptr<NamedEvent> stop = NamedEvent::open(kStopEvent);
  const std::unique_ptr<Process> process = start(command, workingDirectory);
  if (!process) return notStarted(tab, command);
  ignore(tab->MsgOut(u""));
  ignore(tab->MsgOut(command));
  listener.toolStarted(command);
  std::array<const Waitable*, 2> handles{process.get(), stop.get()};
  const std::size_t fired = Apartment::main()->waitPumping(Waitables(handles.data(), stop ? 2 : 1));
  // The spawner acts on the same event and may be quicker: then the tool's failure is the stop's doing.
  const bool stopped = fired != 0 || (stop && stop->isSignalled() && process->exitCode() != 0);
  return stopped ? toolStopped(*process, listener) : toolEnded(tab, *process, listener);
}

e_btr ToolRunner::toolEnded(IOutputTab* tab, Process& process, Listener& listener) {
  const int code = process.exitCode().value_or(-1);
  reader_->closeWriteEnd();
  // The spawner has gone, so the pipe has ended: the tool's last lines come before the line about it.
  awaitReader();
  reader_.reset();
  listener.toolEnded(code);
  ignore(tab->MsgOut(BString::fromNarrow(exitCodeLine(code))));
  return code ? E_BTR_ERROR : E_BTR_COMPLETED;
}

e_btr ToolRunner::toolStopped(Process& process, Listener& listener) {
  reader_->closeWriteEnd();
  if (!process.exitCode()) reader_->stopShowing();
  awaitReader();
  reader_.reset();
  listener.toolEnded(std::nullopt);
  return E_BTR_STOPPED;
}

e_btr ToolRunner::notStarted(IOutputTab* tab, const BString& command) {
  ignore(tab->MsgOut(BString::concat(u"Failed to invoke command line: ", command)));
  ignore(tab->MsgOut(u"The executable may not be registered, or the path may be incorrect."));
  reader_->closeWriteEnd();
  if (!awaitReader()) reader_->cancel();
  reader_.reset();
  return E_BTR_FATAL;
}

bool ToolRunner::awaitReader() {
  if (reader_->ended().isSignalled()) return true;
  const Timer timer(kReaderGrace);
  return Apartment::main()->waitPumping({&reader_->ended(), &timer}) == 0;
}

}  // namespace forgeyard
