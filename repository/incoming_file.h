#pragma once

#include <string>
#include <string_view>

#include "platform/files/descriptor.h"

namespace forgeyard::repository {

// New contents of a local file on their way in: kept in memory while they are small, else in a file beside
// the target, which is put into its place in one step. Until then, and after a failure, the local file is
// untouched. Host paths. Errors throw RepositoryError that names the file.
class IncomingFile {
 public:
  explicit IncomingFile(const std::string& target);
  IncomingFile(const IncomingFile&) = delete;
  IncomingFile& operator=(const IncomingFile&) = delete;
  // Removes what was written beside the target.
  ~IncomingFile();

  void append(std::string_view bytes);
  // Drops what has come so far.
  void restart();

  // Throws unless the target may be replaced: it doesn't exist, is read-only, or holds just these bytes.
  void requireReplaceable();
  // Puts the contents into place. A target that holds them already keeps its time, so that nothing is rebuilt
  // for it.
  void replace(bool writable, bool executable);

 private:
  bool targetHasContents() const;
  void spill();
  void writeOut(std::string_view bytes);

  std::string target_;  // links resolved
  std::string beside_;
  std::string memory_;
  Descriptor file_;
};

// Makes an existing local file read-only or writable for those who may read it; a missing file is no error.
void setWritable(const std::string& file, bool writable);

}  // namespace forgeyard::repository
