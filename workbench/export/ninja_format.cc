#include <algorithm>
#include <cctype>

#include "workbench/base/failure.h"
#include "workbench/export/formats.h"
#include "workbench/export/shell_text.h"
#include "workbench/import/source_names.h"

namespace forgeyard::workbench {

namespace {

std::string value(const std::string& text) {
  std::string result;
  for (const char c : text) result += c == '$' ? std::string("$$") : std::string(1, c);
  return result;
}

std::string path(const std::string& name) {
  if (name.find_first_of("|\n\r") != name.npos)
    throw Failure("ninja can't have a file with a bar or a line end in its name: " + name);
  std::string result;
  for (const char c : name) {
    if (c == '$' || c == ' ' || c == ':') result += '$';
    result += c;
  }
  return result;
}

std::string paths(const std::vector<std::string>& names) {
  std::string result;
  for (const std::string& name : names) result += " " + path(name);
  return result;
}

class NinjaText {
 public:
  explicit NinjaText(const ExportPlan& plan) : plan_(plan), names_(ruleNames(plan, {"all", "always"})) {}

  std::string text() {
    text_ += std::string(kExportMark) + "ninja. To be run in the project's directory.\n";
    text_ += "ninja_required_version = 1.5\n\n";
    text_ += "rule run\n  command = $cmd\n  description = $what\n\n";
    text_ += "rule compile\n  command = $cmd\n  description = $what\n  depfile = $dep\n  deps = gcc\n\n";
    text_ += "build always: phony\n";
    for (std::size_t at = 0; at < plan_.components.size(); ++at) add(at);
    text_ += "\nbuild all: phony" + paths(names_) + "\ndefault all\n";
    return std::move(text_);
  }

 private:
  void add(std::size_t at) {
    const ExportedComponent& component = plan_.components[at];
    text_ += "\n# " + value(oneLine(component.name)) + "\n";
    std::vector<std::string> made;
    for (std::size_t i = 0; i < component.runs.size(); ++i) {
      const ExportedRun& run = component.runs[i];
      std::vector<std::string> outputs = run.outputs;
      // What makes nothing that is named runs each time.
      if (outputs.empty()) outputs.push_back(names_[at] + "-" + std::to_string(i + 1));
      made.insert(made.end(), outputs.begin(), outputs.end());
      add(component, run, outputs);
    }
    text_ += "build " + names_[at] + ": phony" + paths(made) + "\n";
  }

  void add(const ExportedComponent& component, const ExportedRun& run,
           const std::vector<std::string>& outputs) {
    text_ += "build" + paths(outputs) + ": " + (run.depfile.empty() ? "run" : "compile") + paths(run.inputs);
    std::vector<std::string> implicit = run.alsoReads;
    if (run.outputs.empty()) implicit.emplace_back("always");
    if (!implicit.empty()) text_ += " |" + paths(implicit);
    if (!component.after.empty()) {
      text_ += " ||";
      for (const std::size_t source : component.after) text_ += " " + path(names_[source]);
    }
    std::string command = shellCommand(run);
    // Those of outputs it makes by itself.
    const std::vector<std::string> own = outputDirectories(run);
    for (const std::string& directory : directoriesFor(plan_, run)) {
      if (std::find(own.begin(), own.end(), directory) != own.end()) continue;
      command.insert(0, "mkdir -p " + shellQuoted(directory) + " && ");
    }
    text_ += "\n  cmd = " + value(command) + "\n  what = " +
             value(oneLine(component.name +
                           (run.source.empty() ? "" : ": " + std::string(fileName(run.source))))) +
             "\n";
    if (!run.depfile.empty()) text_ += "  dep = " + value(run.depfile) + "\n";
  }

  static std::string oneLine(std::string text) {
    std::replace_if(
        text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x20; }, '?');
    return text;
  }

  const ExportPlan& plan_;
  std::vector<std::string> names_;
  std::string text_;
};

}  // namespace

std::vector<std::string> unreadableForNinja(const ExportPlan& plan) {
  constexpr std::string_view known = " $#+,/_:.~()}{%=@[]!-";
  const auto isKnown = [&](char c) {
    const auto byte = static_cast<unsigned char>(c);
    return byte >= 0x80 || std::isalnum(byte) != 0 || known.find(c) != known.npos;
  };
  std::vector<std::string> sources;
  for (const ExportedComponent& component : plan.components) {
    for (const ExportedRun& run : component.runs) {
      if (!run.depfile.empty() && !std::all_of(run.source.begin(), run.source.end(), isKnown))
        sources.push_back(run.source);
    }
  }
  return sources;
}

std::string ninjaText(const ExportPlan& plan) {
  return NinjaText(plan).text();
}

}  // namespace forgeyard::workbench
