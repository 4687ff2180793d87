#include "repository/address.h"

#include <svn_dirent_uri.h>
#include <svn_path.h>

#include <array>
#include <charconv>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "platform/text/fold.h"
#include "repository/item_path.h"
#include "repository/pool.h"
#include "repository/svn_error.h"

namespace forgeyard::repository {

namespace {

constexpr long kLongestLimit = 86400;

std::string_view trimmed(std::string_view text) {
  const std::size_t first = text.find_first_not_of(" \t\r");
  if (first == text.npos) return {};
  return text.substr(first, text.find_last_not_of(" \t\r") - first + 1);
}

std::string canonicalUrl(const std::string& url) {
  static constexpr std::array kSchemes{"file://", "svn://", "svn+ssh://", "https://", "http://"};
  bool known = false;
  for (const char* scheme : kSchemes) known = known || url.starts_with(scheme);
  if (!known)
    throw RepositoryError("the url " + url + " begins with none of file://, svn://, svn+ssh:// and https://");
  const Pool pool;
  const char* canonical = nullptr;
  check(svn_uri_canonicalize_safe(&canonical, nullptr, url.c_str(), pool, pool));
  return canonical;
}

std::chrono::seconds limitOf(std::string_view text) {
  long seconds = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), seconds);
  if (error != std::errc() || end != text.data() + text.size() || seconds < 1 || seconds > kLongestLimit)
    throw RepositoryError("the limit is " + std::string(text) + ", not a number of seconds from 1 to 86400");
  return std::chrono::seconds(seconds);
}

void takeLine(Address& address, std::string_view line, const std::string& directory) {
  line = trimmed(line);
  const std::size_t equals = line.find('=');
  if (equals == line.npos || line.starts_with(';') || line.starts_with('#') || line.starts_with('[')) return;
  const std::string_view name = trimmed(line.substr(0, equals));
  const std::string value(trimmed(line.substr(equals + 1)));
  if (equalFoldedAscii(name, "limit")) {
    address.limit = limitOf(value);
  } else if (equalFoldedAscii(name, "url") || equalFoldedAscii(name, "folder")) {
    if (!address.url.empty()) throw RepositoryError("it names more than one url or folder");
    if (value.empty()) throw RepositoryError("its " + std::string(name) + " is empty");
    address.url = equalFoldedAscii(name, "url")
                      ? canonicalUrl(value)
                      : fileUrl((std::filesystem::path(directory) / value).lexically_normal().string());
  }
}

}  // namespace

std::string Address::libraryUrl() const {
  return isPlainServer() ? kPrivateScheme + url.substr(std::string_view("svn://").size()) : url;
}

std::string fileUrl(const std::string& directory) {
  const Pool pool;
  const char* url = nullptr;
  if (!isValidUtf8(directory)) throw RepositoryError(directory + ": the name is not valid UTF-8");
  check(svn_uri_get_file_url_from_dirent(&url, svn_dirent_internal_style(directory.c_str(), pool), pool));
  return url;
}

Address parseAddress(std::string_view text, const std::string& directory) {
  Address address;
  if (text.starts_with("\xEF\xBB\xBF")) text.remove_prefix(3);
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    takeLine(address, text.substr(0, end), directory);
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  if (address.url.empty()) throw RepositoryError("it has neither a line \"url = ...\" nor \"folder = ...\"");
  return address;
}

Address readAddress(const std::string& iniFile) {
  std::ifstream file(iniFile, std::ios::binary);
  const std::string text{std::istreambuf_iterator<char>(file), {}};
  if (!file || file.bad()) throw RepositoryError(iniFile + " can't be read");
  try {
    return parseAddress(text, std::filesystem::path(iniFile).parent_path().string());
  } catch (const RepositoryError& error) {
    throw RepositoryError(iniFile + ": " + error.what());
  }
}

std::string iniText(const std::string& folder) {
  return "; The address of a source control database. Instead of a folder of this computer it can name a "
         "server:\n"
         "; url = svn://host/path\n"
         "folder = " +
         folder + "\n";
}

}  // namespace forgeyard::repository
