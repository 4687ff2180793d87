#include "repository/library.h"

#include <apr_general.h>
#include <svn_error.h>
#include <svn_fs.h>
#include <svn_pools.h>
#include <svn_ra.h>
#include <svn_utf.h>

#include <stdexcept>

#include "repository/svn_error.h"

namespace forgeyard::repository {

namespace {

apr_pool_t* startLibrary() {
  if (apr_initialize() != APR_SUCCESS) throw std::runtime_error("the portable runtime can't be started");
  apr_pool_t* pool = svn_pool_create(nullptr);
  // A violated assumption inside of the library is an error of one call, not the end of the host.
  svn_error_set_malfunction_handler(svn_error_raise_on_malfunction);
  // Names on the disk are UTF-8 whatever the host's locale is.
  svn_utf_initialize2(TRUE, pool);
  check(svn_fs_initialize(pool));
  check(svn_ra_initialize(pool));
  return pool;
}

}  // namespace

apr_pool_t* libraryPool() {
  static apr_pool_t* const pool = startLibrary();
  return pool;
}

}  // namespace forgeyard::repository
