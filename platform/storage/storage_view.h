#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <utility>

#include "platform/storage/compound_file/element_name.h"
#include "platform/storage/open_element.h"
#include "platform/storage/storage_tree.h"
#include "platform/storage/structured_storage.h"

namespace forgeyard::compound {

// An open storage: everything that the root and sub-storages have in common. A transacted one works on a
// version of its own, which Commit hands on; any other works on its parent's version itself. An element is
// open once at a time (STG_E_ACCESSDENIED else). Destroying or replacing an element cuts it off, as reverting
// its storage or letting it go does.
class StorageView : public OpenElement {
 public:
  HRESULT CreateStream(const BString& name, std::uint32_t mode, Ref<IStream>* out);
  HRESULT OpenStream(const BString& name, std::uint32_t mode, Ref<IStream>* out);
  HRESULT CreateStorage(const BString& name, std::uint32_t mode, Ref<IStorage>* out);
  HRESULT OpenStorage(const BString& name, std::uint32_t mode, Ref<IStorage>* out);
  HRESULT Commit(std::uint32_t flags);
  HRESULT Revert();
  HRESULT EnumElements(Ref<IEnumSTATSTG>* out);
  HRESULT DestroyElement(const BString& name);
  HRESULT SetClass(const Guid& clsid);
  HRESULT Stat(STATSTG* out);

  // For the open elements, with the session's mutex held. An open element is always there.
  const StreamContent& streamOf(const BString& name) const { return *version().find(name)->stream; }
  StreamContent& changeStreamOf(const BString& name) { return makeOwn(changeVersion().find(name)->stream); }
  const std::shared_ptr<StorageTree>& storageOf(const BString& name) const {
    return version().find(name)->storage;
  }
  std::shared_ptr<StorageTree>& changeStorageOf(const BString& name) {
    return changeVersion().find(name)->storage;
  }
  void forget(const BString& name) noexcept { open_.erase(name); }

  void flush() override;
  void cutOff() noexcept override;

 protected:
  // `own` is the version of a transacted storage; null where it works on its parent's.
  StorageView(std::shared_ptr<Session> session, StorageView* parent, const BString& name, OpenMode mode,
              std::shared_ptr<StorageTree> own)
      : OpenElement(std::move(session), parent, name), mode_(mode), own_(std::move(own)) {}
  ~StorageView() = default;

  // Hands the own version on; called for transacted storages only.
  virtual void commitOwn(std::uint32_t flags) = 0;
  // The version that was last handed on.
  virtual std::shared_ptr<StorageTree> committed() const = 0;

  // run() for a body that gives an object.
  template <class T, class Body>
  HRESULT produce(Ref<T>* out, Body&& body) {
    if (!out) return STG_E_INVALIDPOINTER;
    *out = nullptr;
    return run([&] { *out = body(); });
  }
  void requireWritable() const;

  const OpenMode mode_;
  std::shared_ptr<StorageTree> own_;

 private:
  enum class Kind { Stream, Storage };

  const StorageTree& version() const { return own_ ? *own_ : *std::as_const(*parent_).storageOf(name_); }
  StorageTree& changeVersion() { return makeOwn(own_ ? own_ : parent_->changeStorageOf(name_)); }
  void flushElements();
  void cutOffElements() noexcept;

  OpenMode modeToCreate(std::uint32_t mode, Kind kind) const;
  OpenMode modeToOpen(std::uint32_t mode, Kind kind) const;
  const Element& find(const BString& name) const;
  const Element& findToOpen(const BString& name, Kind kind) const;
  void addElement(Element element, bool replace);
  void removeElement(const BString& name);
  template <class Object>
  Ref<Object> openElement(const BString& name, OpenMode mode);

  std::map<BString, OpenElement*, DirectoryOrder> open_;
};

class SubStorageView final : public StorageView {
 public:
  SubStorageView(std::shared_ptr<Session> session, StorageView* parent, const BString& name, OpenMode mode);

 private:
  void commitOwn(std::uint32_t flags) override;
  std::shared_ptr<StorageTree> committed() const override;
};

}  // namespace forgeyard::compound
