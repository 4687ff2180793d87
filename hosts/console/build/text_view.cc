#include "hosts/console/build/text_view.h"

#include "hosts/console/session/session.h"
#include "workbench/base/words.h"

namespace forgeyard::console {

using namespace workbench;

namespace {

constexpr std::string_view kBold = "\x1b[1m";
constexpr std::string_view kPlain = "\x1b[0m";

std::string_view colourOf(Severity severity) {
  switch (severity) {
    case Severity::Error:
      return "\x1b[1;31m";
    case Severity::Warning:
      return "\x1b[1;35m";
    default:
      return "\x1b[1;36m";
  }
}

std::string marked(std::string_view text, std::string_view colour) {
  return text.empty() ? std::string() : std::string(colour) + std::string(text) + std::string(kPlain);
}

// The same bytes with colours between them.
std::string coloured(const BString& text, const Diagnostic& diagnostic) {
  const auto piece = [&](std::size_t begin, std::size_t end) {
    return BString(text.view().substr(begin, end - begin)).narrow();
  };
  return marked(piece(0, diagnostic.placeEnd), kBold) + piece(diagnostic.placeEnd, diagnostic.wordBegin) +
         marked(piece(diagnostic.wordBegin, diagnostic.wordEnd), colourOf(diagnostic.severity)) +
         piece(diagnostic.wordEnd, text.size());
}

}  // namespace

TextView::TextView(Session& session) : out_(session.output()), terminal_(Terminal::ofStandardOutput()) {
  if (terminal_.redraws && !session.options().quiet) progress_ = std::make_unique<ProgressLine>(session);
}

void TextView::line(const BString&, const BString& text, const Diagnostic* diagnostic) {
  if (diagnostic && terminal_.colours && diagnostic->wordEnd != 0) {
    out_.line(coloured(text, *diagnostic));
  } else {
    out_.line(text.view());
  }
}

void TextView::componentStarted(const BString& component, std::int32_t) {
  if (progress_) progress_->componentStarted(component.narrow());
}

void TextView::componentEnded(const BString&, e_btr) {
  if (progress_) progress_->componentEnded();
}

void TextView::toolStarted(const ToolRun& run, const std::string& file) {
  if (progress_) progress_->toolStarted(run.number, run.count, file);
}

// The summary has it.
void TextView::toolFailed(const Diagnostic&) {}

void TextView::toolEnded(const ToolRun&, std::optional<std::int32_t>, std::chrono::milliseconds) {}

void TextView::showFinding(const Finding& finding) {
  const Diagnostic& diagnostic = finding.diagnostic;
  const std::string where = finding.where() + ":";
  const std::string severity = std::string(word(diagnostic.severity)) + ":";
  const std::string times = finding.count == 1 ? "" : " (" + std::to_string(finding.count) + " times)";
  const bool colours = terminal_.colours;
  out_.line((colours ? marked(where, kBold) : where) + " " +
            (colours ? marked(severity, colourOf(diagnostic.severity)) : severity) + " " + diagnostic.text +
            times);
}

// What is worst comes last, where it is seen.
void TextView::ended(const BuildOutcome& outcome) {
  progress_.reset();
  const Findings& findings = outcome.findings;
  if (findings.empty()) return;
  const std::size_t warnings = findings.warnings().size();
  for (std::size_t i = 0; i < std::min(warnings, kWarningsShown); ++i) showFinding(findings.warnings()[i]);
  if (warnings > kWarningsShown) out_.line(counted(warnings - kWarningsShown, "more warning") + ".");
  for (const Finding& finding : findings.errors()) showFinding(finding);
  std::string total;
  if (!findings.errors().empty()) total = counted(findings.errors().size(), "error");
  if (warnings > 0) total += (total.empty() ? "" : ", ") + counted(warnings, "warning");
  out_.line(total + ".");
}

}  // namespace forgeyard::console
