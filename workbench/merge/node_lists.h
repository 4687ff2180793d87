#pragma once

#include <algorithm>
#include <string>
#include <string_view>

#include "workbench/merge/merge_values.h"

namespace forgeyard::workbench {

// The items of list fields, to be changed and looked for.

// Made if it isn't there.
inline RecordNode::List& listIn(RecordNode& node, std::string_view field) {
  RecordNode* found = node.find(field);
  if (!found) {
    node.add(std::string(field), {RecordNode::List{}});
    found = node.find(field);
  }
  return *found->get<RecordNode::List>();
}

// Null if there is none.
template <class Match>
const RecordNode* findItem(const RecordNode& node, std::string_view field, Match&& match) {
  const RecordNode::List& items = itemsOf(node, field);
  const auto found = std::find_if(items.begin(), items.end(), match);
  return found == items.end() ? nullptr : &*found;
}

template <class Match>
void eraseItems(RecordNode& node, std::string_view field, Match&& match) {
  if (RecordNode* list = node.find(field)) std::erase_if(*list->get<RecordNode::List>(), match);
}

// Of a field that is there.
inline void setField(RecordNode& node, std::string_view field, RecordNode value) {
  *node.find(field) = std::move(value);
}

inline const RecordNode* componentWithId(const RecordNode& project, std::int64_t id) {
  return findItem(project, "components", [id](const RecordNode& one) { return numberOf(one, "Id") == id; });
}

inline const RecordNode* itemNamed(const RecordNode& node, std::string_view list, std::string_view field,
                                   const std::string& name) {
  return findItem(node, list, [&](const RecordNode& item) { return textOf(item, field) == name; });
}

}  // namespace forgeyard::workbench
