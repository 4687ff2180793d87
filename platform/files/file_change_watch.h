#pragma once

#include <sys/inotify.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "platform/files/descriptor.h"
#include "platform/text/bstring.h"

namespace forgeyard {

// Tells which of the host's files may have changed since they were looked at, so that the others need not be
// looked at again. It errs on one side only: where a change could go unseen a file can't be watched, and
// where the answer is in doubt everything may have changed.
//
// Watched are the file itself, under whatever name it is written, and every directory and link on the way
// from the root, since a renamed directory changes all below it. What a process has done before it ended is
// known when it has ended; only what it writes through a mapping shows no earlier than its end. Owns its
// descriptors. For one thread.
class FileChangeWatch {
 public:
  ~FileChangeWatch();
  // What can change by itself: a file, or all the missing names of a directory. Numbered from 0.
  using Subject = std::uint32_t;
  struct Place {
    Subject subject;
    bool exists;  // whether the subject is a file of that name, or the lack of one
  };

  // Half of the watches that the system grants a user, so that other programs keep some.
  static std::size_t allowance();

  // Null if the system refuses.
  static std::unique_ptr<FileChangeWatch> begin(std::size_t maximumWatches = allowance());

  // Watches what lies at a path from now on: to be called before the path is looked at. Nothing if changes
  // could go unseen; what a link, a directory or a file of several names holds has to be told by the look.
  std::optional<Place> watch(const BString& path);

  // Puts into `changed` what may have changed since the last call. False: everything may have, and this watch
  // is of no use any more.
  bool collect(std::vector<Subject>& changed);

  // Whether a limit of the system or `maximumWatches` ended it: another one would end likewise.
  bool exhausted() const noexcept { return exhausted_; }

 private:
  struct Directory {
    std::string path;  // without links; empty for the root
    Directory* parent = nullptr;
    Subject missing = 0;
    std::unordered_map<std::string, Directory*> children;  // those on the way to files; null: not watched
    std::unordered_set<std::string> steps;                 // the names of children, folded
    std::unordered_map<std::string, Subject> files;        // by folded name, since some disks ignore case
  };
  // Whom the events of a watch descriptor concern.
  struct Owner {
    Directory* directory = nullptr;
    std::optional<Subject> file;
  };

  FileChangeWatch(Descriptor events, Descriptor mounts, std::size_t maximumWatches);

  Directory* directoryAt(std::string_view hostPath);
  Directory* descend(Directory* from, std::string_view path, int links);
  Directory* child(Directory& parent, std::string_view name, int links);
  Directory* enter(Directory& parent, const std::string& path, int links);
  Directory* follow(Directory& parent, const std::string& link, int links);
  Directory* watchDirectory(Directory* parent, const std::string& path);
  std::optional<Subject> watchFile(Directory& directory, std::string_view name);
  Subject subjectFor(Directory& directory, std::string_view name);
  int addWatch(const std::string& path, std::uint32_t events);
  Owner& owner(int descriptor);

  bool mountsChanged() const;
  bool apply(const inotify_event& event, std::vector<Subject>& changed);
  static bool applyTo(const Directory& directory, const inotify_event& event, std::vector<Subject>& changed);

  Descriptor events_;
  Descriptor mounts_;  // becomes exceptional when anything is mounted or unmounted, which shows no event
  std::size_t maximumWatches_;
  std::size_t watches_ = 0;
  std::size_t drives_;  // the table of drives that paths were resolved with
  bool exhausted_ = false;
  Subject subjects_ = 0;
  std::vector<std::unique_ptr<Directory>> directories_;
  Directory* root_ = nullptr;
  std::unordered_map<std::string, Directory*> byPath_;  // as spelled
  std::vector<Owner> owners_;                           // by watch descriptor, which the system counts up
  std::vector<Subject> displaced_;                      // lost their descriptor to another name of the file
};

}  // namespace forgeyard
