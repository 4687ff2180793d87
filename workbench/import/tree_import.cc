#include "workbench/import/tree_import.h"

#include "workbench/base/failure.h"
#include "workbench/import/include_paths.h"
#include "workbench/import/source_survey.h"
#include "workbench/import/source_tree.h"

namespace forgeyard::workbench {

namespace {

constexpr std::size_t kLongestList = 120000;

// The directories as a setting lists them; those that a list can't hold are noted.
std::string directoryList(const std::vector<std::string>& directories, const ImportRequest& request,
                          Notes& notes) {
  std::string list;
  for (const std::string& directory : directories) {
    const std::string path = directory == "." ? request.directory : request.directory + "/" + directory;
    if (directory.find_first_of(";\"") != directory.npos) {
      notes.add("No include path, since a list can't hold the name", directory);
      continue;
    }
    list += (list.empty() ? "" : ";") + request.settingPath(path);
  }
  return list;
}

}  // namespace

ProjectParts partsOfTree(const ImportRequest& request, Host& host, Notes& notes) {
  const SourceTree tree = readSourceTree(request.directory, notes, host);
  IncludePaths includes(tree);
  std::vector<std::pair<const TreeFile*, SourceFacts>> sources;
  {
    const std::unique_ptr<Progress> progress = host.begin("files read");
    for (const TreeFile& file : tree.files) {
      if (file.kind == FileKind::Other) continue;
      progress->step();
      SourceFacts facts = readSourceFile(tree.root + "/" + file.path, notes);
      includes.add(file.path, facts.includes);
      if (file.kind != FileKind::Header) sources.emplace_back(&file, std::move(facts));
    }
  }
  const std::string directories = directoryList(includes.directories(notes), request, notes);

  ProjectParts parts;
  parts.root = request.directory;
  parts.folders = request.folders;
  CompileGroup group;
  SourceSurvey survey;
  for (const auto& [file, facts] : sources) {
    const std::string path = tree.root + "/" + file->path;
    if (includes.includedSources().contains(file->path)) {
      notes.add("Not compiled, since another source includes it", file->path);
      parts.shown.push_back(path);
    } else {
      group.files.push_back(path);
      if (path.find_first_of(";*?") != path.npos)
        notes.add("Compiled in every build, since projects take a name with ;, * or ? for a pattern",
                  file->path);
      survey.add(path, facts);
    }
  }
  if (group.files.empty()) throw Failure(request.directory + " has no C, C++ or assembler sources in it.");
  for (const TreeFile& file : tree.files) {
    if (file.kind == FileKind::Header) parts.shown.push_back(tree.root + "/" + file.path);
  }
  if (directories.size() > kLongestList)
    notes.add("The include paths may be too long for a command, which takes 131071 characters in all",
              std::to_string(directories.size()) + " characters");
  if (!directories.empty()) {
    group.settings.push_back({"IncludePath", directories});
    parts.assemblerSettings.push_back({"IncludePath", directories});
  }
  parts.groups.push_back(std::move(group));
  parts.mains = survey.mains(request, parts.groups, notes);
  parts.link.options = survey.libraries();
  return parts;
}

}  // namespace forgeyard::workbench
