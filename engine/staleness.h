#pragma once

#include "platform/files/file_system.h"
#include "platform/text/bstring.h"

namespace forgeyard {

// Why a file or component has to be built, made where the decision falls: the build acts on it and a user can
// be told.
struct Staleness {
  enum class Why {
    UpToDate,
    TaskRunsAll,          // rebuild and compile always run
    SettingsChanged,      // the settings have changed since they last built cleanly
    NoOutputs,            // nothing to compare with
    OutputMissing,        // `output`
    OutputUnreadable,     // `output`, or the marker that stands for it, has no time to compare with
    DependencyMissing,    // `cause`
    DependencyNewer,      // `cause` is later than `output`
    DependenciesUnknown,  // what the tool reads beside the file can't be kept
  };
  Why why = Why::UpToDate;
  BString output;
  BString cause;
  FileTime outputTime = 0;
  FileTime causeTime = 0;

  explicit operator bool() const { return why != Why::UpToDate; }
};

}  // namespace forgeyard
