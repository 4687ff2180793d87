#pragma once

#include <svn_error.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace forgeyard::repository {

// Ends a call of the database: a whole message for the user.
class RepositoryError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// An error that the Subversion library returned, with the codes and texts of its whole chain.
class SvnError : public RepositoryError {
 public:
  // Takes over the error and clears it.
  explicit SvnError(svn_error_t* error);

  bool has(int code) const noexcept;
  // The connection has gone, or is of no use any more after an error in the middle of a transfer. Whether the
  // server has done what it was asked is unknown.
  bool connectionLost() const noexcept;
  // Somebody else has changed the item in the meantime.
  bool outOfDate() const noexcept;

 private:
  std::vector<int> codes_;
};

// Throws SvnError for an error.
inline void check(svn_error_t* error) {
  if (error) throw SvnError(error);
}

// The body of a callback of the library, which no exception may leave.
template <class Body>
svn_error_t* callback(Body&& body) noexcept {
  try {
    body();
    return SVN_NO_ERROR;
  } catch (const std::exception& error) {
    return svn_error_create(SVN_ERR_BASE, nullptr, error.what());
  }
}

// The scheme by which the library is made to use this module's own connections; never shown.
inline constexpr const char* kPrivateScheme = "svn+forgeyard://";

}  // namespace forgeyard::repository
