#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/storage/compound_reader.h"
#include "platform/storage/file_calls.h"
#include "platform/storage/locked_file.h"
#include "platform/storage/storage_object.h"
#include "platform/storage/structured_storage.h"

namespace forgeyard::compound {

// The root of a project file: owns the locked file, and beside its version the one that the file holds.
// Always transacted.
class RootStorage final : public ComObject<StorageObject, IRootStorage, IDamageReport> {
 public:
  // `name` is the path as the caller gave it. Where `unwritten` is set the file holds something else than
  // `contents` until the first commit.
  RootStorage(LockedFile file, const BString& name, OpenMode mode, CompoundContents contents, bool unwritten);

  HRESULT SwitchToFile(const BString& path) override;
  HRESULT Findings(std::vector<BString>* out) override;

 private:
  ~RootStorage() override { close(); }

  void commitOwn(std::uint32_t flags) override;
  std::shared_ptr<StorageTree> committed() const override { return committed_; }

  LockedFile file_;
  std::shared_ptr<StorageTree> committed_;
  std::vector<std::string> damage_;
  bool unwritten_;
};

// StgCreateDocfile and StgOpenStorage for a host path. They throw StatusError.
Ref<IStorage> createRoot(FileCalls& calls, const std::string& hostPath, const BString& name,
                         std::uint32_t mode);
Ref<IStorage> openRoot(FileCalls& calls, const std::string& hostPath, const BString& name,
                       std::uint32_t mode);

}  // namespace forgeyard::compound
