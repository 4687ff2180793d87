#pragma once

#include <string>

#include "hosts/console/serve/object_handles.h"

namespace forgeyard::console {

// Codes of errors: those of JSON-RPC 2.0, then the server's own.
inline constexpr int kParseError = -32700;
inline constexpr int kInvalidRequest = -32600;
inline constexpr int kMethodNotFound = -32601;
inline constexpr int kInvalidParameters = -32602;
inline constexpr int kMemberFailed = -32000;   // with the status and the member's name
inline constexpr int kRequestFailed = -32001;  // anything else

// What is wrong with a request as such; empty when nothing is.
std::string faultOf(const ObjectHandles::Json& request);
// Null where there is none that can be used.
ObjectHandles::Json idOf(const ObjectHandles::Json& request);
// False for a notification.
bool expectsAnswer(const ObjectHandles::Json& request);

// Throw InvalidParameters.
const std::string& textIn(const ObjectHandles::Json& parameters, const char* name);
std::int64_t numberIn(const ObjectHandles::Json& parameters, const char* name);

}  // namespace forgeyard::console
