#pragma once

#include "platform/com/object.h"
#include "platform/storage/records/persist.h"
#include "platform/storage/records/record_fields.h"
#include "typelib/folder.h"

namespace forgeyard {

// A folder's settings in one configuration. Owned by the folder; main thread only.
class CFolderSettings final : public ComObject<Dual<IFolderSettings>, IPersistStream, IRecord> {
 public:
  // IFolderSettings
  HRESULT get_Enabled(std::int32_t* value) override;
  HRESULT put_Enabled(std::int32_t value) override;
  HRESULT get_Clone(Ref<IFolderSettings>* out) override;

  // IPersistStream
  HRESULT GetClassID(Guid* out) override;
  HRESULT IsDirty() override;
  HRESULT Load(IStream* stream) override;
  HRESULT Save(IStream* stream, bool clearDirty) override;

  // IRecord
  void describe(RecordFields& fields) override;

 private:
  std::int32_t enabled_ = 1;
  std::int32_t stored_ = 1;  // what the file holds
  bool inFile_ = false;
};

}  // namespace forgeyard
