#include "workbench/merge/removed_configurations.h"

#include <algorithm>

#include "workbench/merge/node_lists.h"

namespace forgeyard::workbench {

namespace {

using List = RecordNode::List;

class Configurations {
 public:
  Configurations(RecordNode& base, RecordNode& ours, RecordNode& theirs, MergeLog& log)
      : base_(base), ours_(ours), theirs_(theirs), log_(log) {}

  void settle() {
    const bool theirsHasSome = !itemsOf(theirs_, "configurations").empty();
    std::vector<std::string> goneFromOurs;
    std::vector<std::string> goneFromTheirs;
    for (const RecordNode& old : itemsOf(base_, "configurations")) {
      const std::string name = textOf(old, "Name");
      if (!record(ours_, name)) {
        goneFromOurs.push_back(name);
      } else if (!record(theirs_, name)) {
        goneFromTheirs.push_back(name);
      }
    }
    for (const std::string& name : goneFromOurs) {
      if (record(theirs_, name) && isChanged(theirs_, name)) tell(name, "(removed)", "(changed)");
      remove(name);
    }
    for (const std::string& name : goneFromTheirs) {
      // Each side may have left another one.
      const bool isLast = theirsHasSome && itemsOf(theirs_, "configurations").empty() &&
                          itemsOf(ours_, "configurations").size() == 1;
      if (isLast || isChanged(ours_, name)) {
        tell(name, isLast ? "(the last one)" : "(changed)", "(removed)");
        bringBack(name);
      } else {
        remove(name);
      }
    }
  }

 private:
  void tell(const std::string& name, const char* ours, const char* theirs) {
    log_.conflicts.push_back({"configuration \"" + name + "\"", "(present)", ours, theirs});
  }
  static auto ofConfiguration(const std::string& name) {
    return [name](const RecordNode& entry) { return textOf(entry, "configuration") == name; };
  }
  static const RecordNode* record(const RecordNode& project, const std::string& name) {
    return itemNamed(project, "configurations", "Name", name);
  }

  bool isChanged(const RecordNode& project, const std::string& name) const {
    if (!sameEntered(*record(base_, name), *record(project, name))) return true;
    const List& components = itemsOf(base_, "components");
    return std::any_of(components.begin(), components.end(), [&](const RecordNode& component) {
      const RecordNode* now = componentWithId(project, numberOf(component, "Id"));
      const RecordNode* old = findItem(component, "settings", ofConfiguration(name));
      const RecordNode* entry = now ? findItem(*now, "settings", ofConfiguration(name)) : nullptr;
      return old && entry && !sameEntered(*old, *entry);
    });
  }

  void remove(const std::string& name) {
    for (RecordNode* project : {&base_, &ours_, &theirs_}) {
      eraseItems(*project, "configurations",
                 [&](const RecordNode& item) { return textOf(item, "Name") == name; });
      for (RecordNode& component : listIn(*project, "components")) {
        if (componentWithId(base_, numberOf(component, "Id")))
          eraseItems(component, "settings", ofConfiguration(name));
      }
    }
  }

  void bringBack(const std::string& name) {
    listIn(theirs_, "configurations").push_back(*record(base_, name));
    for (const RecordNode& component : itemsOf(base_, "components")) {
      const RecordNode* old = findItem(component, "settings", ofConfiguration(name));
      for (RecordNode& other : listIn(theirs_, "components")) {
        if (old && numberOf(other, "Id") == numberOf(component, "Id") &&
            !findItem(other, "settings", ofConfiguration(name)))
          listIn(other, "settings").push_back(*old);
      }
    }
  }

  RecordNode& base_;
  RecordNode& ours_;
  RecordNode& theirs_;
  MergeLog& log_;
};

}  // namespace

void settleRemovedConfigurations(RecordNode& base, RecordNode& ours, RecordNode& theirs, MergeLog& log) {
  Configurations(base, ours, theirs, log).settle();
}

}  // namespace forgeyard::workbench
