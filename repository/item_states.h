#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

#include "repository/connection.h"
#include "repository/items_reader.h"

namespace forgeyard::repository {

// What the repository holds and who has it locked, for one path after the other. Inside of a batch, which
// lasts from begin() to end(), questions about paths below the batch's folder are answered from one listing
// and one list of locks, made when so many have been asked that this is quicker.
class ItemStates {
 public:
  explicit ItemStates(Connection& connection) : connection_(connection) {}

  // Batches may be nested; the outermost one's folder counts.
  void begin(const std::string& folder);
  bool end();

  std::optional<Node> node(const std::string& path);
  // Empty when nobody has it locked.
  std::string lockOwner(const std::string& path);
  // A path, with all below, that this connection has changed: it is asked for again.
  void forget(const std::string& path);

 private:
  // Whether the listing answers for the path.
  bool listed(const std::string& path);
  void list();
  static svn_error_t* take(const char* path, svn_dirent_t* entry, void* baton, apr_pool_t* pool);
  void listFolders(const std::string& folder);

  Connection& connection_;
  int depth_ = 0;
  int asked_ = 0;
  std::string folder_;
  bool complete_ = false;
  std::unordered_map<std::string, Node> nodes_;
  std::map<std::string, Lock> locks_;
  std::unordered_set<std::string> changed_;
};

}  // namespace forgeyard::repository
