#pragma once

#include "platform/registry/registry.h"
#include "workbench/session/module.h"

namespace forgeyard::workbench {

// Brings the user's registry into a state that a build can start from, and touches the file only for that:
// enters the module's classes where they are missing or their module has gone, the installation's directory
// where it is missing or has no spawner any more, and, when there is no list of targets at all, those whose
// compilers stand on the PATH. Throws a Failure when the file can't be written.
void prepareRegistry(Registry& registry, const Module& module);

// The part of that which needs no module, in memory alone: home, targets and linker. Throws a Failure for an
// installation whose path can't be spelled.
void enterMissing(Registry& registry);

// The directory of the spawner and the adapters that the registry names: a host path; empty if there is none.
std::string adapterDirectory(const Registry& registry);

}  // namespace forgeyard::workbench
