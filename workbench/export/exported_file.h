#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "workbench/session/host.h"

namespace forgeyard::workbench {

// Whether a text that stands in a file was exported, so that it may be replaced without asking.
bool isExportedRules(std::string_view text);
bool isExportedDatabase(std::string_view text);

// Puts the text into the file in one step. A file that holds the same text stays as it is, with its time. One
// that was not exported is replaced only if the user agrees. Throws a Failure.
void writeExported(Host& host, const std::string& file, const std::string& text,
                   bool (*isExported)(std::string_view));

}  // namespace forgeyard::workbench
