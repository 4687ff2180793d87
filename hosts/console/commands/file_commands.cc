// file add, list and remove.

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <unordered_set>

#include "hosts/console/base/report.h"
#include "hosts/console/commands/command.h"
#include "hosts/console/project/open_project.h"
#include "hosts/console/project/source_files.h"

namespace forgeyard::console {

namespace {

using Kind = Parameter::Kind;

void refuseDirectories(const std::vector<std::string>& paths) {
  for (const std::string& path : paths) {
    struct stat status {};
    if (::stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode))
      throw Failure(path + " is a directory. Name the files in it, for example " + path + "/*.c");
  }
}

void warnIfMissing(const std::string& path) {
  if (::access(path.c_str(), F_OK) != 0) complain(path + ": there is no such file yet; added all the same.");
}

// The names of the files that the project hasn't got yet, each once.
std::vector<BString> newNames(const std::vector<std::string>& paths, const ProjectPaths& speller,
                              const std::vector<FolderContents>& folders) {
  std::unordered_set<BString> known;
  for (const FolderContents& folder : folders) {
    for (const ProjectSource& file : folder.files) known.insert(file.name);
  }
  std::vector<BString> names;
  for (const std::string& path : paths) {
    BString name = speller.toProject(path);
    if (!known.insert(name).second) {
      complain(path + " is in the project already.");
      continue;
    }
    warnIfMissing(path);
    names.push_back(std::move(name));
  }
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
    out.line(folder.folder.name + ": " + std::to_string(added) +
             (added == 1 ? " file added" : " files added"));
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
    session.output().line(folder.folder.name);
    for (const ProjectSource& file : folder.files) session.output().line("  " + paths.toUser(file.name));
  }
  return session.finish();
}

// The name that the project itself has for the file: the wanted one, or one that differs in case alone.
BString knownName(IProject& project, const BString& wanted, const std::unordered_set<BString>& known) {
  if (known.contains(wanted)) return wanted;
  Ref<ISourceFile> file;
  check(project.FindFileInProject(wanted, &file));
  BString name;
  if (file) check(file->get_Name(&name));
  return name;
}

// Throws for the first path that is in no folder, so that nothing is removed then.
std::unordered_set<BString> namesToRemove(IProject& project, const std::vector<std::string>& given,
                                          const std::vector<FolderContents>& folders) {
  const ProjectPaths paths(project);
  std::unordered_set<BString> known;
  for (const FolderContents& folder : folders) {
    for (const ProjectSource& file : folder.files) known.insert(file.name);
  }
  std::unordered_set<BString> names;
  for (const std::string& path : given) {
    BString name = knownName(project, paths.toProject(path), known);
    if (name.isNull()) throw unknownFile(path, folders, paths);
    names.insert(std::move(name));
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

constexpr std::array kCommands{
    Command{
        "file add",
        "Add source files to the project",
        {{{Kind::Texts, "PATH", "", "files; what is in the project already is left as it is"},
          {Kind::Option, "--folder", "NAME", "the folder that gets them; left out: by their extensions"}}},
        addFiles},
    Command{"file list", "Show the files by folder, relative to the project's directory", {}, listFiles},
    Command{"file remove",
            "Take files out of the project; on the disk they stay",
            {{{Kind::Texts, "PATH", "", "files of the project"}}},
            removeFiles},
};

}  // namespace

std::span<const Command> fileCommands() {
  return kCommands;
}

}  // namespace forgeyard::console
