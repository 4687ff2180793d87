// doctor: whether builds can work here, and what to do where not. It needs nothing of what it looks at.

#include <nlohmann/json.hpp>

#include "hosts/console/commands/command.h"
#include "hosts/console/doctor/checks.h"
#include "hosts/console/services/json_lines.h"
#include "hosts/console/services/standard_output.h"
#include "hosts/console/services/terminal.h"
#include "workbench/base/words.h"

namespace forgeyard::console {

using namespace workbench;

namespace {

constexpr std::size_t kStateWidth = 9;
constexpr std::size_t kSubjectWidth = 11;

std::string padded(std::string text, std::size_t width) {
  text.resize(std::max(width, text.size() + 1), ' ');
  return text;
}

void show(LineWriter& out, const CheckResult& result) {
  // Names and lines of files may hold anything.
  out.line(padded(toText(result.state), kStateWidth) + padded(result.subject, kSubjectWidth) +
           printable(result.text));
  if (!result.advice.empty())
    out.line(padded("", kStateWidth + kSubjectWidth).append("-> ").append(printable(result.advice)));
}

void showObject(LineWriter& out, const CheckResult& result) {
  nlohmann::ordered_json members{
      {"state", toText(result.state)}, {"subject", result.subject}, {"text", result.text}};
  if (!result.advice.empty()) members["advice"] = result.advice;
  writeObject(out, "finding", members);
}

std::string verdict(std::size_t problems, std::size_t warnings) {
  const std::string aside = warnings == 0 ? "" : "; " + counted(warnings, "warning");
  if (problems == 0) return "Builds can work" + aside + ".";
  return "Builds can't work: " + counted(problems, "problem") + aside + ".";
}

ExitCode examine(const Invocation& invocation) {
  using State = CheckResult::State;
  CheckResults results;
  const Registry registry = checkRegistry(results);
  checkInstallation(registry, results);
  checkTools(registry, results);
  checkRuntimeDirectory(results);
  checkFiles(invocation.options(), results);
  const Options& options = invocation.options();
  LineWriter& out = standardOutput();
  for (const CheckResult& result : results.all()) {
    if (result.state == State::Ok && options.quiet) continue;
    options.json ? showObject(out, result) : show(out, result);
  }
  const std::size_t problems = results.count(State::Problem);
  if (!options.quiet) out.line(verdict(problems, results.count(State::Warning)));
  return finishOutput(out, problems == 0 ? ExitCode::Success : ExitCode::BuildErrors);
}

constexpr std::array kCommands{
    Command{
        "doctor",
        "Look whether builds can work here: registry, installation, targets and their tools, locks; changes "
        "nothing",
        {},
        examine},
};

}  // namespace

std::span<const Command> doctorCommands() {
  return kCommands;
}

}  // namespace forgeyard::console
