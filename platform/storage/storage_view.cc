#include "platform/storage/storage_view.h"

#include <vector>

#include "platform/com/enumerators.h"
#include "platform/storage/storage_object.h"
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

HRESULT StorageView::CreateStream(const BString& name, std::uint32_t mode, Ref<IStream>* out) {
  return produce(out, [&] {
    const OpenMode wanted = modeToCreate(mode, Kind::Stream);
    addElement({.name = name, .stream = std::make_shared<StreamContent>(), .storage = nullptr},
               wanted.create);
    return openElement<StreamObject>(name, wanted);
  });
}

HRESULT StorageView::OpenStream(const BString& name, std::uint32_t mode, Ref<IStream>* out) {
  return produce(out, [&] {
    const OpenMode wanted = modeToOpen(mode, Kind::Stream);
    return openElement<StreamObject>(findToOpen(name, Kind::Stream).name, wanted);
  });
}

HRESULT StorageView::CreateStorage(const BString& name, std::uint32_t mode, Ref<IStorage>* out) {
  return produce(out, [&] {
    const OpenMode wanted = modeToCreate(mode, Kind::Storage);
    addElement({.name = name, .stream = nullptr, .storage = std::make_shared<StorageTree>()}, wanted.create);
    return openElement<SubStorage>(name, wanted);
  });
}

HRESULT StorageView::OpenStorage(const BString& name, std::uint32_t mode, Ref<IStorage>* out) {
  return produce(out, [&] {
    const OpenMode wanted = modeToOpen(mode, Kind::Storage);
    return openElement<SubStorage>(findToOpen(name, Kind::Storage).name, wanted);
  });
}

HRESULT StorageView::Commit(std::uint32_t flags) {
  return run([&] {
    requireWritable();
    flushElements();
    check(std::exchange(session_->lost, S_OK));
    if (own_) commitOwn(flags);
  });
}

HRESULT StorageView::Revert() {
  return run([&] {
    if (!own_) return;
    cutOffElements();
    own_ = committed();
  });
}

HRESULT StorageView::EnumElements(Ref<IEnumSTATSTG>* out) {
  return produce(out, [&] {
    flushElements();
    std::vector<STATSTG> elements;
    elements.reserve(version().elements.size());
    for (const Element& element : version().elements) elements.push_back(describe(element));
    return Ref<IEnumSTATSTG>(make<ListEnumerator<IEnumSTATSTG>>(std::move(elements)));
  });
}

HRESULT StorageView::DestroyElement(const BString& name) {
  return run([&] {
    requireWritable();
    find(name);
    removeElement(name);
  });
}

HRESULT StorageView::SetClass(const Guid& clsid) {
  return run([&] {
    requireWritable();
    if (version().clsid != clsid) changeVersion().clsid = clsid;
  });
}

HRESULT StorageView::Stat(STATSTG* out) {
  if (!out) return STG_E_INVALIDPOINTER;
  return run([&] { *out = {.name = name_, .type = StgType::Storage, .size = 0, .clsid = version().clsid}; });
}

void StorageView::flush() {
  // A version of its own is no business of the parent's before it is committed.
  if (!own_) flushElements();
}

void StorageView::flushElements() {
  for (const auto& [name, element] : open_) element->flush();
}

void StorageView::cutOff() noexcept {
  cutOffElements();
  reverted_ = true;
  parent_ = nullptr;
  own_ = nullptr;
}

void StorageView::cutOffElements() noexcept {
  for (const auto& [name, element] : open_) element->cutOff();
  open_.clear();
}

void StorageView::requireWritable() const {
  if (!mode_.write) throw StatusError(STG_E_ACCESSDENIED);
}

OpenMode StorageView::modeToCreate(std::uint32_t mode, Kind kind) const {
  const OpenMode wanted = parseMode(mode);
  if (kind == Kind::Stream && wanted.transacted) throw StatusError(STG_E_INVALIDFUNCTION);
  requireWritable();
  return wanted;
}

OpenMode StorageView::modeToOpen(std::uint32_t mode, Kind kind) const {
  const OpenMode wanted = parseMode(mode);
  if (wanted.create || (kind == Kind::Stream && wanted.transacted)) throw StatusError(STG_E_INVALIDFUNCTION);
  if (wanted.write) requireWritable();
  return wanted;
}

const Element& StorageView::find(const BString& name) const {
  const Element* element = version().find(name);
  if (!element) throw StatusError(isValidName(name) ? STG_E_FILENOTFOUND : STG_E_INVALIDNAME);
  return *element;
}

const Element& StorageView::findToOpen(const BString& name, Kind kind) const {
  const Element& element = find(name);
  if ((kind == Kind::Stream) != (element.stream != nullptr)) throw StatusError(STG_E_FILENOTFOUND);
  if (open_.contains(name)) throw StatusError(STG_E_ACCESSDENIED);
  return element;
}

void StorageView::addElement(Element element, bool replace) {
  if (!isValidName(element.name)) throw StatusError(STG_E_INVALIDNAME);
  if (version().find(element.name)) {
    if (!replace) throw StatusError(STG_E_FILEALREADYEXISTS);
    removeElement(element.name);
  }
  changeVersion().insert(std::move(element));
}

void StorageView::removeElement(const BString& name) {
  StorageTree& changed = changeVersion();
  if (const auto open = open_.find(name); open != open_.end()) {
    open->second->cutOff();
    open_.erase(open);
  }
  changed.erase(name);
}

// The element enters the list first: nothing may fail later that would end the object's life under the mutex.
template <class Object>
Ref<Object> StorageView::openElement(const BString& name, OpenMode mode) {
  const auto slot = open_.try_emplace(name, nullptr).first;
  try {
    Ref<Object> object = make<Object>(session_, this, name, mode);
    slot->second = &object->state();
    return object;
  } catch (...) {
    open_.erase(slot);
    throw;
  }
}

SubStorageView::SubStorageView(std::shared_ptr<Session> session, StorageView* parent, const BString& name,
                               OpenMode mode)
    : StorageView(std::move(session), parent, name, mode,
                  mode.transacted ? std::as_const(*parent).storageOf(name) : nullptr) {}

void SubStorageView::commitOwn(std::uint32_t) {
  // Exclusive, so nobody else can have changed the parent's version of this storage: it is always current.
  if (committed() != own_) parent_->changeStorageOf(name_) = own_;
}

std::shared_ptr<StorageTree> SubStorageView::committed() const {
  return std::as_const(*parent_).storageOf(name_);
}

}  // namespace forgeyard::compound
