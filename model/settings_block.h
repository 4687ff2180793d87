#pragma once

#include "platform/storage/records.h"
#include "typelib/records.h"

namespace forgeyard {

// What the project file and the workspace both store about a project.
struct SettingsBlock : StoredProjectSettings {
  // Throw StatusError.
  static SettingsBlock load(RecordReader& record);
  void save(RecordWriter& record) const;
};

// The logon to the source control database, as the workspace stores it.
struct LogonBlock {
  BString userName;
  BString password;

  static LogonBlock load(RecordReader& record);
  void save(RecordWriter& record) const;
};

}  // namespace forgeyard
