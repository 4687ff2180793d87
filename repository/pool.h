#pragma once

#include <svn_pools.h>

#include "repository/library.h"

namespace forgeyard::repository {

// A memory pool of the Subversion library for the life time of this object.
class Pool {
 public:
  explicit Pool(apr_pool_t* parent = libraryPool()) : pool_(svn_pool_create(parent)) {}
  Pool(const Pool&) = delete;
  Pool& operator=(const Pool&) = delete;
  ~Pool() { svn_pool_destroy(pool_); }

  operator apr_pool_t*() const noexcept { return pool_; }  // NOLINT: passed to the library as it is
  apr_pool_t* get() const noexcept { return pool_; }
  void clear() const noexcept { svn_pool_clear(pool_); }

 private:
  apr_pool_t* pool_;
};

}  // namespace forgeyard::repository
