#include "workbench/merge/removed_components.h"

#include <algorithm>

#include "workbench/merge/node_lists.h"

namespace forgeyard::workbench {

namespace {

class Components {
 public:
  Components(RecordNode& base, RecordNode& ours, RecordNode& theirs, MergeLog& log)
      : base_(base), ours_(ours), theirs_(theirs), log_(log) {}

  void settle() {
    std::vector<std::int64_t> ids;
    for (const RecordNode& old : itemsOf(base_, "components")) ids.push_back(numberOf(old, "Id"));
    for (const std::int64_t id : ids) {
      const RecordNode old = *componentWithId(base_, id);
      const RecordNode* ours = componentWithId(ours_, id);
      const RecordNode* theirs = componentWithId(theirs_, id);
      if (ours && theirs) continue;
      const std::string name = labelOf("components", old);
      if (!ours && theirs && !sameEntered(old, *theirs))
        log_.conflicts.push_back({name, "(present)", "(removed)", "(changed)"});
      if (!ours) {
        tellNewConnections(theirs_, id, name);
        remove(id);
      } else if (sameEntered(old, *ours) && !hasNewConnections(ours_, id) && !holdsFiles(id)) {
        remove(id);
      } else {
        log_.conflicts.push_back({name, "(present)", "(changed)", "(removed)"});
        bringBack(old, id);
      }
    }
  }

 private:
  static bool touches(const RecordNode& connection, std::int64_t id) {
    return numberOf(connection, "from") == id || numberOf(connection, "to") == id;
  }
  static const RecordNode* fileWithKey(const RecordNode& project, const RecordNode& like) {
    return itemNamed(project, "files", "key", textOf(like, "key"));
  }

  bool isNewConnection(const RecordNode& connection) const {
    return !findItem(base_, "connections", [&](const RecordNode& old) {
      return keyOf("connections", old) == keyOf("connections", connection);
    });
  }
  bool hasNewConnections(const RecordNode& project, std::int64_t id) const {
    return findItem(project, "connections", [&](const RecordNode& connection) {
      return touches(connection, id) && isNewConnection(connection);
    });
  }
  void tellNewConnections(const RecordNode& project, std::int64_t id, const std::string& name) {
    for (const RecordNode& connection : itemsOf(project, "connections")) {
      if (touches(connection, id) && isNewConnection(connection))
        log_.conflicts.push_back({labelOf("connections", connection), "(none)", name + " is removed",
                                  "(added)", endsOf(connection)});
    }
  }

  // Whether a file that ours has added, changed or brought there would stay in the folder.
  bool holdsFiles(std::int64_t id) const {
    return findItem(ours_, "files", [&](const RecordNode& file) {
      if (numberOf(file, "folder") != id) return false;
      const RecordNode* old = fileWithKey(base_, file);
      if (!old || numberOf(*old, "folder") != id) return true;
      return !fileWithKey(theirs_, file) && !sameEntered(*old, file);
    });
  }

  void remove(std::int64_t id) {
    for (RecordNode* project : {&base_, &ours_, &theirs_}) {
      eraseItems(*project, "components", [&](const RecordNode& one) { return numberOf(one, "Id") == id; });
      eraseItems(*project, "connections", [&](const RecordNode& one) { return touches(one, id); });
    }
  }

  // Into theirs, as it was: what ours has made of it stays. Files that theirs has moved away stay moved.
  void bringBack(const RecordNode& old, std::int64_t id) {
    listIn(theirs_, "components").push_back(old);
    for (const RecordNode& connection : itemsOf(base_, "connections")) {
      if (touches(connection, id)) listIn(theirs_, "connections").push_back(connection);
    }
    for (const RecordNode& file : itemsOf(base_, "files")) {
      if (numberOf(file, "folder") == id && !fileWithKey(theirs_, file))
        listIn(theirs_, "files").push_back(file);
    }
  }

  RecordNode& base_;
  RecordNode& ours_;
  RecordNode& theirs_;
  MergeLog& log_;
};

}  // namespace

void settleRemovedComponents(RecordNode& base, RecordNode& ours, RecordNode& theirs, MergeLog& log) {
  Components(base, ours, theirs, log).settle();
}

}  // namespace forgeyard::workbench
