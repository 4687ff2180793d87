#include "hosts/console/build/json_view.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "hosts/console/build/build_run.h"
#include "hosts/console/services/json_lines.h"

namespace forgeyard::console {

using namespace workbench;

namespace {

using Json = nlohmann::ordered_json;

const char* word(e_btr result) {
  switch (result) {
    case E_BTR_COMPLETED:
      return "OK";
    case E_BTR_STOPPED:
      return "STOPPED";
    default:
      return "ERROR";
  }
}

Json diagnosticMembers(const Diagnostic& diagnostic, const std::string& component) {
  Json members{{"severity", word(diagnostic.severity)}};
  if (!diagnostic.file.empty()) members["file"] = diagnostic.file;
  if (diagnostic.line != 0) members["line"] = diagnostic.line;
  if (diagnostic.column != 0) members["column"] = diagnostic.column;
  members["text"] = diagnostic.text;
  if (!diagnostic.tool.empty()) members["tool"] = diagnostic.tool;
  members["component"] = component;
  if (diagnostic.consequence) members["consequence"] = true;
  return members;
}

Json runMembers(const ToolRun& run) {
  Json members{{"component", run.component.narrow()}, {"index", run.number}};
  if (run.count != 0) members["count"] = std::max(run.count, run.number);
  return members;
}

}  // namespace

JsonView::JsonView(LineWriter& out, const BuildSubject& subject) : out_(out) {
  writeObject(out_, "build_start",
              {{"project", subject.project},
               {"directory", subject.directory},
               {"configuration", subject.configuration},
               {"task", subject.task}});
}

void JsonView::line(const BString& tab, const BString& text, const Diagnostic* diagnostic) {
  writeObject(out_, "line", {{"tab", tab.narrow()}, {"text", text.narrow()}});
  if (diagnostic) writeObject(out_, "diagnostic", diagnosticMembers(*diagnostic, component_));
}

void JsonView::componentStarted(const BString& component, std::int32_t inputs) {
  component_ = component.narrow();
  writeObject(out_, "component_start", {{"component", component_}, {"inputs", inputs}});
}

void JsonView::componentEnded(const BString& component, e_btr result) {
  writeObject(out_, "component_end", {{"component", component.narrow()}, {"result", word(result)}});
}

void JsonView::toolStarted(const ToolRun& run, const std::string& file) {
  Json members = runMembers(run);
  if (!file.empty()) members["file"] = file;
  members["command"] = run.command.narrow();
  writeObject(out_, "tool_start", members);
}

void JsonView::toolFailed(const Diagnostic& failure) {
  writeObject(out_, "diagnostic", diagnosticMembers(failure, component_));
}

void JsonView::toolEnded(const ToolRun& run, std::optional<std::int32_t> exitCode,
                         std::chrono::milliseconds elapsed) {
  Json members = runMembers(run);
  if (exitCode) members["exit_code"] = *exitCode;
  members["elapsed_ms"] = elapsed.count();
  writeObject(out_, "tool_end", members);
}

void JsonView::ended(const BuildOutcome& outcome) {
  writeObject(out_, "build_end",
              {{"result", resultWord(outcome.result)},
               {"errors", outcome.findings.errors().size()},
               {"warnings", outcome.findings.warnings().size()},
               {"tools", outcome.tools},
               {"elapsed_ms", outcome.elapsed.count()}});
}

}  // namespace forgeyard::console
