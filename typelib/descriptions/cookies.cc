#include "typelib/cookies.h"

namespace forgeyard {

FORGEYARD_TYPE_INFO(
    IKVSupportCookies, nullptr,
    property<&IKVSupportCookies::get_Cookie, &IKVSupportCookies::put_Cookie>(1, "Cookie", "a named value",
                                                                             "Cookie,value"),
    method<&IKVSupportCookies::DeleteCookie>(2, "DeleteCookie", "Cookie", "removes a named value"),
    method<&IKVSupportCookies::GetCookies>(3, "GetCookies", "cookies", "the names that have a value"))

}  // namespace forgeyard
