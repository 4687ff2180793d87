#include "workbench/import/database_import.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <set>

#include "workbench/base/failure.h"
#include "workbench/import/compilation_database.h"
#include "workbench/import/compiler_names.h"
#include "workbench/import/compiler_settings.h"
#include "workbench/import/source_names.h"
#include "workbench/import/source_survey.h"
#include "workbench/session/targets.h"

namespace forgeyard::workbench {

namespace {

namespace fs = std::filesystem;

// The target that CMake makes the object for, by where that lies; empty if it isn't CMake's.
std::string buildTarget(const CompileCommand& command) {
  std::string output = command.output;
  for (std::size_t at = 1; at + 1 < command.arguments.size() && output.empty(); ++at) {
    if (command.arguments[at] == "-o") output = command.arguments[at + 1];
  }
  constexpr std::string_view before = "CMakeFiles/";
  const std::size_t start = output.find(before);
  const std::size_t end = output.find(".dir/", start);
  if (start == output.npos || end == output.npos) return "";
  return output.substr(start + before.size(), end - start - before.size());
}

class DatabaseImport {
 public:
  DatabaseImport(ImportRequest& request, const Registry& registry, Host& host, Notes& notes)
      : request_(request), registry_(registry), host_(host), notes_(notes) {}

  ProjectParts run() {
    parts_.root = request_.directory;
    parts_.folders = request_.folders;
    const std::unique_ptr<Progress> progress = host_.begin("compilations read");
    for (const CompileCommand& command : readCompilationDatabase(request_.database)) {
      progress->step();
      take(command);
    }
    if (parts_.groups.empty())
      throw Failure(request_.database + " compiles no source that a project can take.");
    nameGroups();
    for (const CompileGroup& group : parts_.groups) {
      for (const std::string& file : group.files) survey_.add(file, readSourceFile(file, notes_));
    }
    showHeaders();
    parts_.mains = survey_.mains(request_, parts_.groups, notes_);
    divideAmongPrograms();
    std::erase_if(parts_.groups, [](const CompileGroup& group) { return group.files.empty(); });
    parts_.link.options = survey_.libraries();
    for (const std::string& option : link_) addLinkOption(option);
    return std::move(parts_);
  }

 private:
  void take(const CompileCommand& command) {
    if (!isSource(command)) return;
    const CompilerSettings settings = readCompilerOptions(
        command,
        [this](const std::string& path) {
          headers_.insert(path);
          return request_.settingPath(path);
        },
        notes_);
    if (!isCompilerDriver(settings.compiler))
      return notes_.add("Left out, since its compiler has no C compiler's options", shown(command.file));
    chooseTarget(settings.compiler);
    const std::size_t group = groupOf(settings);
    filesOf_[buildTarget(command)].push_back(command.file);
    ++uses_[command.file];
    const auto [known, isNew] = groupOfFile_.emplace(command.file, group);
    if (!isNew) {
      if (known->second != group)
        notes_.add("Compiled with different options, of which the first are taken", shown(command.file));
      return;
    }
    parts_.groups[group].files.push_back(command.file);
    targets_[group].insert(buildTarget(command));
    link_.insert(settings.link.begin(), settings.link.end());
  }

  bool isSource(const CompileCommand& command) {
    const FileKind kind = kindOfFile(command.file);
    const std::string_view extension = fileExtension(command.file);
    const bool known = kind == FileKind::Compiled || kind == FileKind::Assembled || extension == ".i" ||
                       extension == ".ii" || extension == ".m";
    const auto why = unusableBecause(command.file, FileKind::Compiled);
    if (makesHeader(command)) return false;
    if (!known) notes_.add("Left out, no source of a C or C++ compiler", shown(command.file));
    if (known && why) notes_.add("Left out, since " + *why, shown(command.file));
    return known && !why;
  }

  // A precompiled header: the compilations that use it take the header itself as well.
  static bool makesHeader(const CompileCommand& command) {
    const auto& words = command.arguments;
    const auto language = std::find(words.begin(), words.end(), "-x");
    return language != words.end() && language + 1 != words.end() && (language + 1)->ends_with("-header");
  }

  std::string shown(const std::string& path) const {
    return path.starts_with(request_.directory + "/") ? path.substr(request_.directory.size() + 1) : path;
  }

  std::size_t groupOf(const CompilerSettings& settings) {
    std::string key;
    for (const Assignment& setting : settings.settings) key += setting.property + "=" + setting.value + "\n";
    const auto [known, isNew] = groupOfKey_.emplace(key, parts_.groups.size());
    if (isNew) parts_.groups.push_back({"", settings.settings, {}, false});
    return known->second;
  }

  // The first of the registry's that runs this compiler.
  void chooseTarget(const std::string& compiler) {
    const std::string driver = driverForC(compiler);
    if (!drivers_.insert(driver).second || !request_.target.empty()) return;
    for (const Target& target : registeredTargets(registry_)) {
      if (fileName(linkToolsOf(registry_, target.name).driver) != driver) continue;
      request_.target = target.name;
      return;
    }
    if (driver != "cc" && driver != "gcc")
      notes_.add("No target has this compiler, so another one is taken (forgeyard target add, and --target)",
                 driver);
  }

  void nameGroups() {
    if (parts_.groups.size() == 1) return;
    for (std::size_t at = 0; at < parts_.groups.size(); ++at) {
      if (targets_[at].size() == 1) parts_.groups[at].label = *targets_[at].begin();
    }
  }

  // What one target of the other build system alone is made of belongs to that target's program.
  void divideAmongPrograms() {
    for (const std::string& main : parts_.mains) {
      for (const auto& [target, files] : filesOf_) {
        if (target.empty() || std::find(files.begin(), files.end(), main) == files.end()) continue;
        parts_.programNames.emplace(main, target);
        for (const std::string& file : files) {
          if (uses_[file] == 1) parts_.programMains.emplace(file, main);
        }
      }
    }
  }

  // Headers beside the sources and in the include directories, if those are the project's.
  void showHeaders() {
    for (const auto& [file, group] : groupOfFile_) headers_.insert(std::string(directoryName(file)));
    for (const std::string& directory : headers_) {
      if (directory != request_.directory && !directory.starts_with(request_.directory + "/")) continue;
      std::set<std::string> found;
      std::error_code error;
      for (const auto& entry : fs::directory_iterator(directory, error)) {
        const std::string path = entry.path().string();
        std::error_code ignored;
        if (kindOfFile(path) == FileKind::Header && entry.is_regular_file(ignored) &&
            !unusableBecause(path, FileKind::Header))
          found.insert(path);
      }
      parts_.shown.insert(parts_.shown.end(), found.begin(), found.end());
    }
  }

  void addLinkOption(const std::string& option) {
    std::string& options = parts_.link.options;
    if ((" " + options + " ").find(" " + option + " ") == options.npos)
      options += (options.empty() ? "" : " ") + option;
  }

  ImportRequest& request_;
  const Registry& registry_;
  Host& host_;
  Notes& notes_;
  ProjectParts parts_;
  SourceSurvey survey_;
  std::map<std::string, std::size_t> groupOfKey_;
  std::map<std::string, std::size_t> groupOfFile_;
  std::map<std::size_t, std::set<std::string>> targets_;
  std::map<std::string, std::vector<std::string>> filesOf_;  // by the target of the other build system
  std::map<std::string, int> uses_;
  std::set<std::string> drivers_;
  std::set<std::string> headers_;  // directories
  std::set<std::string> link_;
};

}  // namespace

ProjectParts partsOfDatabase(ImportRequest& request, const Registry& registry, Host& host, Notes& notes) {
  return DatabaseImport(request, registry, host, notes).run();
}

}  // namespace forgeyard::workbench
