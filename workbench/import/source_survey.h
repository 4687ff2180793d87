#pragma once

#include <set>
#include <string>
#include <vector>

#include "workbench/import/import_request.h"
#include "workbench/import/notes.h"
#include "workbench/import/source_text.h"

namespace forgeyard::workbench {

// The facts of the file; none, with a note, if it can't be read.
SourceFacts readSourceFile(const std::string& path, Notes& notes);

// Gathers from the texts of a project's sources what its link needs to know.
class SourceSurvey {
 public:
  // Of a source that is built.
  void add(const std::string& path, const SourceFacts& facts);

  // The sources that begin a program: those with a function main, or if there is none, those that have one
  // under some condition. With a main in the request, that one; the others are taken out of `files` of the
  // groups, with a note. Throws a Failure if the one in the request isn't among the sources.
  std::vector<std::string> mains(const ImportRequest& request, std::vector<CompileGroup>& groups,
                                 Notes& notes) const;
  // Libraries of the system whose headers are included: "-lm".
  std::string libraries() const;

 private:
  std::vector<std::string> present_;
  std::vector<std::string> conditional_;
  std::set<std::string> system_;
};

}  // namespace forgeyard::workbench
