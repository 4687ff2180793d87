#include "workbench/import/source_tree.h"

#include <dirent.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <memory>
#include <set>

#include "workbench/base/failure.h"
#include "workbench/import/git_ignored.h"

namespace forgeyard::workbench {

namespace {

namespace fs = std::filesystem;

// Directories that tools make, and files that lie in the top of such a directory.
constexpr std::array<std::string_view, 4> kBuildDirectories{"obj", "CMakeFiles", "node_modules",
                                                            "__pycache__"};
constexpr std::array<std::string_view, 4> kBuildMarkers{"CMakeCache.txt", "build.ninja", "CACHEDIR.TAG",
                                                        ".ninja_log"};

template <class List>
bool contains(const List& list, std::string_view name) {
  return std::find(list.begin(), list.end(), name) != list.end();
}

struct Entry {
  std::string name;
  bool directory = false;
  bool link = false;
};

class TreeWalk {
 public:
  TreeWalk(const std::string& root, Notes& notes, Host& host)
      : notes_(notes), ignored_(ignoredByGit(root)), progress_(host.begin("files looked at")) {
    tree_.root = root;
    std::error_code error;
    realRoot_ = fs::canonical(root, error).string();
  }

  SourceTree run() {
    struct stat status {};
    if (::stat(tree_.root.c_str(), &status) != 0)
      throw Failure(tree_.root + " can't be read: " + std::generic_category().message(errno) + ".");
    if (!S_ISDIR(status.st_mode)) throw Failure(tree_.root + " is no directory.");
    seen_.insert({status.st_dev, status.st_ino});
    walk("");
    return std::move(tree_);
  }

 private:
  std::string hostPath(const std::string& relative) const {
    return relative.empty() ? tree_.root : tree_.root + "/" + relative;
  }

  // Sorted by name, files and directories. Nothing if the directory can't be read.
  std::vector<Entry> entriesOf(const std::string& directory) {
    const std::string path = hostPath(directory);
    const std::unique_ptr<DIR, int (*)(DIR*)> stream(::opendir(path.c_str()), ::closedir);
    if (!stream) {
      const std::string why = std::generic_category().message(errno);
      if (directory.empty()) throw Failure(tree_.root + " can't be read: " + why + ".");
      notes_.add("Left out, can't be read (" + why + ")", directory);
      return {};
    }
    std::vector<Entry> entries;
    while (const dirent* found = ::readdir(stream.get())) {
      Entry entry{static_cast<const char*>(found->d_name), found->d_type == DT_DIR, found->d_type == DT_LNK};
      if (entry.name == "." || entry.name == "..") continue;
      if (found->d_type == DT_UNKNOWN) {
        std::error_code error;
        const fs::file_status status = fs::symlink_status(path + "/" + entry.name, error);
        entry.directory = fs::is_directory(status);
        entry.link = fs::is_symlink(status);
      } else if (!entry.directory && !entry.link && found->d_type != DT_REG) {
        continue;
      }
      entries.push_back(std::move(entry));
    }
    std::sort(entries.begin(), entries.end(), [](const Entry& a, const Entry& b) { return a.name < b.name; });
    return entries;
  }

  void walk(const std::string& directory) {
    const std::vector<Entry> entries = entriesOf(directory);
    const bool madeByABuild = std::any_of(entries.begin(), entries.end(), [](const Entry& entry) {
      return contains(kBuildMarkers, entry.name);
    });
    // A build inside of its own sources leaves its marks there too.
    if (!directory.empty() && madeByABuild && !holdsSources(entries)) {
      notes_.add("Left out, results of a build", directory);
      return;
    }
    std::vector<std::string> below;
    for (const Entry& entry : entries) {
      const std::string path = directory.empty() ? entry.name : directory + "/" + entry.name;
      if (entry.name.starts_with('.')) continue;
      if (ignored_.contains(path)) {
        if (entry.directory || kindOfFile(path) != FileKind::Other)
          notes_.add("Left out, ignored by git", path);
      } else if (entry.link) {
        visitLink(path, below);
      } else if (entry.directory) {
        visitDirectory(entry.name, path, below);
      } else {
        addFile(path);
      }
    }
    for (const std::string& path : below) walk(path);
  }

  static bool holdsSources(const std::vector<Entry>& entries) {
    return std::any_of(entries.begin(), entries.end(),
                       [](const Entry& entry) { return entry.name == "CMakeLists.txt"; });
  }

  void visitDirectory(const std::string& name, const std::string& path, std::vector<std::string>& below) {
    if (contains(kBuildDirectories, name)) {
      notes_.add("Left out, results of a build", path);
      return;
    }
    struct stat status {};
    const bool known =
        ::stat(hostPath(path).c_str(), &status) == 0 && !seen_.insert({status.st_dev, status.st_ino}).second;
    if (!known) below.push_back(path);
  }

  // A link out of the tree stands for what it leads to. One into the tree, or to what the tree is in, would
  // bring the same files twice.
  void visitLink(const std::string& path, std::vector<std::string>& below) {
    std::error_code error;
    const std::string real = fs::canonical(hostPath(path), error).string();
    if (error) {
      notes_.add("Left out, a link that leads nowhere", path);
      return;
    }
    if (covers(realRoot_, real) || covers(real, realRoot_)) {
      if (fs::is_directory(real, error) || kindOfFile(path) != FileKind::Other)
        notes_.add("Left out, a link to what is in the tree already", path);
    } else if (fs::is_directory(real, error)) {
      visitDirectory(std::string(fileName(path)), path, below);
    } else if (fs::is_regular_file(real, error)) {
      addFile(path);
    }
  }

  static bool covers(const std::string& directory, const std::string& path) {
    return path == directory || directory == "/" || path.starts_with(directory + "/");
  }

  void addFile(const std::string& path) {
    progress_->step();
    TreeFile file{path, kindOfFile(path)};
    if (file.kind != FileKind::Other) {
      if (const auto why = unusableBecause(hostPath(path), file.kind)) {
        notes_.add("Left out, since " + *why, path);
        return;
      }
    }
    tree_.files.push_back(std::move(file));
  }

  SourceTree tree_;
  Notes& notes_;
  std::unordered_set<std::string> ignored_;
  std::unique_ptr<Progress> progress_;
  std::string realRoot_;
  std::set<std::pair<dev_t, ino_t>> seen_;
};

}  // namespace

SourceTree readSourceTree(const std::string& root, Notes& notes, Host& host) {
  return TreeWalk(root, notes, host).run();
}

}  // namespace forgeyard::workbench
