// file add, list, remove and depends.

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <unordered_set>

#include "hosts/console/base/report.h"
#include "hosts/console/commands/command.h"
#include "hosts/console/services/json_lines.h"
#include "hosts/console/session/session.h"
#include "platform/paths/shell_path.h"
#include "workbench/base/failure.h"
#include "workbench/base/nearest.h"
#include "workbench/base/words.h"
#include "workbench/project/collections.h"
#include "workbench/project/open_project.h"
#include "workbench/project/source_files.h"

namespace forgeyard::console {

using namespace workbench;

namespace {

using Kind = Parameter::Kind;

bool isDirectory(const std::string& path) {
  struct stat status {};
  return ::stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

void refuseDirectories(const std::vector<std::string>& paths) {
  const auto found = std::find_if(paths.begin(), paths.end(), isDirectory);
  if (found == paths.end()) return;
  throw Failure(*found + " is a directory. Name the files in it, for example " + *found + "/*.c");
}

void warnIfMissing(const std::string& path) {
  if (::access(path.c_str(), F_OK) != 0) complain(path + ": there is no such file yet; added all the same.");
}

void warnOfPattern(const std::string& path, const BString& name) {
  if (isMatchSpec(name))
    complain(path +
             ": projects take a name with ;, * or ? for a pattern, so what this file includes can't be "
             "kept: it is compiled in every build.");
}

// A repeated `file add src/*.c`, which is the way to take in what is new, is no reason for a long list.
void reportKnown(const std::vector<std::string>& paths) {
  if (paths.empty()) return;
  const bool one = paths.size() == 1;
  complain((one ? paths.front() + " is" : std::to_string(paths.size()) + " of these files are") +
           " in the project already.");
}

// The names of the files that the project hasn't got yet, each once.
std::vector<BString> newNames(const std::vector<std::string>& paths, const ProjectPaths& speller,
                              const std::vector<FolderContents>& folders) {
  const SourceNames known(folders);
  std::unordered_set<BString> taken;
  std::vector<BString> names;
  std::vector<std::string> knownPaths;
  for (const std::string& path : paths) {
    BString name = speller.toProject(path);
    if (known.contains(name) || !taken.insert(name).second) {
      knownPaths.push_back(path);
      continue;
    }
    warnIfMissing(path);
    warnOfPattern(path, name);
    names.push_back(std::move(name));
  }
  reportKnown(knownPaths);
  return names;
}

std::int32_t countOf(ISourceFiles& files) {
  std::int32_t count = 0;
  check(files.get_Count(&count));
  return count;
}

// Which folder got how many: the project chooses by the extensions.
void reportAdded(LineWriter& out, const std::vector<FolderContents>& before) {
  for (const FolderContents& folder : before) {
    const std::size_t added = static_cast<std::size_t>(countOf(*folder.list)) - folder.files.size();
    if (added == 0) continue;
    out.line(folder.folder.name + ": " + counted(added, "file") + " added");
  }
}

ExitCode addFiles(const Invocation& invocation) {
  refuseDirectories(invocation.texts("PATH"));
  Session session(invocation.options());
  OpenProject project(session);
  const std::vector<FolderContents> folders = foldersOf(project.project());
  if (folders.empty())
    throw Failure("The project has no folder to put files in. Make one: forgeyard folder add NAME");
  Ref<IDispatch> folder;
  if (invocation.has("--folder"))
    folder = findFolder(project.project(), invocation.text("--folder")).object.as<IDispatch>();
  std::vector<BString> names = newNames(invocation.texts("PATH"), ProjectPaths(project.project()), folders);
  if (names.empty()) return ExitCode::Success;
  const auto enumerator = make<ListEnumerator<IEnumString>>(std::move(names));
  require(project.project().InsertFiles(enumerator.get(), folder.get()), "The files can't be added");
  project.save();
  if (!invocation.options().quiet) reportAdded(session.output(), folders);
  return session.finish();
}

ExitCode listFiles(const Invocation& invocation) {
  Session session(invocation.options());
  const OpenProject project(session);
  const ProjectPaths paths(project.project());
  for (const FolderContents& folder : foldersOf(project.project())) {
    const bool json = session.options().json;
    if (!json) session.output().line(folder.folder.name);
    for (const ProjectSource& file : folder.files) {
      const std::string name = paths.toUser(file.name);
      if (json) {
        writeObject(session.output(), "source", {{"folder", folder.folder.name}, {"file", name}});
      } else {
        session.output().line("  " + name);
      }
    }
  }
  return session.finish();
}

// Throws for the first path that is in no folder, so that nothing is removed then.
std::unordered_set<BString> namesToRemove(IProject& project, const std::vector<std::string>& given,
                                          const std::vector<FolderContents>& folders) {
  const ProjectPaths paths(project);
  const SourceNames known(folders);
  std::unordered_set<BString> names;
  for (const std::string& path : given) {
    const ProjectSource* file = known.find(paths.toProject(path));
    if (!file) throw unknownFile(path, folders, paths);
    names.insert(file->name);
  }
  return names;
}

ExitCode removeFiles(const Invocation& invocation) {
  Session session(invocation.options());
  OpenProject project(session);
  const std::vector<FolderContents> folders = foldersOf(project.project());
  const auto names = namesToRemove(project.project(), invocation.texts("PATH"), folders);
  for (const FolderContents& folder : folders) {
    std::vector<Ref<IUnknown>> files;
    for (const ProjectSource& file : folder.files) {
      if (names.contains(file.name)) files.emplace_back(file.object);
    }
    if (files.empty()) continue;
    const auto enumerator = make<ListEnumerator<IEnumUnknown>>(std::move(files));
    require(folder.list->RemoveMulti(enumerator.get()), "The files can't be removed");
  }
  project.save();
  return ExitCode::Success;
}

const ProjectSource& requireSource(const std::string& path, const std::vector<FolderContents>& folders,
                                   const SourceNames& known, const ProjectPaths& paths) {
  const ProjectSource* file = known.find(paths.toProject(path));
  if (!file) throw unknownFile(path, folders, paths);
  return *file;
}

std::vector<BString> manualDependencies(ISourceFile& source) {
  Ref<ISimpleCollection> collection;
  check(source.get_ManualDeps(&collection));
  return textsOf(*collection);
}

bool namesFile(const BString& entry, const std::string& path, const ProjectPaths& paths) {
  return paths.dependencyToUser(entry) == paths.toUser(paths.toProject(path));
}

// `known` are the entries before the command.
void addDependency(ISourceFile& source, const std::string& path, const std::vector<BString>& known,
                   const ProjectPaths& paths) {
  if (std::ranges::any_of(known, [&](const BString& entry) { return namesFile(entry, path, paths); }))
    return complain(path + " is among the dependencies already.");
  if (::access(path.c_str(), F_OK) != 0)
    complain(path + ": there is no such file; until there is one, the source is built each time.");
  require(source.AddManualDep(paths.toDependency(path)), path + " can't be added");
}

void removeDependency(ISourceFile& source, const std::string& path, const std::vector<BString>& known,
                      const ProjectPaths& paths) {
  std::vector<std::string> names;
  bool found = false;
  for (const BString& entry : known) {
    names.push_back(paths.dependencyToUser(entry));
    if (!namesFile(entry, path, paths)) continue;
    require(source.RemoveManualDep(entry), path + " can't be removed");
    found = true;
  }
  if (!found)
    throw Failure(path + " is no dependency that was entered." +
                  suggestion(paths.toUser(paths.toProject(path)), names, "dependencies"));
}

void showDependencies(LineWriter& out, ISourceFile& source, const std::string& file,
                      const ProjectPaths& paths, bool json) {
  for (const BString& entry : manualDependencies(source)) {
    const std::string name = paths.dependencyToUser(entry);
    if (json) {
      writeObject(out, "dependency", {{"file", file}, {"depends_on", name}});
    } else {
      out.line(name);
    }
  }
}

void requireOneWay(const Invocation& invocation) {
  const bool add = invocation.has("--add");
  const bool remove = invocation.has("--remove");
  if (add && remove) throw Failure("--add and --remove exclude each other.");
  const bool names = invocation.has("NAME");
  if (names && !add && !remove) throw Failure("What is to be done with the names? Give --add or --remove.");
  if (!names && (add || remove)) throw Failure("Give the files that PATH depends on behind it.");
}

ExitCode changeDependencies(const Invocation& invocation) {
  requireOneWay(invocation);
  Session session(invocation.options());
  OpenProject project(session);
  const ProjectPaths paths(project.project());
  const std::vector<FolderContents> folders = foldersOf(project.project());
  const ProjectSource& source = requireSource(invocation.text("PATH"), folders, SourceNames(folders), paths);
  if (!invocation.has("NAME")) {
    showDependencies(session.output(), *source.object, paths.toUser(source.name), paths,
                     session.options().json);
    return session.finish();
  }
  const auto change = invocation.has("--add") ? addDependency : removeDependency;
  const std::vector<BString> known = manualDependencies(*source.object);
  for (const std::string& path : invocation.texts("NAME")) change(*source.object, path, known, paths);
  require(project.project().put_Dirty(1), "The project can't be changed");
  project.save();
  return ExitCode::Success;
}

constexpr std::array kCommands{
    Command{"file add",
            "Add source files to the project",
            {{{Kind::Texts, "PATH", "", "files; what is in the project already is left as it is",
               Completes::File},
              {Kind::Option, "--folder", "NAME", "the folder that gets them; left out: by their extensions",
               Completes::Folder}}},
            addFiles},
    Command{"file list", "Show the files by folder, relative to the project's directory", {}, listFiles},
    Command{"file remove",
            "Take files out of the project; on the disk they stay",
            {{{Kind::Texts, "PATH", "", "files of the project", Completes::SourceFile}}},
            removeFiles},
    Command{"file depends",
            "Show, add or remove what a file depends on beside what its compiler reports",
            {{{Kind::Text, "PATH", "", "a file of the project", Completes::SourceFile},
              {Kind::OptionalTexts, "NAME", "", "files that it depends on; left out: show those entered",
               Completes::File},
              {Kind::Flag, "--add", "", "enter the files: a change in one of them builds PATH again"},
              {Kind::Flag, "--remove", "", "remove the files from its dependencies"}}},
            changeDependencies},
};

}  // namespace

std::span<const Command> fileCommands() {
  return kCommands;
}

}  // namespace forgeyard::console
