#include "hosts/console/services/standard_output.h"

#include <unistd.h>

#include <nlohmann/json.hpp>

#include "hosts/console/base/report.h"
#include "hosts/console/services/json_lines.h"

namespace forgeyard::console {

namespace {

// False when it has to be said elsewhere: standard output is gone.
bool reportOnOutput(ReportKind kind, std::string_view message) {
  LineWriter& out = standardOutput();
  if (kind == ReportKind::Question) return false;
  if (kind == ReportKind::Error) {
    writeObject(out, "error", {{"message", message}});
  } else {
    writeObject(out, "message", {{"text", message}});
  }
  return out.state() == LineWriter::State::Open;
}

// Standard error may be the same terminal.
bool makeRoom(ReportKind, std::string_view) {
  standardOutput().hideFooter();
  return false;
}

}  // namespace

LineWriter& standardOutput() {
  static LineWriter output(STDOUT_FILENO);
  return output;
}

void speakIn(Speech speech) {
  const bool json = speech == Speech::Json;
  standardOutput().setEncoder(json ? lineObject : nullptr);
  setReporter(json ? reportOnOutput : makeRoom);
}

}  // namespace forgeyard::console
