#include "model/records/stored_bytes.h"

#include <algorithm>

#include "engine/component/omission_text.h"
#include "platform/com/enumerators.h"

namespace forgeyard {

namespace {

constexpr std::uint32_t kRead = STGM_SHARE_EXCLUSIVE | STGM_READ;
constexpr std::uint32_t kWrite = STGM_SHARE_EXCLUSIVE | STGM_READWRITE | STGM_CREATE;
// Projects have two levels; a file that is made to go on for ever ends here.
constexpr int kDeepestLevel = 32;
constexpr std::uint32_t kPiece = 1u << 20;

class StorageReader {
 public:
  explicit StorageReader(std::vector<LoadOmission>& leftOut) : leftOut_(leftOut) {}

  StorageBytes read(IStorage& storage, std::vector<StoredElement>& elements, int level) {
    StorageBytes bytes;
    STATSTG own;
    check(storage.Stat(&own));
    bytes.clsid = own.clsid;
    Ref<IEnumSTATSTG> walk;
    check(storage.EnumElements(&walk));
    forEach(walk, [&](const STATSTG& found) {
      StoredElement element{found.name, found.type, found.size, found.clsid, {}};
      if (found.type == StgType::Stream) {
        readStream(storage, found, bytes);
      } else {
        readBelow(storage, element, bytes, level);
      }
      elements.push_back(std::move(element));
    });
    return bytes;
  }

 private:
  void leaveOut(const char* kind, const BString& name, const std::string& why) {
    leftOut_.push_back({quoted(kind, name), why});
  }

  // What breaks off is among the storage's findings. A damaged size is no reason to make room for it.
  void readStream(IStorage& storage, const STATSTG& found, StorageBytes& out) {
    Ref<IStream> stream;
    if (const HRESULT status = storage.OpenStream(found.name, kRead, &stream); failed(status))
      return leaveOut("stream", found.name, statusText(status));
    std::string bytes;
    while (bytes.size() < found.size) {
      const std::size_t before = bytes.size();
      const auto wanted = static_cast<std::uint32_t>(std::min<std::uint64_t>(kPiece, found.size - before));
      std::uint32_t got = 0;
      bytes.resize(before + wanted);
      ignore(stream->Read(bytes.data() + before, wanted, &got));
      bytes.resize(before + got);
      if (got < wanted) break;
    }
    out.streams.emplace_back(found.name, std::move(bytes));
  }

  void readBelow(IStorage& storage, StoredElement& element, StorageBytes& out, int level) {
    Ref<IStorage> below;
    HRESULT status = storage.OpenStorage(element.name, kRead | STGM_TRANSACTED, &below);
    StorageBytes bytes;
    if (succeeded(status) && level < kDeepestLevel) {
      status = guard([&] { bytes = read(*below, element.elements, level + 1); });
      if (failed(status)) leaveOut("storage", element.name, statusText(status));
    } else {
      leftOut_.push_back({"what is below " + quoted("storage", element.name),
                          failed(status) ? statusText(status) : "it lies too deep"});
    }
    bytes.name = element.name;
    bytes.clsid = element.clsid;
    out.storages.push_back(std::move(bytes));
  }

  std::vector<LoadOmission>& leftOut_;
};

void writeStream(IStorage& storage, const BString& name, const std::string& bytes) {
  Ref<IStream> stream;
  check(storage.CreateStream(name, kWrite, &stream));
  for (std::size_t at = 0; at < bytes.size();) {
    const auto count = static_cast<std::uint32_t>(std::min<std::size_t>(kPiece, bytes.size() - at));
    std::uint32_t written = 0;
    check(stream->Write(bytes.data() + at, count, &written));
    if (written != count) throw StatusError(STG_E_MEDIUMFULL);
    at += count;
  }
}

}  // namespace

StorageBytes readStorage(IStorage& storage, std::vector<StoredElement>& elements,
                         std::vector<LoadOmission>& leftOut) {
  return StorageReader(leftOut).read(storage, elements, 1);
}

void writeStorage(IStorage& storage, const StorageBytes& bytes) {
  if (bytes.clsid != GUID_NULL) check(storage.SetClass(bytes.clsid));
  for (const auto& [name, content] : bytes.streams) writeStream(storage, name, content);
  for (const StorageBytes& content : bytes.storages) {
    Ref<IStorage> below;
    check(storage.CreateStorage(content.name, kWrite | STGM_TRANSACTED, &below));
    writeStorage(*below, content);
    check(below->Commit(STGC_DEFAULT));
  }
}

}  // namespace forgeyard
