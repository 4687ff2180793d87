#pragma once

#include <vector>

#include "platform/com/type_info.h"
#include "typelib/collections.h"

namespace forgeyard {

// The history that each main class carries: rows of version, key and text.
struct IEntry : IDispatch {
  using Base = IDispatch;
  static constexpr Guid iid = guid("1090D143-C230-11D1-BBFE-00C0F00984EB");

  virtual HRESULT get_Key(BString* value) = 0;
  virtual HRESULT get_Text(BString* value) = 0;
  virtual HRESULT get_Version(std::int32_t* value) = 0;
};

struct IEntries : IDispatch {
  using Base = IDispatch;
  static constexpr Guid iid = guid("1090D145-C230-11D1-BBFE-00C0F00984EB");

  virtual HRESULT get_Item(const Variant& index, Ref<IEntry>* out) = 0;
  virtual HRESULT get_Count(std::int32_t* value) = 0;
  virtual HRESULT get__NewEnum(Ref<IUnknown>* out) = 0;  // IEnumVARIANT of IEntry
  virtual HRESULT get_Keys(Ref<ISimpleCollection>* out) = 0;
  virtual HRESULT EntriesWithKey(const BString& key, Ref<IEntries>* out) = 0;
};

struct IKVSelfDocumenting : IUnknown {
  using Base = IUnknown;
  static constexpr Guid iid = guid("7F07AB36-BE5D-11D1-BBFE-00C0F00984EB");

  virtual HRESULT GetVersion(std::int32_t* version) = 0;
  // An empty key takes all keys, -1 to -1 all versions.
  virtual HRESULT Entries(const BString& key, std::int32_t first, std::int32_t last, Ref<IEntries>* out) = 0;
  // The classes that stand below this one in a report.
  virtual HRESULT Children(std::vector<Guid>* out) = 0;
  virtual HRESULT GetModule(BString* out) = 0;
};

// The side of a report tool, declared for clients; nothing here implements it.
struct IReporter : IDispatch {
  using Base = IDispatch;
  static constexpr Guid iid = guid("1EB0D746-C3C3-11D1-BBFE-00C0F00984EB");

  virtual HRESULT get_Item(const Variant& index, Ref<IDispatch>* out) = 0;
  virtual HRESULT get_Count(std::int32_t* value) = 0;
  virtual HRESULT get__NewEnum(Ref<IUnknown>* out) = 0;
  virtual HRESULT Init(IDispatch* host) = 0;
  virtual HRESULT Entries(IDispatch* object, const BString& key, std::int32_t first, std::int32_t last,
                          Ref<IEntries>* out) = 0;
  virtual HRESULT ModuleVersion(const BString& module, BString* version) = 0;
};

FORGEYARD_DUAL(IEntry)
FORGEYARD_DUAL(IEntries)
FORGEYARD_DUAL(IReporter)

}  // namespace forgeyard
