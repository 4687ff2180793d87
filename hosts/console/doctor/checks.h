#pragma once

#include <string>

#include "hosts/console/base/options.h"
#include "hosts/console/doctor/check_results.h"
#include "platform/registry/registry.h"

namespace forgeyard::console {

// Each looks at one part of what builds need, and changes nothing: no file is made, written or locked.

// The registry's file, and what stands in it. The result is what a command would find: the file's content,
// completed in memory as a first start does it on the disk; empty if the file can't be read.
Registry checkRegistry(CheckResults& results);

// This program, the module, the directory of the installation with the spawner and the adapters.
void checkInstallation(const Registry& registry, CheckResults& results);

// The targets with their compilers and assemblers, and the linker. Starts those tools to ask for their
// versions.
void checkTools(const Registry& registry, CheckResults& results);

// Where hosts of one user meet: the runtime directory and who is building.
void checkRuntimeDirectory(CheckResults& results);
// The workspace, and the project that a command would work on: readable, writable, and who has it.
void checkFiles(const Options& options, CheckResults& results);

// Warns of a path that means another file in every directory.
void checkAbsolute(const std::string& subject, const std::string& path, const std::string& variables,
                   CheckResults& results);

// Whether the file can be made: the nearest directory above it that exists can be written.
bool canBeMade(const std::string& file);

}  // namespace forgeyard::console
