#include "platform/storage/storage_object.h"

#include <vector>

#include "platform/com/enumerators.h"
#include "platform/storage/stream_object.h"

namespace forgeyard::compound {
namespace {

STATSTG describe(const Element& element) {
  STATSTG stat;
  stat.name = element.name;
  stat.type = element.stream ? StgType::Stream : StgType::Storage;
  if (element.stream) stat.size = element.stream->size();
  if (element.storage) stat.clsid = element.storage->clsid;
  return stat;
}

}  // namespace

HRESULT StorageObject::CreateStream(const BString& name, std::uint32_t mode, Ref<IStream>* out) {
  return produce(out, [&] {
    const OpenMode wanted = modeToCreate(mode, Kind::Stream);
    addElement({.name = name, .stream = std::make_shared<StreamContent>(), .storage = nullptr},
               wanted.create);
    return openStream(name, wanted);
  });
}

HRESULT StorageObject::OpenStream(const BString& name, std::uint32_t mode, Ref<IStream>* out) {
  return produce(out, [&] {
    const OpenMode wanted = modeToOpen(mode, Kind::Stream);
    return openStream(findToOpen(name, Kind::Stream).name, wanted);
  });
}

HRESULT StorageObject::CreateStorage(const BString& name, std::uint32_t mode, Ref<IStorage>* out) {
  return produce(out, [&] {
    const OpenMode wanted = modeToCreate(mode, Kind::Storage);
    addElement({.name = name, .stream = nullptr, .storage = std::make_shared<StorageTree>()}, wanted.create);
    return openStorage(name, wanted);
  });
}

HRESULT StorageObject::OpenStorage(const BString& name, std::uint32_t mode, Ref<IStorage>* out) {
  return produce(out, [&] {
    const OpenMode wanted = modeToOpen(mode, Kind::Storage);
    return openStorage(findToOpen(name, Kind::Storage).name, wanted);
  });
}

HRESULT StorageObject::Commit(std::uint32_t flags) {
  return run([&] {
    requireWritable();
    flushElements();
    check(std::exchange(session_->lost, S_OK));
    if (own_) commitOwn(flags);
  });
}

HRESULT StorageObject::Revert() {
  return run([&] {
    if (!own_) return;
    cutOffElements();
    own_ = committed();
  });
}

HRESULT StorageObject::EnumElements(Ref<IEnumSTATSTG>* out) {
  return produce(out, [&] {
    flushElements();
    std::vector<STATSTG> elements;
    elements.reserve(version().elements.size());
    for (const Element& element : version().elements) elements.push_back(describe(element));
    return Ref<IEnumSTATSTG>(make<ListEnumerator<IEnumSTATSTG>>(std::move(elements)));
  });
}

HRESULT StorageObject::DestroyElement(const BString& name) {
  return run([&] {
    requireWritable();
    find(name);
    removeElement(name);
  });
}

HRESULT StorageObject::SetClass(const Guid& clsid) {
  return run([&] {
    requireWritable();
    if (version().clsid != clsid) changeVersion().clsid = clsid;
  });
}

HRESULT StorageObject::Stat(STATSTG* out) {
  if (!out) return STG_E_INVALIDPOINTER;
  return run([&] { *out = {.name = name_, .type = StgType::Storage, .size = 0, .clsid = version().clsid}; });
}

void StorageObject::flush() {
  // A version of its own is no business of the parent's before it is committed.
  if (!own_) flushElements();
}

void StorageObject::flushElements() {
  for (const auto& [name, element] : open_) element->flush();
}

void StorageObject::cutOff() noexcept {
  cutOffElements();
  reverted_ = true;
  parent_ = nullptr;
  own_ = nullptr;
}

void StorageObject::cutOffElements() noexcept {
  for (const auto& [name, element] : open_) element->cutOff();
  open_.clear();
}

void StorageObject::close() noexcept {
  const std::lock_guard lock(session_->mutex);
  const HRESULT flushed = guard([this] { flush(); });
  if (failed(flushed)) session_->lost = flushed;
  detach();
  cutOff();
}

void StorageObject::requireWritable() const {
  if (!mode_.write) throw StatusError(STG_E_ACCESSDENIED);
}

OpenMode StorageObject::modeToCreate(std::uint32_t mode, Kind kind) const {
  const OpenMode wanted = parseMode(mode);
  if (kind == Kind::Stream && wanted.transacted) throw StatusError(STG_E_INVALIDFUNCTION);
  requireWritable();
  return wanted;
}

OpenMode StorageObject::modeToOpen(std::uint32_t mode, Kind kind) const {
  const OpenMode wanted = parseMode(mode);
  if (wanted.create || (kind == Kind::Stream && wanted.transacted)) throw StatusError(STG_E_INVALIDFUNCTION);
  if (wanted.write) requireWritable();
  return wanted;
}

const Element& StorageObject::find(const BString& name) const {
  const Element* element = version().find(name);
  if (!element) throw StatusError(isValidName(name) ? STG_E_FILENOTFOUND : STG_E_INVALIDNAME);
  return *element;
}

const Element& StorageObject::findToOpen(const BString& name, Kind kind) const {
  const Element& element = find(name);
  if ((kind == Kind::Stream) != (element.stream != nullptr)) throw StatusError(STG_E_FILENOTFOUND);
  if (open_.contains(name)) throw StatusError(STG_E_ACCESSDENIED);
  return element;
}

void StorageObject::addElement(Element element, bool replace) {
  if (!isValidName(element.name)) throw StatusError(STG_E_INVALIDNAME);
  if (version().find(element.name)) {
    if (!replace) throw StatusError(STG_E_FILEALREADYEXISTS);
    removeElement(element.name);
  }
  changeVersion().insert(std::move(element));
}

void StorageObject::removeElement(const BString& name) {
  StorageTree& changed = changeVersion();
  if (const auto open = open_.find(name); open != open_.end()) {
    open->second->cutOff();
    open_.erase(open);
  }
  changed.erase(name);
}

// In both the object enters the list before anything can fail that would end its life under the mutex.
Ref<IStream> StorageObject::openStream(const BString& name, OpenMode mode) {
  const auto slot = open_.try_emplace(name, nullptr).first;
  try {
    const Ref<StreamObject> stream = make<StreamObject>(session_, this, name, mode);
    slot->second = stream.get();
    return stream;
  } catch (...) {
    open_.erase(slot);
    throw;
  }
}

Ref<IStorage> StorageObject::openStorage(const BString& name, OpenMode mode) {
  const auto slot = open_.try_emplace(name, nullptr).first;
  try {
    const Ref<SubStorage> storage = make<SubStorage>(session_, this, name, mode);
    slot->second = storage.get();
    return storage;
  } catch (...) {
    open_.erase(slot);
    throw;
  }
}

SubStorage::SubStorage(std::shared_ptr<Session> session, StorageObject* parent, const BString& name,
                       OpenMode mode) {
  attach(std::move(session), parent, name);
  start(mode, mode.transacted ? std::as_const(*parent).storageOf(name) : nullptr);
}

void SubStorage::commitOwn(std::uint32_t) {
  // Exclusive, so nobody else can have changed the parent's version of this storage: it is always current.
  if (committed() != own_) parent_->changeStorageOf(name_) = own_;
}

std::shared_ptr<StorageTree> SubStorage::committed() const {
  return std::as_const(*parent_).storageOf(name_);
}

}  // namespace forgeyard::compound
