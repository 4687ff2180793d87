#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/registry/registry.h"

namespace forgeyard::workbench {

// What a configuration builds for: the beginnings of the command lines of its compiler and assembler. An
// empty one is missing.
struct Target {
  std::string name;
  std::string compiler;
  std::string assembler;

  friend bool operator==(const Target&, const Target&) = default;
};

// Those of the registry, in its order.
std::vector<Target> registeredTargets(const Registry& registry);

// What the tool chains along PATH can serve: "native" for gcc, "mips" for the MIPS cross compiler, and
// further cross compilers by their prefix, in order of the names.
std::vector<Target> detectTargets();

// The GNU linker that the linker component runs, for all targets alike: a prefix of its tool chain or its
// path. Empty if the registry has none, or there is none along PATH.
std::string registeredLinker(const Registry& registry);
std::string detectLinker();
// The program that such a text stands for.
std::string linkerProgram(const std::string& linker);

// Whether builds can use it as the beginning of a tool's command line.
bool isTooLongForATool(const std::string& commandLine);

// Enters the target with the texts that it has; those that it lacks stay as they are.
void enterTarget(Registry& registry, const Target& target);
// False if there is none of that name.
bool removeTarget(Registry& registry, const std::string& name);

struct ToolProgram {
  std::string name;                 // as the command line has it
  bool adapter = false;             // of the installation: stands between a component and the tool behind it
  std::optional<std::string> path;  // where it was found
};

// The programs that the command line of a tool needs: its first word, looked for in the directory of the
// adapters and along PATH, and behind an adapter the tool that it drives.
std::vector<ToolProgram> programsOf(const std::string& commandLine, const std::string& adapterDirectory);

// Those of them that are not there.
std::vector<std::string> missingPrograms(const std::string& commandLine, const std::string& adapterDirectory);

}  // namespace forgeyard::workbench
