#pragma once

#include <string>
#include <vector>

#include "typelib/records.h"
#include "workbench/project/project_file.h"

namespace forgeyard::workbench {

// Both need a session. The records of a project file of any name, without loading or changing it. Throws a
// Failure.
ProjectRecords readRecords(const ProjectFile& file);
// Makes a project file of records that were read from `source`, or replaces one: the file stands whole, or as
// it was. Throws a Failure.
void writeRecords(const ProjectFile& file, const RecordNode& records, const std::string& source,
                  bool replace);

// What of the file can't be read, and what became of it, a sentence each.
std::vector<std::string> damageIn(const std::string& name, const ProjectRecords& records);

// The whole of a file. Throws a Failure.
std::string readWhole(const std::string& path);

// A project file of its own that is gone at the end.
class TemporaryProject {
 public:
  // Throws a Failure.
  TemporaryProject();
  ~TemporaryProject();
  TemporaryProject(const TemporaryProject&) = delete;
  TemporaryProject& operator=(const TemporaryProject&) = delete;

  const std::string& path() const { return path_; }
  void fill(const std::string& bytes) const;

 private:
  std::string directory_;
  std::string path_;
};

}  // namespace forgeyard::workbench
