// The record that the workspace keeps of each project.

#include "model/project/project.h"
#include "typelib/classes.h"

namespace forgeyard {

namespace {

constexpr std::uint32_t kRecordVersion = 2;

}  // namespace

HRESULT CProject::GetClassID(Guid* out) {
  *out = CLSID_Project;
  return S_OK;
}

HRESULT CProject::IsDirty() {
  return dirty_ ? S_OK : S_FALSE;
}

// The project's own file is written first; if that fails the workspace still keeps the project.
HRESULT CProject::Save(IStream* stream, bool) {
  return guard([&] {
    if (contents_.root) ignore(ProjectSave());
    RecordWriter record(stream);
    record.u32(kRecordVersion);
    record.listedString(workingDirectory_);
    record.i32(contents_.settings.ssVersion);
    record.u8(sourceControl_.localChanges ? 1 : 0);
    record.u8(sourceControl_.control ? 1 : 0);
    record.u8(contents_.root ? 1 : 0);
    contents_.settings.save(record);
    sourceControl_.logon.save(record);
  });
}

// A project whose file can't be loaded stays in the workspace, unloaded.
HRESULT CProject::Load(IStream* stream) {
  return guard([&] {
    if (readRecord(*stream)) ignore(ProjectLoad());
    computeExternalDependencies();
    check(put_Dirty(0));
  });
}

HRESULT CProject::ReadRecord(IStream* stream, StoredWorkspaceProject* out) {
  return guard([&] {
    out->loaded = readRecord(*stream);
    out->name = contents_.settings.name;
    out->workingDirectory = workingDirectory_;
    out->fileName = contents_.settings.fileName;
  });
}

bool CProject::readRecord(IStream& stream) {
  RecordReader record(&stream);
  const std::uint32_t version = record.u32();
  workingDirectory_ = record.listedString();
  const std::int32_t ssVersion = record.i32();
  sourceControl_.localChanges = record.u8() != 0;
  sourceControl_.control = record.u8() != 0;
  const bool loaded = version == 0 || record.u8() != 0;
  contents_.settings = SettingsBlock::load(record);
  contents_.settings.ssVersion = ssVersion;
  if (version > 1) sourceControl_.logon = LogonBlock::load(record);
  return loaded;
}

}  // namespace forgeyard
