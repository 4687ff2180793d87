#include "spawner/tool_search.h"

#include "spawner/kernel.h"
#include "spawner/stop_event.h"

namespace forgeyard {
namespace {

enum class Candidate { Missing, NotExecutable, Program };

Candidate look(const PathBuffer& file) noexcept {
  struct stat status {};
  if (file.wasCut() || kernel::stat(file.text(), &status) != 0) return Candidate::Missing;
  if (!S_ISREG(status.st_mode)) return Candidate::Missing;
  return status.st_mode & (S_IXUSR | S_IXGRP | S_IXOTH) ? Candidate::Program : Candidate::NotExecutable;
}

void join(PathBuffer& file, const char* directory, unsigned long length, const char* name) noexcept {
  file.clear();
  file.add(directory, length);
  if (length != 0) file.add('/');
  file.add(name);
}

// `file` keeps the first one that is there but is no program, for the message.
class Search {
 public:
  Search(const char* name, PathBuffer& file) noexcept : name_(name), file_(file) {}

  bool finds(const char* directory, unsigned long length) noexcept {
    PathBuffer& target = notExecutable_ ? spare_ : file_;
    join(target, directory, length, name_);
    const Candidate candidate = look(target);
    if (candidate == Candidate::NotExecutable) notExecutable_ = true;
    if (candidate != Candidate::Program) return false;
    if (&target != &file_) join(file_, directory, length, name_);
    return true;
  }
  bool sawNotExecutable() const noexcept { return notExecutable_; }

 private:
  const char* name_;
  PathBuffer& file_;
  PathBuffer spare_;
  bool notExecutable_ = false;
};

}  // namespace

void ownDirectory(PathBuffer& directory) noexcept {
  char target[4096];
  const long length = kernel::call(SYS_readlinkat, AT_FDCWD, "/proc/self/exe", target, sizeof target);
  long end = length;
  while (end > 0 && target[end - 1] != '/') --end;
  directory.clear();
  if (end > 0) directory.add(target, static_cast<unsigned long>(end == 1 ? 1 : end - 1));
}

Found findTool(const char* name, const char* ownDirectory, const char* const* environment,
               PathBuffer& file) noexcept {
  Search search(name, file);
  if (*ownDirectory && search.finds(ownDirectory, textLength(ownDirectory))) return Found::OwnDirectory;
  const char* path = environmentValue(environment, "PATH");
  if (!path) path = "/usr/bin:/bin";
  for (;; ++path) {
    unsigned long length = 0;
    while (path[length] && path[length] != ':') ++length;
    if (search.finds(path, length)) return Found::Path;
    path += length;
    if (!*path) break;
  }
  return search.sawNotExecutable() ? Found::NotExecutable : Found::Nowhere;
}

}  // namespace forgeyard
