#pragma once

#include <memory>

#include "platform/threads/marshalled_ref.h"
#include "platform/threads/pipe.h"
#include "platform/threads/thread.h"
#include "typelib/output.h"

namespace forgeyard {

// Reads what one tool run prints and passes complete lines to an output tab on the main thread, as soon as
// they end; several that are there at once go in one call. Carriage returns are dropped, and so is a last
// line without a line feed. Ends by itself when nobody holds the pipe's write end any more.
class OutputReader {
 public:
  // Main thread. Throws when no pipe or thread can be had.
  explicit OutputReader(IOutputTab* tab);
  // Leaves a reading thread that has not ended to end by itself.
  ~OutputReader();
  OutputReader(const OutputReader&) = delete;
  OutputReader& operator=(const OutputReader&) = delete;

  // For the tool's standard output and error.
  int writeEnd() const { return writeEnd_.get(); }
  void closeWriteEnd() { writeEnd_.reset(); }
  // Main thread: no line reaches the tab from now on.
  void stopShowing();
  // Ends the thread without waiting for the pipe.
  void cancel();
  // Signalled when the thread has ended.
  const Waitable& ended() const { return *thread_; }

 private:
  struct Shared;

  Descriptor writeEnd_;
  std::shared_ptr<Shared> shared_;
  std::unique_ptr<Thread> thread_;
};

}  // namespace forgeyard
