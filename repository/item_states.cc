#include "repository/item_states.h"

#include <svn_dirent_uri.h>

#include <algorithm>

#include "repository/item_path.h"

namespace forgeyard::repository {

namespace {

// As many single questions take as long as a listing of some thousand files.
constexpr int kSingleQuestions = 24;

}  // namespace

void ItemStates::begin(const std::string& folder) {
  if (depth_++ > 0) return;
  folder_ = folder;
  asked_ = 0;
}

bool ItemStates::end() {
  if (depth_ == 0) return false;
  if (--depth_ > 0) return true;
  complete_ = false;
  nodes_.clear();
  locks_.clear();
  changed_.clear();
  return true;
}

bool ItemStates::listed(const std::string& path) {
  if (depth_ == 0 || !isAtOrBelow(path, folder_)) return false;
  if (!complete_ && ++asked_ > kSingleQuestions) list();
  if (!complete_) return false;
  if (changed_.empty()) return true;
  for (std::string at = path;; at = parentOf(at)) {
    if (changed_.contains(at)) return false;
    if (at.empty()) return true;
  }
}

std::optional<Node> ItemStates::node(const std::string& path) {
  if (!listed(path)) return findNode(connection_, path);
  const auto found = nodes_.find(path);
  return found == nodes_.end() ? std::nullopt : std::optional(found->second);
}

std::string ItemStates::lockOwner(const std::string& path) {
  if (!listed(path)) {
    const auto lock = findLock(connection_, path);
    return lock ? lock->owner : "";
  }
  const auto found = locks_.find(path);
  return found == locks_.end() ? "" : found->second.owner;
}

void ItemStates::forget(const std::string& path) {
  if (depth_ > 0) changed_.insert(path);
}

svn_error_t* ItemStates::take(const char* path, svn_dirent_t* entry, void* baton, apr_pool_t*) {
  return callback([&] {
    auto* const states = static_cast<ItemStates*>(baton);
    // From the repository's root over some transports, from the session over others.
    std::string relative = path;
    if (relative.starts_with('/')) {
      const auto below = states->connection_.relativeOf(relative);
      if (!below) return;
      relative = *below;
    }
    states->nodes_[std::move(relative)] = {entry->kind == svn_node_dir, entry->created_rev};
  });
}

void ItemStates::listFolders(const std::string& folder) {
  for (const auto& [name, node] : childrenOf(connection_, folder)) {
    const std::string path = joined(folder, name);
    nodes_[path] = node;
    if (node.folder) listFolders(path);
  }
}

void ItemStates::list() {
  const auto top = findNode(connection_, folder_);
  if (!top || !top->folder) return;
  static_cast<void>(connection_.prefix());
  const svn_revnum_t newest = connection_.newest();
  nodes_.clear();
  const bool known = connection_.read([&](svn_ra_session_t* session, apr_pool_t* pool) {
    svn_boolean_t canList = FALSE;
    check(svn_ra_has_capability(session, &canList, SVN_RA_CAPABILITY_LIST, pool));
    if (!canList) return false;
    check(svn_ra_list(session, folder_.c_str(), newest, nullptr, svn_depth_infinity,
                      SVN_DIRENT_KIND | SVN_DIRENT_CREATED_REV, take, this, pool));
    return true;
  });
  if (!known) listFolders(folder_);
  nodes_[folder_] = *top;
  locks_ = locksBelow(connection_, folder_);
  changed_.clear();
  complete_ = true;
}

}  // namespace forgeyard::repository
