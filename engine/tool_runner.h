#pragma once

#include <memory>
#include <string>

#include "engine/output_reader.h"
#include "platform/text/bstring.h"
#include "platform/threads/process.h"
#include "typelib/builder.h"
#include "typelib/output.h"

namespace forgeyard {

// Runs one command line after another as child processes of the spawner and passes what they print to an
// output tab, while the main thread serves calls. It kills nothing: on a stop the spawner ends its tool. Main
// thread only.
class ToolRunner {
 public:
  // Reads from the registry where the spawner is.
  ToolRunner();
  ToolRunner(const ToolRunner&) = delete;
  ToolRunner& operator=(const ToolRunner&) = delete;

  // Begins to read the output of the next command. False when no pipe or thread could be had.
  bool OpenOutputReader(IOutputTab* tab);
  // Runs the command that the reader was opened for and ends with that. The working directory is the host's
  // own when the text is empty.
  e_btr ExecuteCommand(IOutputTab* tab, const BString& command, const BString& workingDirectory);

  // The quoted path of the spawner and a blank.
  const BString& spawnPrefix() const { return spawnPrefix_; }

 private:
  std::unique_ptr<Process> start(const BString& command, const BString& workingDirectory) const;
  e_btr toolEnded(IOutputTab* tab, Process& process);
  e_btr toolStopped(Process& process);
  e_btr notStarted(IOutputTab* tab, const BString& command);
  // False when the reader is still at work after two seconds.
  bool awaitReader();

  BString spawnPrefix_;
  std::unique_ptr<OutputReader> reader_;
};

// How a tool's exit code is shown.
std::string exitCodeLine(std::int32_t code);

}  // namespace forgeyard
