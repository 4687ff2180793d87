#pragma once

#include <chrono>
#include <string>
#include <string_view>

namespace forgeyard::repository {

// What a srcsafe.ini says: where the repository is. A text of lines "name = value"; lines that begin with
// ";",
// "#" or "[" don't count, nor do names that aren't known.
//
//   url = svn://host/path       file://, svn://, svn+ssh:// or https://
//   folder = repository         instead of url: a directory on this computer, seen from the file's own
//   limit = 60                  seconds without an answer after which a server counts as gone
struct Address {
  std::string url;  // canonical, without a password
  std::chrono::seconds limit{60};

  bool isLocal() const { return url.starts_with("file://"); }
  // Reached by this module's own connection; the library's would end the process with a signal when the
  // server goes, and wait for ever when it falls silent.
  bool isPlainServer() const { return url.starts_with("svn://"); }
  bool isSecureShell() const { return url.starts_with("svn+ssh://"); }
  // As the library is to have it.
  std::string libraryUrl() const;
};

// Reads the file, a host path. Throws RepositoryError that names the file and what is wrong with it.
Address readAddress(const std::string& iniFile);
// The same from the text; `directory` is where the file is.
Address parseAddress(std::string_view text, const std::string& directory);

// The text of a srcsafe.ini for a repository in that directory, seen from the file's own.
std::string iniText(const std::string& folder);

// The address of a directory on this computer.
std::string fileUrl(const std::string& directory);

}  // namespace forgeyard::repository
