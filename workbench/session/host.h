#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/com/object.h"
#include "platform/text/bstring.h"
#include "workbench/session/command_host.h"

namespace forgeyard::workbench {

// Hears how far a long job is, until its end.
class Progress {
 public:
  Progress() = default;
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;
  virtual ~Progress() = default;

  // One more of what the job counts is done. Called for thousands of them, so it has to be cheap.
  virtual void step() = 0;
};

// The program around the workbench, with its user: a terminal or a window. The workbench says nothing to the
// user but through this. Main thread only.
class Host {
 public:
  // Something that the user has to know: a sentence or more, without the program's name.
  virtual void tell(const std::string& message) = 0;
  // Something that is only good to know.
  virtual void note(const std::string& message) = 0;
  // Asks a question that can be answered with yes or no, in a dialog of that title.
  virtual bool agrees(const std::string& title, const std::string& question) = 0;
  // A job begins that counts "files read" for example.
  virtual std::unique_ptr<Progress> begin(const std::string& counted) = 0;

  // The next dialog of the module gets these texts in its edit boxes, in order, and is answered with OK.
  virtual void fillNextDialog(std::vector<BString> texts) = 0;
  // What the module's objects get as their site: the look-up of the host's services. Borrowed.
  virtual IUnknown* site() = 0;
  virtual CommandHost& commands() const = 0;
  // What the module's objects find as the build tool. Null, which lets go of it, before the end.
  virtual void setBuildTool(IUnknown* tool) = 0;

 protected:
  ~Host() = default;
};

}  // namespace forgeyard::workbench
