#include "workbench/export/exported_file.h"

#include <sys/stat.h>

#include <filesystem>
#include <optional>

#include "adapters/common/diagnostics.h"
#include "adapters/common/file_names.h"
#include "adapters/common/whole_file.h"
#include "workbench/base/failure.h"
#include "workbench/export/formats.h"

namespace forgeyard::workbench {

bool isExportedRules(std::string_view text) {
  return text.starts_with(kExportMark);
}

// A database has no place for a mark; its layout is one.
bool isExportedDatabase(std::string_view text) {
  if (!text.starts_with("[\n") || !text.ends_with("\n]\n")) return false;
  text.remove_prefix(2);
  text.remove_suffix(2);
  while (!text.empty()) {
    const std::string_view line = text.substr(0, text.find('\n'));
    if (!line.starts_with("{\"directory\":\"") || line.find("\"arguments\":[") == line.npos) return false;
    text.remove_prefix(line.size() + 1);
  }
  return true;
}

void writeExported(Host& host, const std::string& file, const std::string& text,
                   bool (*isExported)(std::string_view)) {
  struct stat status {};
  if (::lstat(file.c_str(), &status) == 0) {
    const std::optional<std::string> old =
        S_ISREG(status.st_mode) ? readWholeFile(file) : std::optional<std::string>();
    if (old == text) return;
    if ((!old || !isExported(*old)) && !host.agrees("Export", file + " was not made by export. Replace it?"))
      throw Failure(file + " was left as it is.");
  }
  if (const int error = replaceFile(file, text); error != 0)
    throw Failure(file + " can't be written: " + errorWords(error) + ".");
}

}  // namespace forgeyard::workbench
