#include <nlohmann/json.hpp>

#include "workbench/export/formats.h"

namespace forgeyard::workbench {

std::string compileCommandsText(const std::string& directory, const std::vector<NativeRun>& compilations) {
  using nlohmann::ordered_json;
  std::string text = "[";
  const char* separator = "\n";
  for (const NativeRun& run : compilations) {
    const ordered_json entry{{"directory", directory},
                             {"file", run.source},
                             {"output", run.object},
                             {"arguments", run.steps.front().arguments}};
    // A name that is no text is shown as it can be.
    text += separator + entry.dump(-1, ' ', false, ordered_json::error_handler_t::replace);
    separator = ",\n";
  }
  return text + "\n]\n";
}

}  // namespace forgeyard::workbench
