#pragma once

#include "model/core/project_core.h"

namespace forgeyard {

// Writes the streams of a project file's root. Nothing reaches the disk before the root is committed. Throws
// StatusError. Lives for one save.
class ProjectWriter {
 public:
  ProjectWriter(ProjectCore& project, IStorage& root) : project_(project), root_(root) {}

  void writeStreams();

 private:
  Ref<IStream> stream(const char16_t* name);
  void writeConfigurations(IStream& stream);

  ProjectCore& project_;
  IStorage& root_;
};

}  // namespace forgeyard
