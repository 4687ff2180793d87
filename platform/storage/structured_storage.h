#pragma once

#include <cstdint>
#include <vector>

#include "platform/com/ref.h"
#include "platform/com/unknown.h"
#include "platform/text/bstring.h"

namespace forgeyard {

// Structured storage as the model uses it: the interfaces of the published compound file format's API.

enum class StgType : std::uint32_t { Storage = 1, Stream = 2 };

struct STATSTG {
  BString name;
  StgType type = StgType::Stream;
  std::uint64_t size = 0;  // bytes; streams only
  Guid clsid{};            // storages only
};

enum class StreamSeek : std::uint32_t { Set = 0, Current = 1, End = 2 };

// Mode bits of storages and streams; the model passes the sums that its operations name.
inline constexpr std::uint32_t STGM_READ = 0x0;
inline constexpr std::uint32_t STGM_WRITE = 0x1;
inline constexpr std::uint32_t STGM_READWRITE = 0x2;
inline constexpr std::uint32_t STGM_SHARE_EXCLUSIVE = 0x10;
// Of a root that is opened to read: takes no lock and minds none.
inline constexpr std::uint32_t STGM_SHARE_DENY_NONE = 0x40;
inline constexpr std::uint32_t STGM_CREATE = 0x1000;
inline constexpr std::uint32_t STGM_TRANSACTED = 0x10000;

inline constexpr std::uint32_t STGC_DEFAULT = 0;
inline constexpr std::uint32_t STGC_ONLYIFCURRENT = 2;

// Bytes with a position. Reads and writes of a few bytes are cheap: an implementation buffers.
struct ISequentialStream : IUnknown {
  using Base = IUnknown;
  static constexpr Guid iid = guid("0C733A30-2A1C-11CE-ADE5-00AA0044773D");

  // Fewer bytes than asked for is success; *read (may be null) tells how many.
  virtual HRESULT Read(void* bytes, std::uint32_t count, std::uint32_t* read) = 0;
  virtual HRESULT Write(const void* bytes, std::uint32_t count, std::uint32_t* written) = 0;
};

struct IStream : ISequentialStream {
  using Base = ISequentialStream;
  static constexpr Guid iid = guid("0000000C-0000-0000-C000-000000000046");

  virtual HRESULT Seek(std::int64_t offset, StreamSeek origin, std::uint64_t* position) = 0;
  virtual HRESULT SetSize(std::uint64_t bytes) = 0;
  virtual HRESULT Commit(std::uint32_t flags) = 0;
  virtual HRESULT Stat(STATSTG* out) = 0;
};

struct IEnumSTATSTG : IUnknown {
  using Base = IUnknown;
  using Value = STATSTG;
  static constexpr Guid iid = guid("0000000D-0000-0000-C000-000000000046");

  // S_FALSE when fewer than `count` were left; *fetched (may be null) tells how many.
  virtual HRESULT Next(std::uint32_t count, STATSTG* out, std::uint32_t* fetched) = 0;
  virtual HRESULT Skip(std::uint32_t count) = 0;
  virtual HRESULT Reset() = 0;
};

// A folder of streams and storages. Elements have names of 1 to 31 UTF-16 units.
struct IStorage : IUnknown {
  using Base = IUnknown;
  static constexpr Guid iid = guid("0000000B-0000-0000-C000-000000000046");

  // With STGM_CREATE an element of that name is replaced; without it, STG_E_FILEALREADYEXISTS.
  virtual HRESULT CreateStream(const BString& name, std::uint32_t mode, Ref<IStream>* out) = 0;
  virtual HRESULT OpenStream(const BString& name, std::uint32_t mode, Ref<IStream>* out) = 0;
  virtual HRESULT CreateStorage(const BString& name, std::uint32_t mode, Ref<IStorage>* out) = 0;
  virtual HRESULT OpenStorage(const BString& name, std::uint32_t mode, Ref<IStorage>* out) = 0;
  virtual HRESULT Commit(std::uint32_t flags) = 0;
  virtual HRESULT Revert() = 0;
  // In directory order: by name length, then by upper-cased units.
  virtual HRESULT EnumElements(Ref<IEnumSTATSTG>* out) = 0;
  virtual HRESULT DestroyElement(const BString& name) = 0;
  virtual HRESULT SetClass(const Guid& clsid) = 0;
  virtual HRESULT Stat(STATSTG* out) = 0;
};

struct IRootStorage : IUnknown {
  using Base = IUnknown;
  static constexpr Guid iid = guid("00000012-0000-0000-C000-000000000046");

  // Makes a new file with the committed contents and lets this root work on that one from now on; what is
  // uncommitted comes along, still uncommitted. STG_E_FILEALREADYEXISTS if a file stands there.
  virtual HRESULT SwitchToFile(const BString& path) = 0;
};

// What was found damaged when a file was opened, in sentences that name the element; the root offers it.
// Elements that can't be read are missing, streams that break off end early and say so (STG_E_DOCFILECORRUPT)
// to who reads on. A commit writes what could be read.
struct IDamageReport : IUnknown {
  using Base = IUnknown;
  static constexpr Guid iid = guid("7C1E0B52-6F0D-4D0A-9E43-2B7A51C6D8F4");

  virtual HRESULT Findings(std::vector<BString>* out) = 0;
};

// Both open the root of a compound file at a model path. The file is locked against other openers, in this
// process and in others, until the last reference to the root goes (STG_E_SHAREVIOLATION for them). Nothing
// reaches it before Commit of the root, which is atomic and durable: the file holds the old state or the new
// one, whatever happens. A root that may write has to be transacted. Streams and storages below are open once
// at a time, and are cut off (STG_E_REVERTED) when their parent goes, is reverted, or they are destroyed or
// replaced.
//
// StgCreateDocfile: with STGM_CREATE a file that stands there is replaced by the first Commit, and is
// untouched until then; without it, STG_E_FILEALREADYEXISTS. Where none stands an empty compound file does
// from now on.
//
// With STGM_SHARE_DENY_NONE, which is for reading alone, nobody is locked out, and a file that somebody has
// locked opens: as its last commit left it, since a commit never writes into a file that stands.
//
// StgOpenStorage: STG_E_ACCESSDENIED for writing to a file that is marked as read-only. See IDamageReport for
// files that are damaged; STG_E_INVALIDHEADER or STG_E_DOCFILECORRUPT where nothing can be read.
//
// Commit of a root: STG_E_NOTCURRENT if a program that doesn't know the lock wrote into the file since it was
// opened, or, with STGC_ONLYIFCURRENT, put another one in its place. STG_E_MEDIUMFULL, STG_E_WRITEFAULT,
// STG_E_ACCESSDENIED (the directory has to be writable) leave the old file, and the uncommitted state for
// another try. Symbolic links, permissions, group and access lists survive; other hard links to the file keep
// the old contents.
HRESULT StgCreateDocfile(const BString& path, std::uint32_t mode, Ref<IStorage>* out);
HRESULT StgOpenStorage(const BString& path, std::uint32_t mode, Ref<IStorage>* out);

}  // namespace forgeyard
