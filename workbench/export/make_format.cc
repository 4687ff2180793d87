#include <cstdint>

#include "workbench/base/failure.h"
#include "workbench/export/formats.h"
#include "workbench/export/shell_text.h"

namespace forgeyard::workbench {

namespace {

std::string recipe(const std::string& text) {
  std::string result;
  for (const char c : text) result += c == '$' ? std::string("$$") : std::string(1, c);
  return result;
}

enum class Place : std::uint8_t { Target, Behind };

std::string path(const std::string& name, Place place = Place::Behind) {
  // Characters that end a name, or make something else of it, whatever stands before them.
  if (name.find_first_of(":;=|~()\n\r\t") != name.npos)
    throw Failure("make can't have a file with one of : ; = | ~ ( ) or a line end in its name: " + name);
  std::string result;
  for (const char c : name) {
    if (c == '$') result += '$';
    // Only in a target does this sign make a pattern, and only there is it taken back.
    const bool pattern = c == '%' && place == Place::Target;
    if (pattern || std::string_view(" #*?[").find(c) != std::string_view::npos) result += '\\';
    result += c;
  }
  return result;
}

std::string paths(const std::vector<std::string>& names, Place place = Place::Behind) {
  std::string result;
  for (const std::string& name : names) result += (result.empty() ? "" : " ") + path(name, place);
  return result;
}

class MakeText {
 public:
  MakeText(const ExportPlan& plan, const std::string& file)
      : plan_(plan), file_(file), names_(ruleNames(plan, {"all", "always", "clean", file})) {}

  std::string text() {
    text_ +=
        std::string(kExportMark) + "make. GNU make 4.3 or later, to be run in the project's directory.\n";
    text_ += "MAKEFLAGS += --no-builtin-rules\n.SUFFIXES:\n.DELETE_ON_ERROR:\n";
    text_ += ".PHONY: all always clean " + paths(names_) + "\nall: " + paths(names_) + "\nalways:\n";
    for (std::size_t at = 0; at < plan_.components.size(); ++at) add(at);
    text_ += "\nclean:\n";
    for (const std::string& file : made_) text_ += "\trm -f " + recipe(shellQuoted(file)) + "\n";
    text_ += "\n";
    for (const std::string& file : depfiles_) text_ += "-include " + path(file) + "\n";
    return std::move(text_);
  }

 private:
  void add(std::size_t at) {
    const ExportedComponent& component = plan_.components[at];
    std::vector<std::string> made;
    std::string rules;
    for (std::size_t i = 0; i < component.runs.size(); ++i) {
      const ExportedRun& run = component.runs[i];
      std::vector<std::string> outputs = run.outputs;
      made_.insert(made_.end(), outputs.begin(), outputs.end());
      // What makes nothing that is named runs each time.
      if (outputs.empty()) outputs.push_back(names_[at] + "-" + std::to_string(i + 1));
      made.insert(made.end(), outputs.begin(), outputs.end());
      add(component, run, outputs);
    }
    text_ += "\n" + names_[at] + ": " + paths(made) + "\n";
  }

  void add(const ExportedComponent& component, const ExportedRun& run,
           const std::vector<std::string>& outputs) {
    text_ += "\n" + paths(outputs, Place::Target) + (outputs.size() > 1 ? " &: " : ": ") + paths(run.inputs);
    // A changed command is a changed file of rules.
    for (const std::string& file : run.alsoReads) text_ += " " + path(file);
    text_ += " " + (run.outputs.empty() ? std::string("always") : path(file_));
    // Where what a source includes isn't known it is compiled.
    if (!run.depfile.empty()) text_ += " " + path(run.depfile);
    if (!component.after.empty()) text_ += " |";
    for (const std::size_t source : component.after) text_ += " " + names_[source];
    text_ += "\n";
    for (const std::string& directory : directoriesFor(plan_, run))
      text_ += "\t@mkdir -p " + recipe(shellQuoted(directory)) + "\n";
    text_ += "\t" + recipe(shellCommand(run)) + dependencyOptions(run) + "\n";
    if (run.depfile.empty()) return;
    text_ += path(run.depfile, Place::Target) + ":\n";
    depfiles_.push_back(run.depfile);
    made_.push_back(run.depfile);
  }

  // The compiler itself doesn't guard a target against being a pattern.
  static std::string dependencyOptions(const ExportedRun& run) {
    if (run.depfile.empty()) return "";
    const bool pattern = run.object.find('%') != std::string::npos;
    return " -MP" + (pattern ? recipe(" -MT " + shellQuoted(path(run.object, Place::Target))) : "");
  }

  const ExportPlan& plan_;
  const std::string& file_;
  std::vector<std::string> names_;
  std::vector<std::string> made_;
  std::vector<std::string> depfiles_;
  std::string text_;
};

}  // namespace

std::string makeText(const ExportPlan& plan, const std::string& file) {
  return MakeText(plan, file).text();
}

}  // namespace forgeyard::workbench
