#pragma once

#include "model/core/project_core.h"

namespace forgeyard {

// The record that the workspace keeps of each project: where its file is and how it relates to source
// control. Both throw StatusError. Main thread only.

void writeWorkspaceRecord(ProjectCore& project, IStream& stream);
// Returns whether the project was loaded.
bool readWorkspaceRecord(ProjectCore& project, IStream& stream);

}  // namespace forgeyard
