#include "typelib/self_documenting.h"

namespace forgeyard {

FORGEYARD_TYPE_INFO(IEntry, nullptr, readOnly<&IEntry::get_Key>(1, "Key", "kind of the entry"),
                    readOnly<&IEntry::get_Text>(2, "Text", "what changed"),
                    readOnly<&IEntry::get_Version>(3, "Version", "in which version"))

FORGEYARD_TYPE_INFO(IEntries, nullptr,
                    readOnly<&IEntries::get_Item>(DISPID_VALUE, "Item", "the entry at an index from 0",
                                                  "var"),
                    readOnly<&IEntries::get_Count>(1, "Count", "number of entries"),
                    readOnly<&IEntries::get__NewEnum>(DISPID_NEWENUM, "_NewEnum", "walks the entries"),
                    readOnly<&IEntries::get_Keys>(2, "Keys", "the keys that occur"),
                    method<&IEntries::EntriesWithKey>(3, "EntriesWithKey", "Key,entries",
                                                      "the entries of one key"))

FORGEYARD_TYPE_INFO(
    IReporter, nullptr,
    readOnly<&IReporter::get_Item>(DISPID_VALUE, "Item", "the object at an index from 0", "var"),
    readOnly<&IReporter::get_Count>(1, "Count", "number of objects"),
    readOnly<&IReporter::get__NewEnum>(DISPID_NEWENUM, "_NewEnum", "walks the objects"),
    method<&IReporter::Init>(2, "Init", "pHost", "collects the objects of a host"),
    method<&IReporter::Entries>(3, "Entries", "pObject,Key,first,last,entries", "the history of an object"),
    method<&IReporter::ModuleVersion>(4, "ModuleVersion", "mod,version", "the version of a module"))

}  // namespace forgeyard
