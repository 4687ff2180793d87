#pragma once

#include <svn_ra.h>

#include <chrono>

namespace forgeyard::repository {

// Makes the library use this module's own connections for svn:// (by the private scheme) and svn+ssh://:
// calls that end with an error when the server goes or says nothing for `limit`, and that never raise
// SIGPIPE. The callbacks' tunnel members are set; `limit` must live as long as the session.
void useOwnConnections(svn_ra_callbacks2_t& callbacks, const std::chrono::seconds& limit);

}  // namespace forgeyard::repository
