#include "typelib/connection.h"

namespace forgeyard {

FORGEYARD_TYPE_INFO(IConnection, nullptr,
                    readOnly<&IConnection::get_From>(1, "From", "the component that feeds"),
                    readOnly<&IConnection::get_To>(2, "To", "the component that is fed"),
                    method<&IConnection::Init>(3, "Init", "From,To", "joins two components"),
                    method<&IConnection::Close>(4, "Close", "", "parts them again"))

FORGEYARD_TYPE_INFO(IConnections, nullptr,
                    readOnly<&IConnections::get_Item>(DISPID_VALUE, "Item", "the first connection from there",
                                                      "lhs"),
                    readOnly<&IConnections::get_Count>(1, "Count", "number of connections"),
                    readOnly<&IConnections::get__NewEnum>(DISPID_NEWENUM, "_NewEnum",
                                                          "walks the connections"),
                    method<&IConnections::Delete>(2, "Delete", "connection", "removes a connection"),
                    method<&IConnections::New>(3, "New", "rhs,lhs,pNew", "connects rhs to lhs"),
                    method<&IConnections::Close>(4, "Close", "", "removes all without a word"))

}  // namespace forgeyard
