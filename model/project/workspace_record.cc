#include "model/project/workspace_record.h"

namespace forgeyard {

namespace {

constexpr std::uint32_t kRecordVersion = 2;

}  // namespace

void writeWorkspaceRecord(ProjectCore& project, IStream& stream) {
  ProjectContents& contents = project.contents();
  const SourceControlState& sourceControl = project.sourceControl();
  RecordWriter record(&stream);
  record.u32(kRecordVersion);
  record.listedString(contents.workingDirectory);
  record.i32(contents.settings.ssVersion);
  record.u8(sourceControl.localChanges ? 1 : 0);
  record.u8(sourceControl.control ? 1 : 0);
  record.u8(contents.root ? 1 : 0);
  contents.settings.save(record);
  sourceControl.logon.save(record);
}

bool readWorkspaceRecord(ProjectCore& project, IStream& stream) {
  ProjectContents& contents = project.contents();
  SourceControlState& sourceControl = project.sourceControl();
  RecordReader record(&stream);
  const std::uint32_t version = record.u32();
  contents.workingDirectory = record.listedString();
  const std::int32_t ssVersion = record.i32();
  sourceControl.localChanges = record.u8() != 0;
  sourceControl.control = record.u8() != 0;
  const bool loaded = version == 0 || record.u8() != 0;
  contents.settings = SettingsBlock::load(record);
  contents.settings.ssVersion = ssVersion;
  if (version > 1) sourceControl.logon = LogonBlock::load(record);
  return loaded;
}

}  // namespace forgeyard
