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
  if (kind == ReportKind::Error) {
    writeObject(out, "error", {{"message", message}});
  } else {
    writeObject(out, "message", {{"text", message}});
  }
  return out.state() == LineWriter::State::Open;
}

}  // namespace

LineWriter& standardOutput() {
  static LineWriter output(STDOUT_FILENO);
  return output;
}

void speakJson() {
  standardOutput().setEncoder(lineObject);
  setReporter(reportOnOutput);
}

}  // namespace forgeyard::console
