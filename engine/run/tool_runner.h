#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "engine/run/output_reader.h"
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
  // Hears of the run of a tool: between the two the tab gets the tool's own lines, and no others.
  class Listener {
   public:
    virtual void toolStarted(const BString& command) = 0;
    // The exit code of a tool that has ended by itself.
    virtual void toolEnded(std::optional<std::int32_t> exitCode) = 0;

   protected:
    ~Listener() = default;
  };

  // Reads from the registry where the spawner is.
  ToolRunner();
  ToolRunner(const ToolRunner&) = delete;
  ToolRunner& operator=(const ToolRunner&) = delete;

  // Begins to read the output of the next command. False when no pipe or thread could be had.
  bool OpenOutputReader(IOutputTab* tab);
  // Runs the command that the reader was opened for and ends with that. The working directory is the host's
  // own when the text is empty. A tool that can't be started is none that the listener hears of.
  e_btr ExecuteCommand(IOutputTab* tab, const BString& command, const BString& workingDirectory,
                       Listener& listener);

  // The quoted path of the spawner and a blank.
  const BString& spawnPrefix() const { return spawnPrefix_; }

 private:
  std::unique_ptr<Process> start(const BString& command, const BString& workingDirectory) const;
  e_btr toolEnded(IOutputTab* tab, Process& process, Listener& listener);
  e_btr toolStopped(Process& process, Listener& listener);
  e_btr notStarted(IOutputTab* tab, const BString& command);
  // False when the reader is still at work after two seconds.
  bool awaitReader();

  BString spawnPrefix_;
  std::unique_ptr<OutputReader> reader_;
};

// How a tool's exit code is shown.
std::string exitCodeLine(std::int32_t code);

}  // namespace forgeyard
