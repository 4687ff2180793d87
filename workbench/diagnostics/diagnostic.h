#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace forgeyard::workbench {

enum class Severity : std::uint8_t { Note, Warning, Error };

// "note", "warning" or "error".
const char* word(Severity severity);

// What a line that a tool has printed says about the user's files.
struct Diagnostic {
  Severity severity = Severity::Note;
  // Says only that there were errors: it counts where no other of the same tool run was understood.
  bool consequence = false;
  std::string tool;        // the program that speaks, if it names itself and no file; as it does
  std::string file;        // as the tool spells it; empty if it names none
  std::uint32_t line = 0;  // from 1; 0 if none is named
  std::uint32_t column = 0;
  std::string text;  // without place and severity

  // For a line without escape sequences of its own: where its place ends, and what says how bad it is. In
  // units of the line.
  std::size_t placeEnd = 0;
  std::size_t wordBegin = 0;
  std::size_t wordEnd = 0;

  // The place as compilers write it: "FILE:LINE:COLUMN", as far as it is known; the tool without a file.
  std::string place() const;
};

// Nothing for a line that tells no fault. Costs next to nothing for most of those.
std::optional<Diagnostic> recognise(std::u16string_view line);

}  // namespace forgeyard::workbench
