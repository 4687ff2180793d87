#include "workbench/merge/merge_projects.h"

#include <algorithm>
#include <set>

#include "workbench/merge/aligned_projects.h"
#include "workbench/merge/node_lists.h"

namespace forgeyard::workbench {

namespace {

using Fields = RecordNode::Fields;
using List = RecordNode::List;

// What makes a project of the values that were merged one by one.
class Assembly {
 public:
  Assembly(RecordNode& project, const AlignedProjects& sides, MergeLog& log)
      : project_(project), sides_(sides), log_(log) {}

  void finish() {
    placeFiles();
    dropConnections();
    completeSettings();
    settleNames();
    settleActive();
    nameComponentsInLog();
  }

 private:
  RecordNode* component(std::int64_t id) { return const_cast<RecordNode*>(componentWithId(project_, id)); }
  std::string nameOf(std::int64_t id) const {
    const RecordNode* found = componentWithId(project_, id);
    return found ? labelOf("components", *found) : "component " + std::to_string(id);
  }

  void placeFiles() {
    RecordNode files = *project_.find("files");
    std::erase_if(*project_.get<Fields>(), [](const RecordField& field) { return field.name == "files"; });
    for (RecordNode& file : *files.get<List>()) {
      RecordNode* list = filesOf(numberOf(file, "folder"));
      if (!list) {
        // Ours, which has removed the folder that theirs has moved it to, may have it elsewhere.
        const RecordNode* ours = itemNamed(sides_.ours, "files", "key", textOf(file, "key"));
        list = ours ? filesOf(numberOf(*ours, "folder")) : nullptr;
        log_.conflicts.push_back({labelOf("files", file), ours ? "(present)" : "(none)",
                                  "(its folder is removed)", ours ? "(moved)" : "(added)"});
      }
      if (!list) continue;
      std::erase_if(*file.get<Fields>(),
                    [](const RecordField& field) { return field.name == "key" || field.name == "folder"; });
      list->get<List>()->push_back(std::move(file));
    }
  }

  RecordNode* filesOf(std::int64_t folder) {
    RecordNode* found = component(folder);
    return found ? found->find("files") : nullptr;
  }

  // Two that are right on their sides may close a circle together, which nothing can build.
  void dropConnections() {
    RecordNode* connections = project_.find("connections");
    List kept;
    const List& ours = itemsOf(sides_.ours, "connections");
    std::set<std::string> dropped;
    for (const bool fromTheirs : {false, true}) {
      for (const RecordNode& one : *connections->get<List>()) {
        const bool isOurs = std::any_of(ours.begin(), ours.end(), [&](const RecordNode& other) {
          return keyOf("connections", other) == keyOf("connections", one);
        });
        if (isOurs == fromTheirs) continue;
        if (fromTheirs && leads(kept, numberOf(one, "to"), numberOf(one, "from"))) {
          dropped.insert(keyOf("connections", one));
          log_.conflicts.push_back(
              {labelOf("connections", one), "(none)", "it would close a circle", "(added)", endsOf(one)});
        } else {
          kept.push_back(one);
        }
      }
    }
    std::erase_if(*connections->get<List>(),
                  [&](const RecordNode& one) { return dropped.contains(keyOf("connections", one)); });
  }

  static bool leads(const List& connections, std::int64_t from, std::int64_t to) {
    std::vector<std::int64_t> pending{from};
    std::set<std::int64_t> seen;
    while (!pending.empty()) {
      const std::int64_t at = pending.back();
      pending.pop_back();
      if (at == to) return true;
      if (!seen.insert(at).second) continue;
      for (const RecordNode& one : connections) {
        if (numberOf(one, "from") == at) pending.push_back(numberOf(one, "to"));
      }
    }
    return false;
  }

  // A component of one side has no settings in a configuration of the other.
  void completeSettings() {
    for (RecordNode& one : *project_.find("components")->get<List>()) {
      RecordNode* settings = one.find("settings");
      if (!settings || settings->get<List>()->empty()) continue;
      const List known = *settings->get<List>();
      for (const RecordNode& configuration : itemsOf(project_, "configurations")) {
        const std::string name = textOf(configuration, "Name");
        if (!has(known, name) && !sides_.gaps.contains({numberOf(one, "Id"), name}))
          addSettings(one, *settings->get<List>(), modelOf(known), name);
      }
      if (componentWithId(sides_.base, numberOf(one, "Id"))) continue;
      eraseItems(one, "settings",
                 [&](const RecordNode& entry) { return !isConfiguration(textOf(entry, "configuration")); });
    }
  }

  static bool has(const List& settings, const std::string& name) {
    return std::any_of(settings.begin(), settings.end(),
                       [&](const RecordNode& entry) { return textOf(entry, "configuration") == name; });
  }
  bool isConfiguration(const std::string& name) const {
    return itemNamed(project_, "configurations", "Name", name);
  }
  // Those of a removed configuration, which may have got another name, else the first.
  const RecordNode& modelOf(const List& settings) const {
    const auto removed = std::find_if(settings.begin(), settings.end(), [&](const RecordNode& entry) {
      return !isConfiguration(textOf(entry, "configuration"));
    });
    return removed == settings.end() ? settings.front() : *removed;
  }

  void addSettings(const RecordNode& owner, List& settings, const RecordNode& model,
                   const std::string& name) {
    RecordNode entry = model;
    const std::string from = textOf(entry, "configuration");
    *entry.find("configuration") = {BString::fromNarrow(name)};
    if (RecordNode* dirty = entry.find("BuildDirty")) *dirty->get<std::int64_t>() = 1;
    settings.push_back(std::move(entry));
    log_.notes.push_back(labelOf("components", owner) + " has the settings of configuration \"" + from +
                         "\" in \"" + name +
                         "\" too: it comes from one side, the configuration from the other");
  }

  // Each side has names that differ; together they may not.
  void settleNames() {
    List& components = *project_.find("components")->get<List>();
    const auto isNamed = [](const std::string& name) {
      return [name](const RecordNode& one) { return textOf(one, "Name") == name; };
    };
    for (RecordNode& one : components) {
      const std::string name = textOf(one, "Name");
      const RecordNode* inOurs = componentWithId(sides_.ours, numberOf(one, "Id"));
      const bool isOurs = inOurs && textOf(*inOurs, "Name") == name;
      if (isOurs || std::count_if(components.begin(), components.end(), isNamed(name)) < 2) continue;
      std::string free;
      for (int number = 2; free.empty() || std::any_of(components.begin(), components.end(), isNamed(free));
           ++number)
        free = std::string(name).append(" ").append(std::to_string(number));
      *one.find("Name") = {BString::fromNarrow(free)};
      tellNewName(name, free);
    }
  }

  void tellNewName(const std::string& name, const std::string& now) {
    log_.notes.push_back("component " + quoted(name) + " of theirs is " + quoted(now) +
                         " now: the name is taken");
  }

  void settleActive() {
    RecordNode* active = project_.find("active");
    const List& configurations = itemsOf(project_, "configurations");
    if (!active || configurations.empty() || isConfiguration(textOf(project_, "active"))) return;
    for (const RecordNode* side : {&sides_.ours, &sides_.theirs}) {
      if (isConfiguration(textOf(*side, "active"))) {
        *active = *side->find("active");
        return;
      }
    }
    *active = *configurations.front().find("Name");
    log_.notes.push_back("configuration " + quoted(textOf(project_, "active")) +
                         " is active: the active one was removed");
  }

  static std::string quoted(const std::string& name) { return "\"" + name + "\""; }

  // Ids mean nothing to people.
  void nameComponentsInLog() {
    for (MergeConflict& conflict : log_.conflicts) {
      if (const auto& ends = conflict.connection)
        conflict.where = "connection from " + nameOf(ends->first) + " to " + nameOf(ends->second);
      if (!conflict.where.ends_with(", folder")) continue;
      for (std::string* value : {&conflict.base, &conflict.ours, &conflict.theirs}) {
        if (!value->empty() && value->find_first_not_of("0123456789") == std::string::npos)
          *value = nameOf(std::stoll(*value));
      }
    }
  }

  RecordNode& project_;
  const AlignedProjects& sides_;
  MergeLog& log_;
};

}  // namespace

RecordNode mergedProject(const RecordNode& base, const RecordNode& ours, const RecordNode& theirs,
                         MergeLog& log) {
  const AlignedProjects sides = alignedProjects(base, ours, theirs, log);
  RecordNode merged = mergedValue("", {&sides.base, &sides.ours, &sides.theirs}, "", log);
  Assembly(merged, sides, log).finish();
  return merged;
}

}  // namespace forgeyard::workbench
