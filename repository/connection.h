#pragma once

#include <svn_ra.h>

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "repository/address.h"
#include "repository/pool.h"
#include "repository/svn_error.h"

namespace forgeyard::repository {

struct Logon {
  std::string user;  // empty: the default logon
  std::string password;
};

// One session with a repository, opened when it is first needed and again after it was lost. Paths are
// relative to the address. Errors throw RepositoryError. One thread.
class Connection {
 public:
  Connection(Address address, Logon logon);
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;
  ~Connection();

  const Address& address() const { return address_; }
  // The name under which the repository knows this user, which owns the user's locks.
  const std::string& user() const { return user_; }

  // Runs body(session, pool) with a pool that is cleared afterwards. A body that only reads is run again,
  // once, if a connection that has been used before turns out to be lost.
  template <class Body>
  decltype(auto) read(Body&& body) {
    const bool mayBeStale = session_ != nullptr;
    try {
      return run(body);
    } catch (const SvnError& error) {
      if (!mayBeStale || !error.connectionLost()) throw;
    }
    return run(body);
  }
  // A body that must not run twice is run once, on a connection that has been seen to work a moment ago.
  template <class Body>
  decltype(auto) write(Body&& body) {
    if (!session_ || Clock::now() - lastUse_ > kFresh) static_cast<void>(newest());
    return run(body);
  }

  // The newest revision.
  svn_revnum_t newest();

  // The path of the address below the repository's root, "" if it is the root.
  const std::string& prefix();
  // A path as the repository's logs and lists of locks have it, "/trunk/a", as a relative one; nothing for
  // one outside of the address.
  std::optional<std::string> relativeOf(std::string_view absolute);
  std::string absoluteOf(std::string_view relative);

  // Ends the session: after an error in the middle of a transfer it is of no more use.
  void drop() noexcept;

 private:
  using Clock = std::chrono::steady_clock;
  static constexpr std::chrono::seconds kFresh{1};
  struct Session;

  template <class Body>
  decltype(auto) run(Body&& body) {
    svn_ra_session_t* session = open();
    const Pool pool;
    try {
      lastUse_ = Clock::now();
      return body(session, pool.get());
    } catch (const SvnError& error) {
      if (error.connectionLost() || error.has(SVN_ERR_BASE)) drop();
      throw;
    }
  }
  svn_ra_session_t* open();

  Address address_;
  Logon logon_;
  std::string user_;
  std::optional<std::string> prefix_;
  std::unique_ptr<Session> session_;
  Clock::time_point lastUse_;
};

}  // namespace forgeyard::repository
