#pragma once

#include <sys/stat.h>

#include <optional>
#include <string>
#include <string_view>

#include "platform/storage/disk/host_file.h"

namespace forgeyard::compound {

// Where a file is or will be: an open directory and a name in it. A value. It stays right when the process
// changes its directory or somebody renames a directory above. Failures throw StatusError.
class FilePlace {
 public:
  // Follows links in the last component too, so that what replaces the file replaces the link's target and
  // the link stays. The file need not exist; its directory must.
  static FilePlace resolve(FileCalls& calls, const std::string& path);

  FileCalls& calls() const noexcept { return directory_->calls(); }
  int directory() const noexcept { return directory_->descriptor(); }
  const std::string& name() const noexcept { return name_; }
  // The name under which new contents of the file lie for the moment before they take its place. Only the
  // holder of the file's lock uses it, so whatever a killed process left there is free to be removed.
  std::string savingName() const;

  SharedFile open(int flags) const;
  // A file in the directory that has no name; null where the file system has no such files.
  SharedFile openUnnamed() const;

  std::optional<struct stat> status() const;
  // Whether the place still names that very file.
  bool holds(const HostFile& file) const;

  // Makes a change of names in the directory durable.
  void syncDirectory() const;

 private:
  FilePlace(SharedFile directory, std::string name)
      : directory_(std::move(directory)), name_(std::move(name)) {}

  SharedFile directory_;
  std::string name_;
};

}  // namespace forgeyard::compound
