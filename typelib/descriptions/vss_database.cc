#include "typelib/vss_database.h"

#include "typelib/collections.h"

namespace forgeyard {

FORGEYARD_TYPE_INFO(IVSSDatabase, nullptr,
                    method<&IVSSDatabase::Open>(1, "Open", "SrcSafeIni,Username,Password",
                                                "connects to a database"),
                    readOnly<&IVSSDatabase::get_SrcSafeIni>(2, "SrcSafeIni", "full path of the srcsafe.ini"),
                    readOnly<&IVSSDatabase::get_VSSItem>(3, "VSSItem", "the item at a path, live or deleted",
                                                         "Spec,Deleted"))

FORGEYARD_TYPE_INFO(
    IVSSItem, nullptr, readOnly<&IVSSItem::get_Spec>(1, "Spec", "path in the database"),
    property<&IVSSItem::get_Deleted, &IVSSItem::put_Deleted>(2, "Deleted", "the item is deleted"),
    readOnly<&IVSSItem::get_VersionNumber>(3, "VersionNumber", "number of the newest version, from 1"),
    readOnly<&IVSSItem::get_IsCheckedOut>(4, "IsCheckedOut",
                                          "0 no, 1 by another user, 2 by the user who is logged on"),
    property<&IVSSItem::get_LocalSpec, &IVSSItem::put_LocalSpec>(5, "LocalSpec",
                                                                 "local directory or file of the item"),
    readOnly<&IVSSItem::get_Items>(6, "Items", "live children of a folder"),
    method<&IVSSItem::Get>(7, "Get", "Local,Flags", "writes the newest version to a local file"),
    method<&IVSSItem::Checkout>(8, "Checkout", "Comment,Local,Flags", "locks the item and makes it writable"),
    method<&IVSSItem::Checkin>(9, "Checkin", "Comment,Local,Flags", "stores a local file as a new version"),
    method<&IVSSItem::UndoCheckout>(10, "UndoCheckout", "Local,Flags", "ends a check-out without storing"),
    method<&IVSSItem::Add>(11, "Add", "Local,Comment,Flags,Item", "adds a local file to a folder"),
    method<&IVSSItem::NewSubproject>(12, "NewSubproject", "Name,Comment,Item", "makes a folder"),
    method<&IVSSItem::Destroy>(13, "Destroy", "", "deletes the item permanently"))

FORGEYARD_TYPE_INFO(IVSSItems, nullptr,
                    readOnly<&IVSSItems::get_Item>(DISPID_VALUE, "Item", "a child by name or index from 1",
                                                   "Index"),
                    readOnly<&IVSSItems::get_Count>(1, "Count", "number of children"),
                    readOnly<&IVSSItems::get__NewEnum>(DISPID_NEWENUM, "_NewEnum", "walks the children"))

}  // namespace forgeyard
