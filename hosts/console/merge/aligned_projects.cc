#include "hosts/console/merge/aligned_projects.h"

#include <algorithm>
#include <set>

#include "hosts/console/merge/merge_values.h"

namespace forgeyard::console {

namespace {

using Fields = RecordNode::Fields;
using List = RecordNode::List;

List& listIn(RecordNode& node, std::string_view field) {
  RecordNode* found = node.find(field);
  if (!found) {
    node.add(std::string(field), {List{}});
    found = node.find(field);
  }
  return *found->get<List>();
}

template <class Match>
const RecordNode* findItem(const RecordNode& node, std::string_view field, Match&& match) {
  const List& items = itemsOf(node, field);
  const auto found = std::find_if(items.begin(), items.end(), match);
  return found == items.end() ? nullptr : &*found;
}

template <class Match>
void eraseItems(RecordNode& node, std::string_view field, Match&& match) {
  if (RecordNode* list = node.find(field)) std::erase_if(*list->get<List>(), match);
}

void set(RecordNode& node, std::string_view field, RecordNode value) {
  *node.find(field) = std::move(value);
}

// Leftovers of older records mean nothing, and so would a merge of them.
void dropLeftovers(RecordNode& node) {
  auto* fields = node.get<Fields>();
  RecordNode* streams = node.find("streams");
  if (!streams) return;
  eraseItems(node, "streams", [](const RecordNode& item) { return item.learnt; });
  if (itemsOf(node, "streams").empty())
    std::erase_if(*fields, [](const RecordField& field) { return field.name == "streams"; });
}

class Components {
 public:
  Components(RecordNode& base, RecordNode& ours, RecordNode& theirs, MergeLog& log)
      : base_(base), ours_(ours), theirs_(theirs), log_(log) {}

  void align() {
    forgetReusedIds();
    adoptNewOnes();
    settleRemoved();
  }

 private:
  static auto withId(std::int64_t id) {
    return [id](const RecordNode& component) { return numberOf(component, "Id") == id; };
  }
  static const RecordNode* component(const RecordNode& project, std::int64_t id) {
    return findItem(project, "components", withId(id));
  }
  static bool touches(const RecordNode& connection, std::int64_t id) {
    return numberOf(connection, "from") == id || numberOf(connection, "to") == id;
  }
  static bool isSameKind(const RecordNode& a, const RecordNode& b) {
    return textOf(a, "clsid") == textOf(b, "clsid");
  }

  // Where an id has come to mean another component it is a new one.
  void forgetReusedIds() {
    eraseItems(base_, "components", [&](const RecordNode& old) {
      const RecordNode* now = component(ours_, numberOf(old, "Id"));
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
    const RecordNode* old = component(base_, numberOf(candidate, "Id"));
    return !old || !isSameKind(*old, candidate);
  }

  // Both may have given the same number to different components, or made the same one under different
  // numbers.
  void adoptNewOnes() {
    for (const RecordNode& candidate : itemsOf(theirs_, "components")) {
      if (!isNewInTheirs(candidate)) continue;
      const std::int64_t id = numberOf(candidate, "Id");
      const RecordNode* twin = findItem(ours_, "components", [&](const RecordNode& other) {
        return !component(base_, numberOf(other, "Id")) && isSameKind(other, candidate) &&
               textOf(other, "Name") == textOf(candidate, "Name");
      });
      if (twin) {
        renumber(id, numberOf(*twin, "Id"));
      } else if (component(ours_, id) || component(base_, id)) {
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
    if (component(theirs_, now)) renumber(now, freeId());
    for (RecordNode& one : listIn(theirs_, "components")) {
      if (numberOf(one, "Id") == id) set(one, "Id", {now});
    }
    for (RecordNode& connection : listIn(theirs_, "connections")) {
      for (const char* end : {"from", "to"}) {
        if (numberOf(connection, end) == id) set(connection, end, {now});
      }
    }
    if (RecordNode* settings = theirs_.find("settings")) {
      auto& next = *settings->find("NextComponentId")->get<std::int64_t>();
      next = std::max(next, now + 1);
    }
  }

  // Names of storages say nothing, but each has one of its own.
  void takeFreeElement(RecordNode& candidate) {
    if (const RecordNode* same = component(ours_, numberOf(candidate, "Id"))) {
      set(candidate, "element", *same->find("element"));
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
    set(candidate, "element", {BString::fromNarrow(name)});
  }

  void settleRemoved() {
    std::vector<std::int64_t> ids;
    for (const RecordNode& old : itemsOf(base_, "components")) ids.push_back(numberOf(old, "Id"));
    for (const std::int64_t id : ids) {
      const RecordNode old = *component(base_, id);
      const RecordNode* ours = component(ours_, id);
      const RecordNode* theirs = component(theirs_, id);
      if (ours && theirs) continue;
      const std::string name = labelOf("components", old);
      if (!ours && theirs && !sameEntered(old, *theirs))
        log_.conflicts.push_back({name, "(present)", "(removed)", "(changed)"});
      if (!ours) {
        tellNewConnections(theirs_, id, name);
        remove(id);
      } else if (sameEntered(old, *ours) && !hasNewConnections(ours_, id)) {
        remove(id);
      } else {
        log_.conflicts.push_back({name, "(present)", "(changed)", "(removed)"});
        bringBack(old, id);
      }
    }
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
        log_.conflicts.push_back(
            {labelOf("connections", connection), "(none)", name + " is removed", "(added)"});
    }
  }

  void remove(std::int64_t id) {
    for (RecordNode* project : {&base_, &ours_, &theirs_}) {
      eraseItems(*project, "components", withId(id));
      eraseItems(*project, "connections", [&](const RecordNode& one) { return touches(one, id); });
    }
  }

  // Into theirs, as it was: what ours has made of it stays.
  void bringBack(const RecordNode& old, std::int64_t id) {
    listIn(theirs_, "components").push_back(old);
    for (const RecordNode& connection : itemsOf(base_, "connections")) {
      if (touches(connection, id)) listIn(theirs_, "connections").push_back(connection);
    }
  }

  RecordNode& base_;
  RecordNode& ours_;
  RecordNode& theirs_;
  MergeLog& log_;
};

// A configuration is its record and the settings of each component in it.
class Configurations {
 public:
  Configurations(RecordNode& base, RecordNode& ours, RecordNode& theirs, MergeLog& log)
      : base_(base), ours_(ours), theirs_(theirs), log_(log) {}

  void settleRemoved() {
    std::vector<std::string> names;
    for (const RecordNode& old : itemsOf(base_, "configurations")) names.push_back(textOf(old, "Name"));
    for (const std::string& name : names) {
      const bool inOurs = record(ours_, name) != nullptr;
      const bool inTheirs = record(theirs_, name) != nullptr;
      if (inOurs && inTheirs) continue;
      const std::string label = "configuration \"" + name + "\"";
      if (!inOurs) {
        if (inTheirs && isChanged(theirs_, name))
          log_.conflicts.push_back({label, "(present)", "(removed)", "(changed)"});
        remove(name);
      } else if (isChanged(ours_, name)) {
        log_.conflicts.push_back({label, "(present)", "(changed)", "(removed)"});
        bringBack(name);
      } else {
        remove(name);
      }
    }
  }

 private:
  static auto named(const std::string& name) {
    return [name](const RecordNode& item) { return textOf(item, "Name") == name; };
  }
  static auto ofConfiguration(const std::string& name) {
    return [name](const RecordNode& entry) { return textOf(entry, "configuration") == name; };
  }
  static const RecordNode* record(const RecordNode& project, const std::string& name) {
    return findItem(project, "configurations", named(name));
  }

  bool isChanged(const RecordNode& project, const std::string& name) const {
    if (!sameEntered(*record(base_, name), *record(project, name))) return true;
    const List& components = itemsOf(base_, "components");
    return std::any_of(components.begin(), components.end(), [&](const RecordNode& component) {
      const RecordNode* now = findItem(project, "components", [&](const RecordNode& other) {
        return numberOf(other, "Id") == numberOf(component, "Id");
      });
      const RecordNode* old = findItem(component, "settings", ofConfiguration(name));
      const RecordNode* entry = now ? findItem(*now, "settings", ofConfiguration(name)) : nullptr;
      return old && entry && !sameEntered(*old, *entry);
    });
  }

  void remove(const std::string& name) {
    for (RecordNode* project : {&base_, &ours_, &theirs_}) {
      eraseItems(*project, "configurations", named(name));
      for (RecordNode& component : listIn(*project, "components"))
        eraseItems(component, "settings", ofConfiguration(name));
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

// Takes the files out of the folders.
List takeFiles(RecordNode& project) {
  List files;
  for (RecordNode& component : listIn(project, "components")) {
    RecordNode* own = component.find("files");
    if (!own) continue;
    for (RecordNode& file : *own->get<List>()) {
      file.add("folder", {numberOf(component, "Id")});
      files.push_back(std::move(file));
    }
    own->get<List>()->clear();
  }
  return files;
}

std::string fileKey(const RecordNode& file, std::size_t number) {
  return textOf(file, "PersistAs") + "\n" + std::to_string(number);
}

void nameBaseFiles(List& files) {
  std::map<std::string, std::size_t> seen;
  for (RecordNode& file : files) {
    const std::size_t number = seen[textOf(file, "PersistAs")]++;
    file.add("key", {BString::fromNarrow(fileKey(file, number))});
  }
}

// A file is the one that stood in the same folder, else one that has left another folder, else a new one.
void nameSideFiles(List& files, const List& base) {
  std::map<std::string, std::vector<const RecordNode*>> oldFiles;
  for (const RecordNode& old : base) oldFiles[textOf(old, "PersistAs")].push_back(&old);
  std::set<std::string> taken;
  const auto claim = [&](RecordNode& file, bool sameFolder) {
    if (file.find("key")) return;
    for (const RecordNode* old : oldFiles[textOf(file, "PersistAs")]) {
      const std::string key = textOf(*old, "key");
      if (sameFolder && numberOf(*old, "folder") != numberOf(file, "folder")) continue;
      if (!taken.insert(key).second) continue;
      file.add("key", {BString::fromNarrow(key)});
      return;
    }
  };
  for (RecordNode& file : files) claim(file, true);
  for (RecordNode& file : files) claim(file, false);
  for (RecordNode& file : files) {
    if (file.find("key")) continue;
    std::size_t number = base.size();
    while (!taken.insert(fileKey(file, number)).second) ++number;
    file.add("key", {BString::fromNarrow(fileKey(file, number))});
  }
}

}  // namespace

AlignedProjects alignedProjects(RecordNode base, RecordNode ours, RecordNode theirs, MergeLog& log) {
  for (RecordNode* project : {&base, &ours, &theirs}) {
    dropLeftovers(*project);
    for (RecordNode& component : listIn(*project, "components")) dropLeftovers(component);
  }
  Components(base, ours, theirs, log).align();
  Configurations(base, ours, theirs, log).settleRemoved();
  List oldFiles = takeFiles(base);
  nameBaseFiles(oldFiles);
  for (RecordNode* project : {&ours, &theirs}) {
    List files = takeFiles(*project);
    nameSideFiles(files, oldFiles);
    project->add("files", {std::move(files)});
  }
  base.add("files", {std::move(oldFiles)});
  return {std::move(base), std::move(ours), std::move(theirs)};
}

}  // namespace forgeyard::console
