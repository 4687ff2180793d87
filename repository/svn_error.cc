#include "repository/svn_error.h"

#include <svn_error_codes.h>

#include <algorithm>
#include <array>

namespace forgeyard::repository {

namespace {

std::string withoutPrivateScheme(std::string text) {
  const std::string scheme = kPrivateScheme;
  for (std::size_t at = text.find(scheme); at != text.npos; at = text.find(scheme, at))
    text.replace(at, scheme.size(), "svn://");
  return text;
}

// The library's words for what users meet most say little of what to do.
const char* plainWords(const std::vector<int>& codes) {
  struct Words {
    int code;
    const char* text;
  };
  static constexpr std::array kWords{
      Words{SVN_ERR_AUTHN_NO_PROVIDER, "the repository asks for a user name and a password"},
      Words{SVN_ERR_AUTHN_CREDS_UNAVAILABLE, "the repository asks for a user name and a password"},
      Words{SVN_ERR_FS_BAD_LOCK_TOKEN, "another user has it checked out, or has taken the check-out away"},
      Words{SVN_ERR_FS_LOCK_OWNER_MISMATCH, "another user has it checked out"},
  };
  for (const Words& words : kWords) {
    if (std::find(codes.begin(), codes.end(), words.code) != codes.end()) return words.text;
  }
  return nullptr;
}

// The texts of the chain, outermost first, each once.
std::string textOf(const svn_error_t* error) {
  std::vector<std::string> parts;
  std::vector<int> codes;
  for (const svn_error_t* link = error; link; link = link->child) {
    codes.push_back(link->apr_err);
    std::array<char, 512> buffer{};
    std::string part = svn_err_best_message(link, buffer.data(), buffer.size());
    if (std::find(parts.begin(), parts.end(), part) == parts.end()) parts.push_back(std::move(part));
  }
  std::string text;
  for (const std::string& part : parts) text.append(text.empty() ? "" : ": ").append(part);
  if (const char* words = plainWords(codes)) text.append(" (").append(words).append(")");
  return withoutPrivateScheme(std::move(text));
}

}  // namespace

SvnError::SvnError(svn_error_t* error) : RepositoryError(textOf(error)) {
  for (const svn_error_t* link = error; link; link = link->child) codes_.push_back(link->apr_err);
  svn_error_clear(error);
}

bool SvnError::has(int code) const noexcept {
  return std::find(codes_.begin(), codes_.end(), code) != codes_.end();
}

bool SvnError::connectionLost() const noexcept {
  static constexpr std::array kCodes{
      static_cast<int>(SVN_ERR_RA_SVN_CONNECTION_CLOSED), static_cast<int>(SVN_ERR_RA_SVN_IO_ERROR),
      static_cast<int>(SVN_ERR_RA_SVN_MALFORMED_DATA),    static_cast<int>(SVN_ERR_RA_DAV_CONN_TIMEOUT),
      static_cast<int>(SVN_ERR_RA_DAV_REQUEST_FAILED),    static_cast<int>(SVN_ERR_RA_CANNOT_CREATE_TUNNEL)};
  return std::any_of(kCodes.begin(), kCodes.end(), [&](int code) { return has(code); });
}

bool SvnError::outOfDate() const noexcept {
  return has(SVN_ERR_FS_TXN_OUT_OF_DATE) || has(SVN_ERR_FS_CONFLICT) || has(SVN_ERR_FS_OUT_OF_DATE) ||
         has(SVN_ERR_RA_OUT_OF_DATE) || has(SVN_ERR_FS_ALREADY_EXISTS);
}

}  // namespace forgeyard::repository
