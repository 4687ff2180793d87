#include "repository/commit.h"

#include <svn_delta.h>
#include <svn_path.h>
#include <svn_props.h>
#include <unistd.h>

#include <cerrno>
#include <random>
#include <system_error>

#include "repository/item_path.h"

namespace forgeyard::repository {

namespace {

constexpr const char* kCommitId = "forgeyard:commit";

svn_error_t* readDescriptor(void* baton, char* buffer, apr_size_t* size) {
  return callback([&] {
    const int file = *static_cast<const int*>(baton);
    ssize_t count = 0;
    do {
      count = ::read(file, buffer, *size);
    } while (count < 0 && errno == EINTR);
    if (count < 0) throw std::system_error(errno, std::generic_category(), "the local file can't be read");
    *size = static_cast<apr_size_t>(count);
  });
}

// One edit of the repository, driven path by path.
struct Edit {
  const CommitRequest& request;
  svn_ra_session_t* session;
  svn_revnum_t newest;
  const svn_delta_editor_t* editor = nullptr;
  void* baton = nullptr;
};

svn_error_t* setProperty(const Edit& edit, void* file, const char* name, const char* value,
                         apr_pool_t* pool) {
  return edit.editor->change_file_prop(file, name, svn_string_create(value, pool), pool);
}

svn_error_t* sendContents(const Edit& edit, const PathChange& change, void* file, apr_pool_t* pool) {
  svn_txdelta_window_handler_t handler = nullptr;
  void* handlerBaton = nullptr;
  SVN_ERR(edit.editor->apply_textdelta(file, nullptr, pool, &handler, &handlerBaton));
  svn_stream_t* contents = svn_stream_create(const_cast<int*>(&change.file), pool);
  svn_stream_set_read2(contents, readDescriptor, nullptr);
  return svn_txdelta_send_stream(contents, handler, handlerBaton, nullptr, pool);
}

svn_error_t* storeFile(const Edit& edit, const PathChange& change, void* parent, apr_pool_t* pool) {
  void* file = nullptr;
  SVN_ERR(edit.editor->open_file(change.path.c_str(), parent, change.base, pool, &file));
  SVN_ERR(sendContents(edit, change, file, pool));
  return edit.editor->close_file(file, nullptr, pool);
}

svn_error_t* addFile(const Edit& edit, const PathChange& change, void* parent, apr_pool_t* pool) {
  void* file = nullptr;
  SVN_ERR(edit.editor->add_file(change.path.c_str(), parent, nullptr, SVN_INVALID_REVNUM, pool, &file));
  // Plain clients then keep the file read-only until it is locked.
  SVN_ERR(setProperty(edit, file, SVN_PROP_NEEDS_LOCK, SVN_PROP_NEEDS_LOCK_VALUE, pool));
  if (change.binary) SVN_ERR(setProperty(edit, file, SVN_PROP_MIME_TYPE, "application/octet-stream", pool));
  if (change.executable)
    SVN_ERR(setProperty(edit, file, SVN_PROP_EXECUTABLE, SVN_PROP_EXECUTABLE_VALUE, pool));
  SVN_ERR(sendContents(edit, change, file, pool));
  return edit.editor->close_file(file, nullptr, pool);
}

svn_error_t* copyItem(const Edit& edit, const PathChange& change, void* parent, void** folder,
                      apr_pool_t* pool) {
  const char* url = nullptr;
  SVN_ERR(svn_ra_get_session_url(edit.session, &url, pool));
  const char* source = svn_path_url_add_component2(url, change.source.c_str(), pool);
  if (change.folder)
    return edit.editor->add_directory(change.path.c_str(), parent, source, change.sourceRevision, pool,
                                      folder);
  void* file = nullptr;
  SVN_ERR(edit.editor->add_file(change.path.c_str(), parent, source, change.sourceRevision, pool, &file));
  return edit.editor->close_file(file, nullptr, pool);
}

svn_error_t* markRoot(const Edit& edit, void** folder, apr_pool_t* pool) {
  SVN_ERR(edit.editor->open_root(edit.baton, edit.newest, pool, folder));
  const std::string value = std::to_string(edit.newest);
  return edit.editor->change_dir_prop(*folder, "forgeyard:last-mark", svn_string_create(value.c_str(), pool),
                                      pool);
}

svn_error_t* changePath(void** folder, const svn_delta_editor_t*, void*, void* parent, void* baton,
                        const char* path, apr_pool_t* pool) {
  using Kind = PathChange::Kind;
  const Edit& edit = *static_cast<const Edit*>(baton);
  *folder = nullptr;
  for (const PathChange& change : edit.request.changes) {
    if (change.path != path) continue;
    switch (change.kind) {
      case Kind::Store:
        return storeFile(edit, change, parent, pool);
      case Kind::AddFile:
        return addFile(edit, change, parent, pool);
      case Kind::AddFolder:
        return edit.editor->add_directory(path, parent, nullptr, SVN_INVALID_REVNUM, pool, folder);
      case Kind::Copy:
        return copyItem(edit, change, parent, folder, pool);
      case Kind::Delete:
        return edit.editor->delete_entry(path, change.base, parent, pool);
      case Kind::MarkRoot:
        return markRoot(edit, folder, pool);
    }
  }
  return SVN_NO_ERROR;
}

svn_error_t* keepRevision(const svn_commit_info_t* info, void* baton, apr_pool_t*) {
  *static_cast<svn_revnum_t*>(baton) = info->revision;
  return SVN_NO_ERROR;
}

std::string uniqueId() {
  std::random_device random;
  std::string id;
  for (int word = 0; word < 4; ++word) id += std::to_string(random()) + ".";
  return id + std::to_string(::getpid());
}

apr_hash_t* propertiesOf(const CommitRequest& request, const std::string& id, apr_pool_t* pool) {
  apr_hash_t* table = apr_hash_make(pool);
  const auto add = [&](const char* name, const std::string& value) {
    apr_hash_set(table, apr_pstrdup(pool, name), APR_HASH_KEY_STRING,
                 svn_string_ncreate(value.data(), value.size(), pool));
  };
  add(SVN_PROP_REVISION_LOG, request.comment);
  add(kCommitId, id);
  for (const auto& [name, value] : request.revisionProperties) add(name.c_str(), value);
  return table;
}

svn_revnum_t tryCommit(svn_ra_session_t* session, svn_revnum_t newest, const CommitRequest& request,
                       const std::string& id, apr_pool_t* pool) {
  Edit edit{request, session, newest};
  apr_hash_t* tokens = apr_hash_make(pool);
  for (const auto& [path, token] : request.lockTokens)
    apr_hash_set(tokens, path.c_str(), static_cast<apr_ssize_t>(path.size()), token.c_str());
  apr_array_header_t* paths =
      apr_array_make(pool, static_cast<int>(request.changes.size()), sizeof(const char*));
  for (const PathChange& change : request.changes) APR_ARRAY_PUSH(paths, const char*) = change.path.c_str();
  svn_revnum_t made = SVN_INVALID_REVNUM;
  check(svn_ra_get_commit_editor3(session, &edit.editor, &edit.baton, propertiesOf(request, id, pool),
                                  keepRevision, &made, tokens, request.keepLocks, pool));
  svn_error_t* error = svn_delta_path_driver3(edit.editor, edit.baton, paths, TRUE, changePath, &edit, pool);
  if (!error) error = edit.editor->close_edit(edit.baton, pool);
  if (error && !SVN_IS_VALID_REVNUM(made)) {
    svn_error_clear(edit.editor->abort_edit(edit.baton, pool));
    throw SvnError(error);
  }
  // What a hook says after the commit, or a lock that could not be released, doesn't undo it.
  svn_error_clear(error);
  return made;
}

struct Search {
  const std::string& id;
  svn_revnum_t found = SVN_INVALID_REVNUM;
};

svn_error_t* compareId(void* baton, svn_log_entry_t* entry, apr_pool_t*) {
  auto& search = *static_cast<Search*>(baton);
  const auto* value = static_cast<const svn_string_t*>(
      entry->revprops ? apr_hash_get(entry->revprops, kCommitId, APR_HASH_KEY_STRING) : nullptr);
  if (value && search.id == std::string_view(value->data, value->len)) search.found = entry->revision;
  return SVN_NO_ERROR;
}

// The revision that this commit has become; invalid if it hasn't.
svn_revnum_t findCommit(Connection& connection, svn_revnum_t before, const std::string& id) {
  const svn_revnum_t newest = connection.newest();
  if (newest <= before) return SVN_INVALID_REVNUM;
  return connection.read([&](svn_ra_session_t* session, apr_pool_t* pool) {
    Search search{id};
    apr_array_header_t* paths = apr_array_make(pool, 1, sizeof(const char*));
    APR_ARRAY_PUSH(paths, const char*) = "";
    apr_array_header_t* wanted = apr_array_make(pool, 1, sizeof(const char*));
    APR_ARRAY_PUSH(wanted, const char*) = kCommitId;
    check(svn_ra_get_log2(session, paths, newest, before + 1, 0, FALSE, FALSE, FALSE, wanted, compareId,
                          &search, pool));
    return search.found;
  });
}

}  // namespace

svn_revnum_t commit(Connection& connection, const CommitRequest& request) {
  const svn_revnum_t before = connection.newest();
  const std::string id = uniqueId();
  try {
    return connection.write([&](svn_ra_session_t* session, apr_pool_t* pool) {
      return tryCommit(session, before, request, id, pool);
    });
  } catch (const SvnError& error) {
    if (!error.connectionLost()) throw;
    svn_revnum_t made = SVN_INVALID_REVNUM;
    try {
      made = findCommit(connection, before, id);
    } catch (const SvnError&) {
      throw RepositoryError(std::string(error.what()) +
                            ". Whether the repository has stored the change can't be found out now");
    }
    if (!SVN_IS_VALID_REVNUM(made)) throw;
    return made;
  }
}

}  // namespace forgeyard::repository
