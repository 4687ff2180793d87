#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace forgeyard::console {

enum class LineEnd { Closed, Open };

// One message to the user on standard error, behind the program's name; further lines of it are indented.
void complain(std::string_view message, LineEnd end = LineEnd::Closed);
// Each of them. Whether there was any.
bool complainOfAll(const std::vector<std::string>& messages);
// The same for what ends the command.
void complainOfFailure(std::string_view message);

enum class ReportKind : std::uint8_t { Message, Error, Question };

// Is asked first with each message, until the next call; null ends that. Answers false for one that has
// to go to standard error after all.
using Reporter = bool (*)(ReportKind kind, std::string_view message);
void setReporter(Reporter reporter);

}  // namespace forgeyard::console
