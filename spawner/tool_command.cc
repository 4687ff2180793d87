#include "spawner/tool_command.h"

#include "adapters/common/file_names.h"
#include "platform/registry/registry_keys.h"
#include "spawner/report.h"
#include "spawner/tool_search.h"

namespace forgeyard {
namespace {

FoundTool withDirectory(const std::string& program, const std::string& own, HostSpelling& spelling) {
  FoundTool tool;
  tool.file = spelling.path(program);
  tool.besideSpawner = sameFile(directoryOf(tool.file), own);
  return tool;
}

}  // namespace

FoundTool findCommandTool(const std::string& program, HostSpelling& spelling,
                          const char* const* environment) {
  PathBuffer own;
  ownDirectory(own);
  if (program.find_first_of("/\\") != program.npos) return withDirectory(program, own.text(), spelling);
  PathBuffer file;
  FoundTool tool;
  switch (findTool(program.c_str(), own.text(), environment, file)) {
    case Found::OwnDirectory:
      tool.besideSpawner = true;
      [[fallthrough]];
    case Found::Path:
      tool.file = file.text();
      break;
    case Found::NotExecutable:
      tool.problem = std::string(file.text()) + " is not executable";
      tool.exitCode = CANNOT_EXECUTE;
      break;
    case Found::Nowhere:
      tool.problem = "not found in " + std::string(own.text()) + " or on PATH";
      tool.exitCode = NOT_FOUND;
      break;
  }
  return tool;
}

bool wantsNativePaths(const std::string& file, UserRegistry& registry) {
  return registry.get().value(registry_keys::kNativePaths, baseName(file)).has_value();
}

}  // namespace forgeyard
