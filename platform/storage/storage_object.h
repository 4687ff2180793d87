#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <utility>

#include "platform/com/object.h"
#include "platform/storage/element_name.h"
#include "platform/storage/open_element.h"
#include "platform/storage/storage_tree.h"
#include "platform/storage/structured_storage.h"

namespace forgeyard::compound {

// An open storage: everything that the root and sub-storages have in common. A transacted one works on a
// version of its own, which Commit hands on; any other works on its parent's version itself. An element is
// open once at a time (STG_E_ACCESSDENIED else). Destroying or replacing an element cuts it off, as reverting
// its storage or letting it go does.
class StorageObject : public IStorage, public OpenElement {
 public:
  using Implements = TypeList<IStorage>;

  HRESULT CreateStream(const BString& name, std::uint32_t mode, Ref<IStream>* out) override;
  HRESULT OpenStream(const BString& name, std::uint32_t mode, Ref<IStream>* out) override;
  HRESULT CreateStorage(const BString& name, std::uint32_t mode, Ref<IStorage>* out) override;
  HRESULT OpenStorage(const BString& name, std::uint32_t mode, Ref<IStorage>* out) override;
  HRESULT Commit(std::uint32_t flags) override;
  HRESULT Revert() override;
  HRESULT EnumElements(Ref<IEnumSTATSTG>* out) override;
  HRESULT DestroyElement(const BString& name) override;
  HRESULT SetClass(const Guid& clsid) override;
  HRESULT Stat(STATSTG* out) override;

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
  StorageObject() = default;
  ~StorageObject() = default;

  // Begins the life of the object: `own` is its version, or null where it works on the parent's.
  void start(OpenMode mode, std::shared_ptr<StorageTree> own) {
    mode_ = mode;
    own_ = std::move(own);
  }
  // Ends it; the destructors of the classes call it.
  void close() noexcept;

  // Hands the own version on; called for transacted storages only.
  virtual void commitOwn(std::uint32_t flags) = 0;
  // The version that was last handed on.
  virtual std::shared_ptr<StorageTree> committed() const = 0;

  // Runs the body of an operation under the session's mutex, unless this is cut off.
  template <class Body>
  HRESULT run(Body&& body) {
    return guard([&] {
      const std::lock_guard lock(session_->mutex);
      requireAlive();
      return body();
    });
  }
  // The same for a body that gives an object.
  template <class T, class Body>
  HRESULT produce(Ref<T>* out, Body&& body) {
    if (!out) return STG_E_INVALIDPOINTER;
    *out = nullptr;
    return run([&] { *out = body(); });
  }
  void requireWritable() const;

  OpenMode mode_;
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
  Ref<IStream> openStream(const BString& name, OpenMode mode);
  Ref<IStorage> openStorage(const BString& name, OpenMode mode);

  std::map<BString, OpenElement*, DirectoryOrder> open_;
};

class SubStorage final : public ComObject<StorageObject> {
 public:
  SubStorage(std::shared_ptr<Session> session, StorageObject* parent, const BString& name, OpenMode mode);

 private:
  ~SubStorage() override { close(); }

  void commitOwn(std::uint32_t flags) override;
  std::shared_ptr<StorageTree> committed() const override;
};

}  // namespace forgeyard::compound
