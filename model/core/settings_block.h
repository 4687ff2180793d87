#pragma once

#include "platform/storage/records/record_fields.h"

namespace forgeyard {

// What the project file and the workspace both store about a project.
struct SettingsBlock {
  BString name;
  BString fileName;
  BString ssRoot;
  std::int32_t nextComponentId = 0;
  BString ssDatabasePath;
  std::int32_t ssVersion = 0;

  void describe(RecordFields& fields);
  // Throw StatusError.
  static SettingsBlock load(RecordReader& record);
  void save(RecordWriter& record);
};

// The logon to the source control database, as the workspace stores it.
struct LogonBlock {
  BString userName;
  BString password;

  static LogonBlock load(RecordReader& record);
  void save(RecordWriter& record) const;
};

}  // namespace forgeyard
