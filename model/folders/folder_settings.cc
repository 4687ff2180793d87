#include "model/folders/folder_settings.h"

#include "typelib/classes.h"

namespace forgeyard {

HRESULT CFolderSettings::get_Enabled(std::int32_t* value) {
  *value = enabled_;
  return S_OK;
}

HRESULT CFolderSettings::put_Enabled(std::int32_t value) {
  enabled_ = value;
  return S_OK;
}

HRESULT CFolderSettings::get_Clone(Ref<IFolderSettings>* out) {
  return guard([&] {
    const auto clone = make<CFolderSettings>();
    clone->enabled_ = enabled_;
    clone->stored_ = stored_;
    clone->inFile_ = inFile_;
    *out = clone;
  });
}

void CFolderSettings::describe(RecordFields& fields) {
  fields.unusedVersion(u"version");
  fields.number(u"Enabled", enabled_);
}

HRESULT CFolderSettings::GetClassID(Guid* out) {
  *out = CLSID_FolderSettings;
  return S_OK;
}

HRESULT CFolderSettings::IsDirty() {
  return inFile_ && enabled_ == stored_ ? S_FALSE : S_OK;
}

HRESULT CFolderSettings::Load(IStream* stream) {
  return guard([&] {
    RecordReader record(stream);
    LoadFields fields(record);
    describe(fields);
    stored_ = enabled_;
    inFile_ = true;
  });
}

HRESULT CFolderSettings::Save(IStream* stream, bool clearDirty) {
  return guard([&] {
    RecordWriter record(stream);
    SaveFields fields(record);
    describe(fields);
    if (!clearDirty) return;
    stored_ = enabled_;
    inFile_ = true;
  });
}

}  // namespace forgeyard
