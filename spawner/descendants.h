#pragma once

#include <sys/types.h>

// The processes that a tool has started and those that they have started. This process adopts each of them
// whose parent ends, so that ending all children again and again ends every one. `tool` is the first child.
namespace forgeyard {

// Whether the child has ended, without reaping it.
bool hasEnded(pid_t child) noexcept;

// Reaps what has ended but for the tool, which stays; true if the tool has ended.
bool reapOthers(pid_t tool) noexcept;

// Reaps what has ended, the tool's status into `toolStatus`; true if no child is left.
bool reapAll(pid_t tool, int& toolStatus) noexcept;

// Whether a child other than the tool is alive.
bool othersAlive(pid_t tool) noexcept;

// Sends a signal to every child, or to those that are not in `group`.
void signalChildren(int signal) noexcept;
void signalStrays(pid_t group, int signal) noexcept;

// Waits until a signal comes to the descriptor (a child has ended, most likely) or the time is over, and
// takes it. Several children may have ended.
void waitForChild(int signals, long milliseconds) noexcept;

}  // namespace forgeyard
