#include "hosts/console/services/quiet_filter.h"

#include <fcntl.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "hosts/console/services/output_window.h"
#include "platform/files/descriptor.h"
#include "tests/platform/support/temporary_directory.h"

namespace forgeyard::console {
namespace {

using Lines = std::vector<std::u16string>;

// What a quiet output window leaves of these lines.
std::string quietly(const Lines& lines) {
  const TemporaryDirectory directory;
  const std::string file = directory.put("out");
  const Descriptor out(::open(file.c_str(), O_WRONLY | O_CLOEXEC));
  LineWriter writer(out.get());
  const auto window = make<OutputWindow>(writer, true);
  for (const std::u16string& line : lines) check(window->AddLine(u"Build", line));
  writer.flush();
  return contentOf(file);
}

const Lines kBegin{u"-----", u"Project: p - Configuration: Default", u"-----", u"Component \"cc\""};
const Lines kEnd{u"-----", u"Project: p - Configuration: Default", u"Final result: OK", u"-----"};

Lines build(const Lines& middle, const Lines& end = kEnd) {
  Lines lines = kBegin;
  lines.insert(lines.end(), middle.begin(), middle.end());
  lines.insert(lines.end(), end.begin(), end.end());
  return lines;
}

TEST(QuietFilter, LeavesWhatToolsSayAndWhatFails) {
  const struct {
    const char* name;
    Lines lines;
    const char* shown;
  } table[] = {
      {"nothing to do", build({u"All outputs up to date."}), ""},
      {"no inputs", build({u"No inputs to build.", u"All outputs up to date."}), ""},
      {"silent tools",
       build({u"", u"gcc a.c", u"Exit Code: 0 (0x0).", u"", u"gcc b.c", u"Exit Code: 0 (0x0).",
              u"Component \"cc\" result: OK"}),
       ""},
      {"a warning brings its command along",
       build({u"", u"gcc a.c", u"Exit Code: 0 (0x0).", u"", u"gcc b.c", u"b.c:1: warning", u"  note",
              u"Exit Code: 0 (0x0).", u"Component \"cc\" result: OK"}),
       "gcc b.c\nb.c:1: warning\n  note\n"},
      {"a silent failure",
       build({u"", u"gcc a.c", u"Exit Code: 1 (0x1).", u"Component \"cc\" result: ERROR"},
             {u"-----", u"Final result: ERRORS", u"-----"}),
       "gcc a.c\nExit Code: 1 (0x1).\nComponent \"cc\" result: ERROR\nFinal result: ERRORS\n"},
      {"a tool may print what looks like the host's lines",
       build({u"", u"tool", u"", u"-----", u"Final result: OK", u"Component \"x\"", u"Exit Code: 0 (0x0)."}),
       "tool\n\n-----\nFinal result: OK\nComponent \"x\"\n"},
      {"a stop in a tool",
       build({u"", u"tool", u"half", u"Component \"cc\" result: STOPPED"},
             {u"-----", u"Final result: STOPPED"}),
       "tool\nhalf\nComponent \"cc\" result: STOPPED\nFinal result: STOPPED\n"},
      {"a command that could not start",
       build({u"Failed to invoke command line: x"}, {u"Final result: ERRORS"}),
       "Failed to invoke command line: x\nFinal result: ERRORS\n"},
      {"clean", {u"Component \"cc\"", u"Deleting \\a.obj", u"-----", u"Final result: OK", u"-----"}, ""},
  };
  for (const auto& row : table) EXPECT_EQ(quietly(row.lines), row.shown) << row.name;
}

}  // namespace
}  // namespace forgeyard::console
