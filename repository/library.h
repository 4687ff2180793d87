#pragma once

#include <apr_pools.h>

namespace forgeyard::repository {

// The pool that lives as long as the process. The first call starts the Subversion library, which is never
// ended: it can't be started a second time in one process, which is also why this module stays mapped.
// Throws SvnError if the library can't be started.
apr_pool_t* libraryPool();

}  // namespace forgeyard::repository
