// doctor: whether builds can work here, and what to do where not. It needs nothing of what it looks at.

#include <nlohmann/json.hpp>

#include "hosts/console/base/words.h"
#include "hosts/console/commands/command.h"
#include "hosts/console/doctor/checks.h"
#include "hosts/console/services/json_lines.h"
#include "hosts/console/services/standard_output.h"
#include "hosts/console/services/terminal.h"

namespace forgeyard::console {

namespace {

constexpr std::size_t kStateWidth = 9;
constexpr std::size_t kSubjectWidth = 11;

std::string padded(std::string text, std::size_t width) {
  text.resize(std::max(width, text.size() + 1), ' ');
  return text;
}

void show(LineWriter& out, const Finding& finding) {
  // Names and lines of files may hold anything.
  out.line(padded(toText(finding.state), kStateWidth) + padded(finding.subject, kSubjectWidth) +
           printable(finding.text));
  if (!finding.advice.empty())
    out.line(std::string(kStateWidth + kSubjectWidth, ' ') + "-> " + printable(finding.advice));
}

void showObject(LineWriter& out, const Finding& finding) {
  nlohmann::ordered_json members{
      {"state", toText(finding.state)}, {"subject", finding.subject}, {"text", finding.text}};
  if (!finding.advice.empty()) members["advice"] = finding.advice;
  writeObject(out, "finding", members);
}

std::string verdict(std::size_t problems, std::size_t warnings) {
  const std::string aside = warnings == 0 ? "" : "; " + counted(warnings, "warning");
  if (problems == 0) return "Builds can work" + aside + ".";
  return "Builds can't work: " + counted(problems, "problem") + aside + ".";
}

ExitCode examine(const Invocation& invocation) {
  using State = Finding::State;
  Findings findings;
  const Registry registry = checkRegistry(findings);
  checkInstallation(registry, findings);
  checkTools(registry, findings);
  checkRuntimeDirectory(findings);
  checkFiles(invocation.options(), findings);
  const Options& options = invocation.options();
  LineWriter& out = standardOutput();
  for (const Finding& finding : findings.all()) {
    if (finding.state == State::Ok && options.quiet) continue;
    options.json ? showObject(out, finding) : show(out, finding);
  }
  const std::size_t problems = findings.count(State::Problem);
  if (!options.quiet) out.line(verdict(problems, findings.count(State::Warning)));
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
