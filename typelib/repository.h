#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/com/unknown.h"
#include "platform/text/bstring.h"

namespace forgeyard {

// Interfaces that an IVSSDatabase may offer besides its own. Apartment thread only. Texts are UTF-8.

// Why a call of the database or of one of its items failed.
struct IRepositoryErrors : IUnknown {
  using Base = IUnknown;
  static constexpr Guid iid = guid("5B2D70B4-93C4-4E6F-A8D1-2F60C1B49E01");

  // Of the last call that failed: one sentence or more, empty before the first failure.
  virtual const std::string& lastError() const = 0;
};

// Many questions about the state of items as one: between the two calls, which may be nested, the database
// answers from one listing and one list of locks, taken when enough is asked to make that worthwhile. What is
// changed through the database meanwhile is read again; what others change is seen after the last EndBatch.
struct IRepositoryBatch : IUnknown {
  using Base = IUnknown;
  static constexpr Guid iid = guid("5B2D70B5-93C4-4E6F-A8D1-2F60C1B49E01");

  // `spec` is the folder that most of the items are in.
  virtual HRESULT BeginBatch(const BString& spec) = 0;
  // E_UNEXPECTED without a BeginBatch before it.
  virtual HRESULT EndBatch() = 0;
};

// Who has an item checked out.
struct RepositoryLock {
  std::string spec;  // "$/folder/name"
  std::string user;
  std::string comment;
  std::int64_t time = 0;  // in microseconds since 1970 (UTC)
  bool own = false;
};

// One version of an item.
struct RepositoryVersion {
  std::int32_t number = 0;  // of the item, from 1
  std::int64_t revision = 0;
  std::string user;
  std::string comment;
  std::int64_t time = 0;  // in microseconds since 1970 (UTC)
};

// What is stored of items, for commands that show it.
struct IRepositoryHistory : IUnknown {
  using Base = IUnknown;
  static constexpr Guid iid = guid("5B2D70B6-93C4-4E6F-A8D1-2F60C1B49E01");

  // Newest first.
  virtual HRESULT versions(const BString& spec, std::vector<RepositoryVersion>* out) = 0;
  // Of everything at and below a path, in the order of the paths.
  virtual HRESULT locks(const BString& spec, std::vector<RepositoryLock>* out) = 0;
  // The bytes of the newest version. std::errc::file_too_large, as E_FAIL, beyond `limit` bytes.
  virtual HRESULT contents(const BString& spec, std::size_t limit, std::string* out) = 0;
};

// Makes repositories and says what a connection permits.
struct IRepositoryAdministration : IUnknown {
  using Base = IUnknown;
  static constexpr Guid iid = guid("5B2D70B7-93C4-4E6F-A8D1-2F60C1B49E01");

  // Makes an empty repository in a directory, given as a host path, that doesn't exist yet or is empty.
  virtual HRESULT create(const std::string& directory) = 0;
  // Of the open database: what its srcsafe.ini says, and as whom this user is known.
  virtual HRESULT describe(std::string* address, std::string* user, std::int64_t* newestRevision) = 0;
  // Whether this user may write: adds a folder below `spec`, locks and unlocks a file in it, and removes it
  // again. Leaves two revisions. `steps` holds a line for each that was done.
  virtual HRESULT tryWriting(const BString& spec, std::vector<std::string>* steps) = 0;
};

}  // namespace forgeyard
