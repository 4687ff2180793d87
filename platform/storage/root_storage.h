#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/storage/compound_file/compound_reader.h"
#include "platform/storage/disk/file_calls.h"
#include "platform/storage/disk/locked_file.h"
#include "platform/storage/storage_object.h"
#include "platform/storage/structured_storage.h"

namespace forgeyard::compound {

// The state of an open root: owns the locked file, and beside its own version the one that the file holds.
// Always transacted.
class RootView final : public StorageView {
 public:
  // `name` is the path as the caller gave it. Where `unwritten` is set the file holds something else than
  // `contents` until the first commit.
  RootView(LockedFile file, const BString& name, OpenMode mode, CompoundContents contents, bool unwritten);

  HRESULT SwitchToFile(const BString& path);
  HRESULT Findings(std::vector<BString>* out);

 private:
  void commitOwn(std::uint32_t flags) override;
  std::shared_ptr<StorageTree> committed() const override { return committed_; }

  LockedFile file_;
  std::shared_ptr<StorageTree> committed_;
  std::vector<std::string> damage_;
  bool unwritten_;
};

class RootStorage final : public StorageObject<RootView, IRootStorage, IDamageReport> {
 public:
  using StorageObject::StorageObject;

  HRESULT SwitchToFile(const BString& path) override { return state().SwitchToFile(path); }
  HRESULT Findings(std::vector<BString>* out) override { return state().Findings(out); }
};

// StgCreateDocfile and StgOpenStorage for a host path. They throw StatusError.
Ref<IStorage> createRoot(FileCalls& calls, const std::string& hostPath, const BString& name,
                         std::uint32_t mode);
Ref<IStorage> openRoot(FileCalls& calls, const std::string& hostPath, const BString& name,
                       std::uint32_t mode);

}  // namespace forgeyard::compound
