#pragma once

namespace forgeyard {

// What to start. All of it is borrowed; the two lists are null-terminated.
struct ToolPlan {
  const char* file;                // the program's host path
  const char* name;                // as the command names it, for messages
  const char* const* arguments;    // the program's name first
  const char* const* environment;  // handed on, and asked where the stop event lives
  int keptDescriptor = -1;         // stays open here, not in the tool; -1: none
};

// Runs the tool to its end and gives the exit code for this process:
//   the tool's own; 128 + n if signal n ended it; 126 or 127, with a line on standard error, if it can't
//   start.
//
// The tool runs in a process group of its own, reads from /dev/null and writes where this process does.
// It ends early, with everything it has started, when the stop event is set, when the process that started
// this one ends, or when this one gets SIGTERM, SIGINT or SIGHUP: SIGTERM first, SIGKILL a second later. If
// this process is killed the kernel kills the tool. When the tool has ended by itself, whatever it leaves
// running is killed: it would keep the output pipe open.
//
// Needs nothing of the C library. To be called once, with no other thread about: it changes signal masks and
// closes every descriptor but the first three and the one that the plan keeps.
int runTool(const ToolPlan& plan) noexcept;

}  // namespace forgeyard
