#pragma once

#include "platform/com/type_info.h"

namespace forgeyard {

// The source control database as the module uses it: a tree of folders and files, each an item with versions
// that count from 1, of which one user at a time has a file checked out. Implemented by a module of its own,
// which is loaded when the class VSSDatabase is first created. Calls belong to the apartment's thread; each
// waits until the repository has answered. Paths of items ("Spec") begin with "$\" and take both separators;
// local paths are those of the model.

enum VSSFlags : std::int32_t {
  VSSFLAG_USERRONO = 0x1,     // the local file stays writable
  VSSFLAG_TIMENOW = 0x4,      // the local file gets the present time
  VSSFLAG_REPREPLACE = 0x80,  // a writable local file is replaced
  VSSFLAG_KEEPNO = 0x10000,   // the file is checked in afterwards
  VSSFLAG_KEEPYES = 0x20000,  // the file stays, or becomes, checked out
};

// Values of IVSSItem::IsCheckedOut.
enum VSSFileStatus : std::int32_t {
  VSSFILE_NOTCHECKEDOUT = 0,
  VSSFILE_CHECKEDOUT = 1,  // by another user
  VSSFILE_CHECKEDOUT_ME = 2,
};

struct IVSSItem;

// The live children of one folder, in the order of their names, as they were when the collection was made.
struct IVSSItems : IDispatch {
  using Base = IDispatch;
  static constexpr Guid iid = guid("5B2D70B2-93C4-4E6F-A8D1-2F60C1B49E01");

  // By name, or by index from 1. Fails when there is no such child.
  virtual HRESULT get_Item(const Variant& index, Ref<IVSSItem>* out) = 0;
  virtual HRESULT get_Count(std::int32_t* value) = 0;
  virtual HRESULT get__NewEnum(Ref<IUnknown>* out) = 0;  // IEnumVARIANT of IVSSItem
};

// A file or folder. An item names a path: calls work on what the path holds at that time.
struct IVSSItem : IDispatch {
  using Base = IDispatch;
  static constexpr Guid iid = guid("5B2D70B1-93C4-4E6F-A8D1-2F60C1B49E01");

  virtual HRESULT get_Spec(BString* value) = 0;  // "$/folder/name"
  virtual HRESULT get_Deleted(bool* value) = 0;
  // False brings a deleted item back, with its history and the folders it needs; true deletes a live one.
  virtual HRESULT put_Deleted(bool value) = 0;
  virtual HRESULT get_VersionNumber(std::int32_t* value) = 0;
  // One of VSSFileStatus. The user counts, not the computer.
  virtual HRESULT get_IsCheckedOut(std::int32_t* value) = 0;
  // The directory or file that belongs to the item here; kept as long as the database is open.
  virtual HRESULT get_LocalSpec(BString* value) = 0;
  virtual HRESULT put_LocalSpec(const BString& value) = 0;
  virtual HRESULT get_Items(Ref<IVSSItems>* out) = 0;

  // Each takes a sum of VSSFlags and leaves the local file as it was if it fails.
  virtual HRESULT Get(const BString& local, std::int32_t flags) = 0;
  // Replaces the local file, which becomes writable, and locks the item for this user.
  virtual HRESULT Checkout(const BString& comment, const BString& local, std::int32_t flags) = 0;
  // Fails if the user hasn't got the item checked out.
  virtual HRESULT Checkin(const BString& comment, const BString& local, std::int32_t flags) = 0;
  virtual HRESULT UndoCheckout(const BString& local, std::int32_t flags) = 0;
  // Adds the local file to a folder, below its own name.
  virtual HRESULT Add(const BString& local, const BString& comment, std::int32_t flags,
                      Ref<IVSSItem>* item) = 0;
  virtual HRESULT NewSubproject(const BString& name, const BString& comment, Ref<IVSSItem>* item) = 0;
  // Deletes the item so that it can't be brought back through these interfaces.
  virtual HRESULT Destroy() = 0;
};

struct IVSSDatabase : IDispatch {
  using Base = IDispatch;
  static constexpr Guid iid = guid("5B2D70B0-93C4-4E6F-A8D1-2F60C1B49E01");

  // A null or empty path means the user's default database, a null or empty user the default logon.
  virtual HRESULT Open(const BString& srcSafeIni, const BString& userName, const BString& password) = 0;
  virtual HRESULT get_SrcSafeIni(BString* value) = 0;
  // A live item, or, with `deleted`, one that is deleted and could be brought back. Fails when there is none.
  virtual HRESULT get_VSSItem(const BString& spec, bool deleted, Ref<IVSSItem>* out) = 0;
};

inline constexpr Guid CLSID_VSSDatabase = guid("5B2D70B3-93C4-4E6F-A8D1-2F60C1B49E01");

FORGEYARD_DUAL(IVSSDatabase)
FORGEYARD_DUAL(IVSSItem)
FORGEYARD_DUAL(IVSSItems)

}  // namespace forgeyard
