#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <map>
#include <ostream>
#include <string>
#include <vector>

#include "platform/storage/structured_storage.h"
#include "tests/platform/support/temporary_directory.h"

namespace forgeyard {

// The modes that the model uses.
inline constexpr std::uint32_t kCreateRoot = 69650;
inline constexpr std::uint32_t kReadRoot = 65552;
inline constexpr std::uint32_t kChangeRoot = 65554;
inline constexpr std::uint32_t kTransacted = 65554;  // of a sub-storage
inline constexpr std::uint32_t kRead = STGM_READ | STGM_SHARE_EXCLUSIVE;
inline constexpr std::uint32_t kChange = 18;
inline constexpr std::uint32_t kCreate = 4114;

// Shows a status as it is usually written.
inline void PrintTo(HRESULT status, std::ostream* out) {
  *out << std::hex << static_cast<std::uint32_t>(code(status)) << std::dec;
}

// Everything in a storage by path: "Sub/" with its class identifier, "Sub/Inner" with its bytes.
using Contents = std::map<std::string, std::string>;

// A fresh directory, and project files in it by name.
class StorageTest : public testing::Test {
 protected:
  std::string host(const std::string& name = "p.nqp") const { return directory_ / name; }
  BString path(const std::string& name = "p.nqp") const;
  Ref<IStorage> create(const std::string& name = "p.nqp") const;
  Ref<IStorage> open(std::uint32_t mode = kChangeRoot, const std::string& name = "p.nqp") const;
  HRESULT openStatus(std::uint32_t mode = kChangeRoot, const std::string& name = "p.nqp") const;
  // The bytes of a file.
  std::string stored(const std::string& name = "p.nqp") const;
  // What stands in the directory.
  std::vector<std::string> files() const;

  TemporaryDirectory directory_;
};

// They throw StatusError where the storage reports a failure.
Ref<IStream> createStream(IStorage* storage, const BString& name);
Ref<IStream> openStream(IStorage* storage, const BString& name, std::uint32_t mode = kChange);
Ref<IStorage> createStorage(IStorage* storage, const BString& name, std::uint32_t mode = kTransacted);
Ref<IStorage> openStorage(IStorage* storage, const BString& name, std::uint32_t mode = kTransacted);
void put(IStorage* storage, const BString& name, std::string_view bytes);
std::string get(IStorage* storage, const BString& name);
void write(IStream* stream, std::string_view bytes);
std::string read(IStream* stream, std::uint32_t count);
void seek(IStream* stream, std::int64_t to);
std::string readAll(IStream* stream);
std::vector<STATSTG> elementsOf(IStorage* storage);
std::vector<std::string> namesOf(IStorage* storage);
Contents contentsOf(IStorage* storage);
std::vector<std::string> findingsOf(IStorage* root);

// Bytes that differ with the seed and don't repeat from sector to sector.
std::string pattern(std::size_t size, std::uint32_t seed = 1);

}  // namespace forgeyard
