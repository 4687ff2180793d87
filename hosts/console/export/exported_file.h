#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "hosts/console/session/session.h"

namespace forgeyard::console {

// Whether a text that stands in a file was exported, so that it may be replaced without asking.
bool isExportedRules(std::string_view text);
bool isExportedDatabase(std::string_view text);

// Puts the text into the file in one step; "-" is standard output. A file that holds the same text stays as
// it is, with its time. One that was not exported is replaced only if the user agrees. Throws a Failure.
void writeExported(Session& session, const std::string& file, const std::string& text,
                   bool (*isExported)(std::string_view));

}  // namespace forgeyard::console
