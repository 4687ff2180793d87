#include "workbench/merge/merge_values.h"

#include <algorithm>
#include <array>
#include <map>
#include <optional>

#include "workbench/merge/merged_order.h"
#include "workbench/text/json_writer.h"

namespace forgeyard::workbench {

namespace {

using Fields = RecordNode::Fields;
using List = RecordNode::List;

// Lists of records with what tells their items apart and what an item is called.
struct RecordList {
  std::string_view name;
  std::array<std::string_view, 2> keys;  // the second may be empty
  const char* label;
  std::string_view shown;  // the field that names an item to people
};
constexpr std::array kRecordLists{
    RecordList{"configurations", {"Name", ""}, "configuration", "Name"},
    RecordList{"components", {"Id", ""}, "component", "Name"},
    RecordList{"settings", {"configuration", ""}, "configuration", "configuration"},
    RecordList{"files", {"key", ""}, "file", "PersistAs"},
    RecordList{"connections", {"from", "to"}, "connection", ""},
    RecordList{"streams", {"name", ""}, "stream", "name"},
    RecordList{"storages", {"element", ""}, "storage", "element"},
};

const RecordList* recordList(std::string_view name) {
  const auto found = std::find_if(kRecordLists.begin(), kRecordLists.end(),
                                  [&](const RecordList& list) { return list.name == name; });
  return found == kRecordLists.end() ? nullptr : &*found;
}

// Counts up, whoever does it.
bool isCounter(std::string_view name) {
  return name.ends_with("version") || name == "NextComponentId";
}

bool isLearnt(const RecordField& field) {
  return field.node.learnt || isCounter(field.name);
}

bool equal(const RecordNode* a, const RecordNode* b) {
  return a && b ? *a == *b : a == b;
}

std::string shown(const RecordNode* node) {
  if (!node) return "(none)";
  return node->get<Fields>() ? "(present)" : valueAsJson(*node);
}

// What is left of `sides` by the rule of three; null for nothing.
const RecordNode* chosen(const Sides& sides, bool& conflict) {
  conflict =
      !equal(sides.ours, sides.theirs) && !equal(sides.base, sides.ours) && !equal(sides.base, sides.theirs);
  return equal(sides.base, sides.ours) ? sides.theirs : sides.ours;
}

// A pair of a name and a value.
bool isPair(const RecordNode& item) {
  const auto* list = item.get<List>();
  return list && list->size() == 2;
}

RecordNode mergedLearnt(const Sides& sides) {
  if (const auto* flag = sides.ours->get<bool>(); flag && sides.theirs->get<bool>())
    return {*flag || *sides.theirs->get<bool>()};
  if (const auto* number = sides.ours->get<std::int64_t>(); number && sides.theirs->get<std::int64_t>())
    return {std::max(*number, *sides.theirs->get<std::int64_t>())};
  if (sides.ours->get<List>() && sides.theirs->get<List>()) {
    RecordNode all = *sides.ours;
    for (const RecordNode& item : *sides.theirs->get<List>()) {
      auto& list = *all.get<List>();
      if (std::find(list.begin(), list.end(), item) == list.end()) list.push_back(item);
    }
    return all;
  }
  bool conflict = false;
  return *chosen(sides, conflict);
}

// The keys of a list's items; the same key again counts as another one.
Keys keysOf(std::string_view name, const RecordNode* list) {
  Keys keys;
  std::map<std::string, int> seen;
  const List* items = list ? list->get<List>() : nullptr;
  if (!items) return keys;
  for (const RecordNode& item : *items) {
    const std::string key = keyOf(name, item);
    const int times = seen[key]++;
    keys.push_back(times == 0 ? key : key + "\n" + std::to_string(times));
  }
  return keys;
}

class ListMerger {
 public:
  ListMerger(std::string_view name, const Sides& sides, const std::string& where, MergeLog& log)
      : name_(name), where_(where), log_(log) {
    index(sides.base, base_);
    index(sides.ours, ours_);
    index(sides.theirs, theirs_);
    order_ = mergedOrder(keysOf(name, sides.base), keysOf(name, sides.ours), keysOf(name, sides.theirs));
  }

  List merged() {
    List result;
    for (const std::string& key : order_) {
      const Sides sides{at(base_, key), at(ours_, key), at(theirs_, key)};
      const std::size_t before = log_.conflicts.size();
      std::optional<RecordNode> item = mergedItem(sides);
      if (name_ == "connections") nameEnds(sides.ours ? *sides.ours : *sides.theirs, before);
      if (item) result.push_back(std::move(*item));
    }
    return result;
  }

 private:
  using Index = std::map<std::string, const RecordNode*>;

  void index(const RecordNode* list, Index& out) const {
    const Keys keys = keysOf(name_, list);
    for (std::size_t i = 0; i < keys.size(); ++i) out[keys[i]] = &(*list->get<List>())[i];
  }
  static const RecordNode* at(const Index& index, const std::string& key) {
    const auto found = index.find(key);
    return found == index.end() ? nullptr : found->second;
  }

  // In the conflicts over a connection from that one on.
  void nameEnds(const RecordNode& connection, std::size_t from) {
    for (std::size_t at = from; at < log_.conflicts.size(); ++at)
      log_.conflicts[at].connection = endsOf(connection);
  }

  std::optional<RecordNode> mergedItem(const Sides& sides) {
    const RecordNode& any = sides.ours ? *sides.ours : *sides.theirs;
    const std::string where = (where_.empty() ? "" : where_ + ", ") + labelOf(name_, any);
    if (sides.ours && sides.theirs) return isPair(any) ? mergedPair(sides, where) : mergedBoth(sides, where);
    if (!sides.base) return any;
    if (sameEntered(*sides.base, any)) return std::nullopt;
    const bool oursRemoved = !sides.ours;
    log_.conflicts.push_back({where, "(present)", oursRemoved ? "(removed)" : "(changed)",
                              oursRemoved ? "(changed)" : "(removed)"});
    return oursRemoved ? std::nullopt : std::optional(any);
  }

  // Items of a list of plain values are their own key.
  RecordNode mergedBoth(const Sides& sides, const std::string& where) {
    return sides.ours->get<Fields>() ? mergedValue("", sides, where, log_) : *sides.ours;
  }

  RecordNode mergedPair(const Sides& sides, const std::string& where) {
    bool conflict = false;
    const RecordNode* pair = chosen(sides, conflict);
    const auto value = [](const RecordNode* node) {
      return node ? shown(&node->get<List>()->at(1)) : "(none)";
    };
    if (conflict)
      log_.conflicts.push_back({where, value(sides.base), value(sides.ours), value(sides.theirs)});
    return *pair;
  }

  std::string_view name_;
  const std::string& where_;
  MergeLog& log_;
  Index base_;
  Index ours_;
  Index theirs_;
  Keys order_;
};

// What was built of ours isn't what the merged settings ask for.
void markDirty(RecordNode& merged, const RecordNode& ours) {
  RecordNode* dirty = merged.find("BuildDirty");
  if (!dirty || sameEntered(merged, ours)) return;
  if (bool* flag = dirty->get<bool>()) *flag = true;
  if (auto* number = dirty->get<std::int64_t>()) *number = 1;
}

// Items of record lists have a label of their own.
std::string placeOf(const std::string& name, const Sides& field, const std::string& where) {
  if (name == "settings" && where.empty()) return "project";
  if (field.ours && field.ours->get<List>() && (recordList(name) || name == "cookies")) return where;
  return where.empty() ? name : where + ", " + name;
}

RecordNode mergedFields(const Sides& sides, const std::string& where, MergeLog& log) {
  RecordNode merged{Fields{}};
  std::vector<std::string> names;
  for (const RecordNode* side : {sides.ours, sides.theirs}) {
    for (const RecordField& field : *side->get<Fields>()) {
      if (std::find(names.begin(), names.end(), field.name) == names.end()) names.push_back(field.name);
    }
  }
  for (const std::string& name : names) {
    const Sides field = sides.field(name);
    const std::string place = placeOf(name, field, where);
    if (field.ours && field.theirs) {
      merged.add(name, mergedValue(name, field, place, log));
      continue;
    }
    bool conflict = false;
    const RecordNode* value = chosen(field, conflict);
    if (conflict) log.conflicts.push_back({place, shown(field.base), shown(field.ours), shown(field.theirs)});
    if (value) merged.add(name, *value);
  }
  markDirty(merged, *sides.ours);
  return merged;
}

}  // namespace

bool sameEntered(const RecordNode& a, const RecordNode& b) {
  const auto* fieldsOfA = a.get<Fields>();
  const auto* fieldsOfB = b.get<Fields>();
  if (fieldsOfA && fieldsOfB) {
    const auto within = [](const Fields& some, const RecordNode& other) {
      return std::all_of(some.begin(), some.end(), [&](const RecordField& field) {
        if (isLearnt(field)) return true;
        const RecordNode* same = other.find(field.name);
        return same && sameEntered(field.node, *same);
      });
    };
    return within(*fieldsOfA, b) && within(*fieldsOfB, a);
  }
  const auto* listOfA = a.get<List>();
  const auto* listOfB = b.get<List>();
  if (listOfA && listOfB)
    return std::equal(listOfA->begin(), listOfA->end(), listOfB->begin(), listOfB->end(), sameEntered);
  return a == b;
}

RecordNode mergedValue(std::string_view name, const Sides& sides, const std::string& where, MergeLog& log) {
  RecordNode merged;
  if (sides.ours->learnt || isCounter(name)) {
    merged = mergedLearnt(sides);
  } else if (sides.ours->get<Fields>() && sides.theirs->get<Fields>()) {
    merged = mergedFields(sides, where, log);
  } else if (sides.ours->get<List>() && sides.theirs->get<List>()) {
    merged = ListMerger(name, sides, where, log).merged();
  } else {
    bool conflict = false;
    merged = *chosen(sides, conflict);
    if (conflict) log.conflicts.push_back({where, shown(sides.base), shown(sides.ours), shown(sides.theirs)});
  }
  merged.learnt = sides.ours->learnt;
  return merged;
}

std::string keyOf(std::string_view list, const RecordNode& item) {
  if (isPair(item)) return valueAsJson(item.get<List>()->front());
  const RecordList* kind = item.get<Fields>() ? recordList(list) : nullptr;
  if (!kind) return valueAsJson(item);
  std::string key;
  for (const std::string_view field : kind->keys) {
    if (const RecordNode* node = field.empty() ? nullptr : item.find(field)) key += valueAsJson(*node) + " ";
  }
  return key;
}

std::string labelOf(std::string_view list, const RecordNode& item) {
  if (list == "cookies") return "cookie " + keyOf(list, item);
  const RecordList* kind = item.get<Fields>() ? recordList(list) : nullptr;
  if (!kind) return std::string(list) + " " + valueAsJson(item);
  if (kind->shown.empty()) return kind->label;
  const RecordNode* name = item.find(kind->shown);
  return std::string(kind->label) + " " + (name ? valueAsJson(*name) : keyOf(list, item));
}

std::pair<std::int64_t, std::int64_t> endsOf(const RecordNode& connection) {
  return {numberOf(connection, "from"), numberOf(connection, "to")};
}

std::string textOf(const RecordNode& node, std::string_view field) {
  const RecordNode* found = node.find(field);
  const auto* text = found ? found->get<BString>() : nullptr;
  return text ? text->narrow() : "";
}

std::int64_t numberOf(const RecordNode& node, std::string_view field) {
  const RecordNode* found = node.find(field);
  const auto* number = found ? found->get<std::int64_t>() : nullptr;
  return number ? *number : 0;
}

const RecordNode::List& itemsOf(const RecordNode& node, std::string_view field) {
  static const List none;
  const RecordNode* found = node.find(field);
  const auto* list = found ? found->get<List>() : nullptr;
  return list ? *list : none;
}

}  // namespace forgeyard::workbench
