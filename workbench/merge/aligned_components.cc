#include "workbench/merge/aligned_components.h"

#include <algorithm>

#include "workbench/merge/node_lists.h"

namespace forgeyard::workbench {

namespace {

class Components {
 public:
  Components(RecordNode& base, RecordNode& ours, RecordNode& theirs, MergeLog& log)
      : base_(base), ours_(ours), theirs_(theirs), log_(log) {}

  void align() {
    forgetReusedIds();
    adoptNewOnes();
  }

 private:
  static bool isSameKind(const RecordNode& a, const RecordNode& b) {
    return textOf(a, "clsid") == textOf(b, "clsid");
  }

  // Where an id has come to mean another component it is a new one.
  void forgetReusedIds() {
    eraseItems(base_, "components", [&](const RecordNode& old) {
      const RecordNode* now = componentWithId(ours_, numberOf(old, "Id"));
      return now && !isSameKind(*now, old);
    });
  }

  std::int64_t freeId() {
    std::int64_t next = 0;
    for (const RecordNode* project : {&base_, &ours_, &theirs_}) {
      if (const RecordNode* settings = project->find("settings"))
        next = std::max(next, numberOf(*settings, "NextComponentId"));
      for (const RecordNode& component : itemsOf(*project, "components"))
        next = std::max(next, numberOf(component, "Id") + 1);
    }
    return next;
  }

  bool isNewInTheirs(const RecordNode& candidate) const {
    const RecordNode* old = componentWithId(base_, numberOf(candidate, "Id"));
    return !old || !isSameKind(*old, candidate);
  }

  // Both may have given the same number to different components, or made the same one under different
  // numbers.
  void adoptNewOnes() {
    for (const RecordNode& candidate : itemsOf(theirs_, "components")) {
      if (!isNewInTheirs(candidate)) continue;
      const std::int64_t id = numberOf(candidate, "Id");
      const RecordNode* twin = findItem(ours_, "components", [&](const RecordNode& other) {
        return !componentWithId(base_, numberOf(other, "Id")) && isSameKind(other, candidate) &&
               textOf(other, "Name") == textOf(candidate, "Name");
      });
      if (twin) {
        renumber(id, numberOf(*twin, "Id"));
      } else if (componentWithId(ours_, id) || componentWithId(base_, id)) {
        const std::int64_t free = freeId();
        log_.notes.push_back(labelOf("components", candidate) + " of theirs has the number " +
                             std::to_string(free) + " now: " + std::to_string(id) + " is taken");
        renumber(id, free);
      }
    }
    for (RecordNode& candidate : listIn(theirs_, "components")) takeFreeElement(candidate);
  }

  // In theirs.
  void renumber(std::int64_t id, std::int64_t now) {
    if (id == now) return;
    // Who has the number there gives way first.
    if (componentWithId(theirs_, now)) renumber(now, freeId());
    for (RecordNode& one : listIn(theirs_, "components")) {
      if (numberOf(one, "Id") == id) setField(one, "Id", {now});
    }
    for (RecordNode& connection : listIn(theirs_, "connections")) {
      for (const char* end : {"from", "to"}) {
        if (numberOf(connection, end) == id) setField(connection, end, {now});
      }
    }
    if (RecordNode* settings = theirs_.find("settings")) {
      auto& next = *settings->find("NextComponentId")->get<std::int64_t>();
      next = std::max(next, now + 1);
    }
  }

  // Names of storages say nothing, but each has one of its own.
  void takeFreeElement(RecordNode& candidate) {
    if (const RecordNode* same = componentWithId(ours_, numberOf(candidate, "Id"))) {
      setField(candidate, "element", *same->find("element"));
      return;
    }
    std::int64_t number = numberOf(candidate, "Id");
    const auto taken = [&](const std::string& name) {
      const auto isNamed = [&](const RecordNode& other) {
        return &other != &candidate && textOf(other, "element") == name;
      };
      return findItem(ours_, "components", isNamed) || findItem(theirs_, "components", isNamed);
    };
    if (!taken(textOf(candidate, "element"))) return;
    std::string name = "Component" + std::to_string(number);
    while (taken(name)) name = "Component" + std::to_string(++number);
    setField(candidate, "element", {BString::fromNarrow(name)});
  }

  RecordNode& base_;
  RecordNode& ours_;
  RecordNode& theirs_;
  MergeLog& log_;
};

}  // namespace

void alignComponents(RecordNode& base, RecordNode& ours, RecordNode& theirs, MergeLog& log) {
  Components(base, ours, theirs, log).align();
}

}  // namespace forgeyard::workbench
