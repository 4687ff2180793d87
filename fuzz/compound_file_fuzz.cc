// A project file of any bytes: it opens or is refused with a status; what opens can be read to its end,
// copied into a new file and committed over itself, and both then read back sound and with the same contents.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "fuzz/scratch_directory.h"
#include "platform/com/enumerators.h"
#include "platform/storage/root_storage.h"
#include "platform/storage/structured_storage.h"

namespace {

using namespace forgeyard;
using fuzz::require;
using fuzz::scratchDirectory;

constexpr std::uint32_t kRead = STGM_READ | STGM_SHARE_EXCLUSIVE;
constexpr std::uint32_t kChangeRoot = STGM_READWRITE | STGM_SHARE_EXCLUSIVE | STGM_TRANSACTED;
constexpr std::uint32_t kCreate = STGM_READWRITE | STGM_SHARE_EXCLUSIVE | STGM_CREATE;

// The disk's speed is not what is tested.
class UnsyncedCalls : public compound::FileCalls {
  int sync(int) override { return 0; }
};

using Contents = std::map<std::u16string, std::string>;

// In pieces of growing length, so that they fall on all kinds of borders.
std::string readAll(IStream* stream) {
  std::string all;
  std::string piece;
  for (std::uint32_t wanted = 1;; wanted = wanted * 2 + 1) {
    piece.resize(wanted);
    std::uint32_t got = 0;
    const HRESULT status = stream->Read(piece.data(), wanted, &got);
    require(got <= wanted);
    all.append(piece, 0, got);
    if (failed(status) || got == 0) return all;
  }
}

void collect(IStorage* storage, const std::u16string& prefix, Contents& contents) {
  Ref<IEnumSTATSTG> elements;
  check(storage->EnumElements(&elements));
  forEach(elements, [&](const STATSTG& element) {
    const std::u16string path = prefix + std::u16string(element.name.view());
    if (element.type == StgType::Stream) {
      Ref<IStream> stream;
      check(storage->OpenStream(element.name, kRead, &stream));
      const std::string bytes = readAll(stream.get());
      require(bytes.size() == element.size);
      require(contents.emplace(path, bytes).second);
    } else {
      Ref<IStorage> sub;
      check(storage->OpenStorage(element.name, kRead, &sub));
      const std::string clsid = formatGuid(element.clsid);
      require(contents.emplace(path + u"/", clsid).second);
      collect(sub.get(), path + u"/", contents);
    }
  });
}

Contents contentsOf(IStorage* root) {
  Contents contents;
  collect(root, u"", contents);
  return contents;
}

// Names that can't be made are left out of the copy and of what it is compared with.
void copy(IStorage* from, IStorage* to, const std::u16string& prefix, Contents& copied) {
  Ref<IEnumSTATSTG> elements;
  check(from->EnumElements(&elements));
  forEach(elements, [&](const STATSTG& element) {
    const std::u16string path = prefix + std::u16string(element.name.view());
    if (element.type == StgType::Stream) {
      Ref<IStream> target;
      if (failed(to->CreateStream(element.name, kCreate, &target))) return;
      Ref<IStream> source;
      check(from->OpenStream(element.name, kRead, &source));
      const std::string bytes = readAll(source.get());
      check(target->Write(bytes.data(), static_cast<std::uint32_t>(bytes.size()), nullptr));
      copied.emplace(path, bytes);
    } else {
      Ref<IStorage> target;
      if (failed(to->CreateStorage(element.name, kChangeRoot, &target))) return;
      Ref<IStorage> source;
      check(from->OpenStorage(element.name, kRead, &source));
      check(target->SetClass(element.clsid));
      copied.emplace(path + u"/", formatGuid(element.clsid));
      copy(source.get(), target.get(), path + u"/", copied);
      check(target->Commit(STGC_DEFAULT));
    }
  });
}

void requireSound(compound::FileCalls& calls, const std::string& file, const Contents& expected) {
  const Ref<IStorage> root = compound::openRoot(calls, file, u"", kRead);
  std::vector<BString> findings;
  check(query<IDamageReport>(root.get())->Findings(&findings));
  require(findings.empty());
  require(contentsOf(root.get()) == expected);
}

// Null for bytes that are refused.
Ref<IStorage> openAny(compound::FileCalls& calls, const std::string& file) {
  try {
    return compound::openRoot(calls, file, u"", kChangeRoot);
  } catch (const StatusError& error) {
    require(error.status() == STG_E_INVALIDHEADER || error.status() == STG_E_DOCFILECORRUPT);
    return nullptr;
  }
}

void run(const std::string& file, const std::string& copyFile) {
  UnsyncedCalls calls;
  Ref<IStorage> root = openAny(calls, file);
  if (!root) return;
  const Contents contents = contentsOf(root.get());

  Ref<IStorage> target = compound::createRoot(calls, copyFile, u"", kChangeRoot | STGM_CREATE);
  Contents copied;
  copy(root.get(), target.get(), u"", copied);
  check(target->Commit(STGC_ONLYIFCURRENT));
  target = nullptr;
  requireSound(calls, copyFile, copied);

  check(root->SetClass(IStorage::iid));
  check(root->Commit(STGC_ONLYIFCURRENT));
  root = nullptr;
  requireSound(calls, file, contents);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  // A byte that means nothing to a reader asks for a file with zeros behind the bytes, so large that the list
  // of its FAT sectors has to go on outside of the header.
  constexpr std::size_t kUnusedByte = 34;
  constexpr std::size_t kLarge = 7'500'000;
  const std::string file = scratchDirectory() + "/in";
  const std::string copyFile = scratchDirectory() + "/copy";
  fuzz::putFile(file, data, size);
  if (size > kUnusedByte && size < kLarge && data[kUnusedByte] == 1)
    std::filesystem::resize_file(file, kLarge);
  run(file, copyFile);
  std::filesystem::remove(file);
  std::filesystem::remove(copyFile);
  return 0;
}
