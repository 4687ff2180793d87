#include "tests/platform/storage/storage_testing.h"

#include <algorithm>
#include <filesystem>
#include <fstream>

#include "platform/com/enumerators.h"

namespace forgeyard {
namespace {

void collect(IStorage* storage, const std::string& prefix, Contents& contents) {
  for (const STATSTG& element : elementsOf(storage)) {
    const std::string path = prefix + element.name.narrow();
    if (element.type == StgType::Stream) {
      contents[path] = get(storage, element.name);
    } else {
      contents[path + "/"] = formatGuid(element.clsid);
      collect(openStorage(storage, element.name, kRead).get(), path + "/", contents);
    }
  }
}

}  // namespace

BString StorageTest::path(const std::string& name) const {
  std::string model = host(name);
  std::replace(model.begin(), model.end(), '/', '\\');
  return BString::fromNarrow(model);
}

Ref<IStorage> StorageTest::create(const std::string& name) const {
  Ref<IStorage> root;
  check(StgCreateDocfile(path(name), kCreateRoot, &root));
  return root;
}

Ref<IStorage> StorageTest::open(std::uint32_t mode, const std::string& name) const {
  Ref<IStorage> root;
  check(StgOpenStorage(path(name), mode, &root));
  return root;
}

HRESULT StorageTest::openStatus(std::uint32_t mode, const std::string& name) const {
  Ref<IStorage> root;
  return StgOpenStorage(path(name), mode, &root);
}

std::string StorageTest::stored(const std::string& name) const {
  std::string bytes(std::filesystem::file_size(host(name)), '\0');
  std::ifstream(host(name), std::ios::binary).read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  return bytes;
}

std::vector<std::string> StorageTest::files() const {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(directory_.path())) {
    names.push_back(entry.path().filename());
  }
  std::sort(names.begin(), names.end());
  return names;
}

Ref<IStream> createStream(IStorage* storage, const BString& name) {
  Ref<IStream> stream;
  check(storage->CreateStream(name, kCreate, &stream));
  return stream;
}

Ref<IStream> openStream(IStorage* storage, const BString& name, std::uint32_t mode) {
  Ref<IStream> stream;
  check(storage->OpenStream(name, mode, &stream));
  return stream;
}

Ref<IStorage> createStorage(IStorage* storage, const BString& name, std::uint32_t mode) {
  Ref<IStorage> sub;
  check(storage->CreateStorage(name, mode, &sub));
  return sub;
}

Ref<IStorage> openStorage(IStorage* storage, const BString& name, std::uint32_t mode) {
  Ref<IStorage> sub;
  check(storage->OpenStorage(name, mode, &sub));
  return sub;
}

void put(IStorage* storage, const BString& name, std::string_view bytes) {
  write(createStream(storage, name).get(), bytes);
}

std::string get(IStorage* storage, const BString& name) {
  return readAll(openStream(storage, name, kRead).get());
}

void write(IStream* stream, std::string_view bytes) {
  std::uint32_t written = 0;
  check(stream->Write(bytes.data(), static_cast<std::uint32_t>(bytes.size()), &written));
  ASSERT_EQ(written, bytes.size());
}

std::string read(IStream* stream, std::uint32_t count) {
  std::string bytes(count, '\0');
  std::uint32_t got = 0;
  check(stream->Read(bytes.data(), count, &got));
  bytes.resize(got);
  return bytes;
}

void seek(IStream* stream, std::int64_t to) {
  check(stream->Seek(to, StreamSeek::Set, nullptr));
}

std::string readAll(IStream* stream) {
  STATSTG stat;
  check(stream->Stat(&stat));
  return read(stream, static_cast<std::uint32_t>(stat.size));
}

std::vector<STATSTG> elementsOf(IStorage* storage) {
  Ref<IEnumSTATSTG> enumerator;
  check(storage->EnumElements(&enumerator));
  std::vector<STATSTG> elements;
  forEach(enumerator, [&](const STATSTG& element) { elements.push_back(element); });
  return elements;
}

std::vector<std::string> namesOf(IStorage* storage) {
  std::vector<std::string> names;
  for (const STATSTG& element : elementsOf(storage)) names.push_back(element.name.narrow());
  return names;
}

Contents contentsOf(IStorage* storage) {
  Contents contents;
  collect(storage, "", contents);
  return contents;
}

std::vector<std::string> findingsOf(IStorage* root) {
  std::vector<BString> findings;
  check(query<IDamageReport>(root)->Findings(&findings));
  std::vector<std::string> texts;
  for (const BString& finding : findings) texts.push_back(finding.narrow());
  return texts;
}

std::string pattern(std::size_t size, std::uint32_t seed) {
  std::string bytes(size, '\0');
  std::uint32_t state = seed * 2654435761u + 1;
  for (char& byte : bytes) {
    state = state * 1664525u + 1013904223u;
    byte = static_cast<char>(state >> 24);
  }
  return bytes;
}

}  // namespace forgeyard
